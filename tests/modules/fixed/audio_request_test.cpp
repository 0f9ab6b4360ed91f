// Requests to audio.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "modules/fixed/audio_fixture.h"
#include "modules/fixed/presence.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using AudioQuery = Audio;
using AudioSetRequest = Audio;

TEST_F(AudioQuery, MemberLookUpGivesValueNameAndPresence)
{
    init(named_defaults);
    int value = 77;
    const char *text = "untouched";
    EXPECT_EQ(para_get_audio_member_json("audioInput", &value, &text), present_as_name);
    EXPECT_EQ(value, 1);
    EXPECT_STREQ(text, "micin");
    EXPECT_EQ(para_get_audio_member_json("audioInput", &value, nullptr), present_as_name);

    text = "untouched";
    EXPECT_EQ(para_get_audio_member_json("sampleRate", &value, &text), present_as_number);
    EXPECT_EQ(value, 48000);
    EXPECT_STREQ(text, "untouched");

    for (const char *name : {"audioInpu", "audioInputs", "audioinput", "", "all"}) {
        value = 77;
        EXPECT_EQ(para_get_audio_member_json(name, &value, &text), 0) << name;
        EXPECT_EQ(value, 77) << name;
    }
}

TEST_F(AudioQuery, ANamedMemberGivenAsANumberHasNoText)
{
    init(numeric_defaults);
    int value = 77;
    const char *text = "replaced";
    EXPECT_EQ(para_get_audio_member_json("aeFormat", &value, &text), present_as_number);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(text, nullptr);
}

TEST_F(AudioQuery, AnswersEachMemberInTheFormOfItsDefault)
{
    init(named_defaults);
    EXPECT_EQ(query("['audioOut','nothing','sampleRate','adtsFlag','aeFormat',5]"),
              "{'audioOut':'hdmi','sampleRate':48000,'aeFormat':'AAC'}");
    EXPECT_THAT(traces_of("para_get_audio_opt"), ElementsAre("inter\n", "leave\n"));
    init(numeric_defaults);
    EXPECT_EQ(query("['audioOut','aeFormat']"), "{'audioOut':1,'aeFormat':1}");
}

TEST_F(AudioQuery, AllAnswersInFileOrderWithNames)
{
    init(numeric_defaults);
    const char *const everything =
        "{'audioEnable':1,'adtsFlag':0,'aeFormat':'G711A','sampleRate':48000,'streamRate':128,"
        "'audioInput':'linein','volLeftIn':50,'volRightIn':51,'audioOut':'hdmi',"
        "'audioInputVol':52,'audioOutVol':53,'mute':0,'denoise':2,'agcEnable':1,'audioOutMute':0}";
    EXPECT_EQ(query("['all']"), everything);
    EXPECT_THAT(traces_of("para_get_audio_opt"), ElementsAre("inter\n"));
    EXPECT_EQ(query("['allegro']"), everything);
    EXPECT_EQ(query("['all','mute']"), "{'mute':0}");
}

TEST_F(AudioQuery, AMemberInNoFormIsNotAnsweredOneByOne)
{
    init("{'aeFormat':'unknown','mute':0}");
    EXPECT_EQ(query("['aeFormat','mute']"), "{'mute':0}");
    EXPECT_EQ(query("['all']"), "{'aeFormat':'AAC','mute':0}");
}

TEST_F(AudioQuery, AnItemThatIsNoListIsAnsweredEmpty)
{
    init();
    for (const char *item : {"'all'", "5", "null", "[]", "{}", "[[]]", "[null]"})
        EXPECT_EQ(query(item), "{}") << item;
}

TEST_F(AudioSetRequest, AppliesEachMemberInTheFormOfItsDefault)
{
    init(named_defaults);
    change("{'aeFormat':'G711A','sampleRate':8000,'unknown':1,'adtsFlag':1}");
    EXPECT_EQ(para_get_audio_aeFormat_cur(), 1);
    EXPECT_EQ(para_get_audio_sampleRate_cur(), 8000);
    EXPECT_EQ(para_audio_cur[PARA_AUDIO_adtsFlag], 0) << "absent";
    EXPECT_THAT(traces_of("para_set_audio_opt"), ElementsAre("inter\n"));
    EXPECT_TRUE(change_pending());
}

TEST_F(AudioSetRequest, TellsTheRequestHookOnceAndNoNotifyHook)
{
    init(named_defaults);
    change("{'aeFormat':'G711A','sampleRate':8000,'mute':1}");
    EXPECT_THAT(requests, ElementsAre("any key{'aeFormat':'G711A','sampleRate':8000,'mute':1}"));
    EXPECT_THAT(notifications, IsEmpty());

    requests.clear();
    change("{'aeFormat':'G711A','sampleRate':8000}");
    change("{}");
    change("[]");
    change("'text'");
    EXPECT_THAT(requests, IsEmpty()) << "nothing changed";

    para_profile.audio_set_request_hook = nullptr;
    change("{'mute':0}");
    EXPECT_EQ(para_get_audio_mute_cur(), 0);
}

TEST_F(AudioSetRequest, OneChangedMemberIsEnoughWhereverItStands)
{
    init(named_defaults);
    change("{'sampleRate':8000,'mute':0}");
    EXPECT_THAT(requests, SizeIs(1));
    change("{'aeFormat':'G711A','mute':0,'unknown':1}");
    EXPECT_THAT(requests, SizeIs(2));
}

TEST_F(AudioSetRequest, TheOtherFormIsRefused)
{
    init(named_defaults);
    change("{'aeFormat':1,'audioInput':0}");
    EXPECT_EQ(para_get_audio_aeFormat_cur(), 0);
    EXPECT_EQ(para_get_audio_audioInput_cur(), 1);
    EXPECT_EQ(para_set_audio_member_json("aeFormat", 1, nullptr), 0);

    init(numeric_defaults);
    change("{'aeFormat':'AAC'}");
    EXPECT_EQ(para_get_audio_aeFormat_cur(), 1);
    EXPECT_FALSE(change_pending());
}

TEST_F(AudioSetRequest, ANumericMemberGivenAsTextIsSetToZero)
{
    init(named_defaults);
    para_set_audio_mute_cur(1);
    change("{'mute':'1','sampleRate':'8000'}");
    EXPECT_EQ(para_get_audio_mute_cur(), 0);
    EXPECT_EQ(para_get_audio_sampleRate_cur(), 48000) << "zero is out of its range";
}

TEST_F(AudioSetRequest, NamesMayBeCutShort)
{
    init(named_defaults);
    change("{'aeFormat':'G7'}");
    EXPECT_EQ(para_get_audio_aeFormat_cur(), 1);
    change("{'aeFormat':''}");
    EXPECT_EQ(para_get_audio_aeFormat_cur(), 0);
    change("{'aeFormat':'1'}");
    EXPECT_EQ(para_get_audio_aeFormat_cur(), 1) << "digits are a value";
}

TEST_F(AudioSetRequest, AnUnknownNameIsRefusedByTheRange)
{
    init(named_defaults);
    change("{'aeFormat':'MP3'}");
    EXPECT_EQ(para_get_audio_aeFormat_cur(), 0);
    EXPECT_THAT(requests, IsEmpty());
}

TEST_F(AudioSetRequest, MemberNamesAreExact)
{
    init();
    EXPECT_EQ(para_set_audio_member_json("mutes", 1, nullptr), 0);
    EXPECT_EQ(para_set_audio_member_json("mut", 1, nullptr), 0);
    EXPECT_EQ(para_set_audio_member_json("", 1, nullptr), 0);
    EXPECT_EQ(para_set_audio_member_json("mute", 1, nullptr), 1);
    EXPECT_EQ(para_set_audio_member_json("mute", 1, nullptr), 0);
    EXPECT_EQ(para_get_audio_mute_cur(), 1);
}

TEST_F(AudioSetRequest, EveryMemberCanBeSetInItsForm)
{
    init(numeric_defaults);
    for (const accessors &member : all_members) {
        const int other = member.cur() == member.max() ? member.min() : member.max();
        EXPECT_EQ(para_set_audio_member_json(member.key, other, nullptr),
                  names.count(member.key) == 0 ? 1 : 0)
            << "a named member takes names alone, and this default was a number: " << member.key;
    }
}

TEST_F(AudioSetRequest, IsServedOverUdp)
{
    write_home("audio_def.json", named_defaults);
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_id':1,'audio':{'aeFormat':'G711A','mute':1}}"),
              "{'msg_id':1}");
    EXPECT_EQ(client.ask("{'msg_type':'get','audio':['aeFormat','mute']}"),
              "{'audio':{'aeFormat':'G711A','mute':1}}");
}

TEST_F(AudioSetRequest, EveryNamedMemberCanBeSetByItsNames)
{
    init("{'aeFormat':'AAC','audioInput':'linein','audioOut':'lineout'}");
    for (const auto &[key, texts] : names) {
        for (const char *text : {texts[1].c_str(), texts[0].c_str()}) {
            EXPECT_EQ(para_set_audio_member_json(key.c_str(), 77, text), 1) << key << " " << text;
            EXPECT_EQ(query("['" + key + "']"), "{'" + key + "':'" + text + "'}");
        }
    }
}

TEST_F(AudioSetRequest, AMissingTextIsRefusedEvenIfTheRangeHoldsItsNumber)
{
    write_home("audio_range.json", "{'aeFormat':[-1000,1]}");
    init("{'aeFormat':'AAC'}");
    EXPECT_EQ(para_set_audio_member_json("aeFormat", 1, nullptr), 0);
    EXPECT_EQ(para_get_audio_aeFormat_cur(), 0);
    change("{'aeFormat':'MP3'}");
    EXPECT_EQ(para_get_audio_aeFormat_cur(), -1000) << "an unknown name is a number of its own";
}

TEST_F(AudioSetRequest, ANumericMemberGivenAsNullIsExchangedInNoForm)
{
    init("{'mute':'null'}");
    EXPECT_EQ(query("['mute']"), "{}");
    change("{'mute':1}");
    EXPECT_EQ(para_get_audio_mute_cur(), 0);
}
