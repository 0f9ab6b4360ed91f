// Audio: the second form of the model, with members that have names.
#include "camparam/audio.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "support/store.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

struct accessors {
    int slot;
    const char *key;
    int (*def)(), (*min)(), (*max)(), (*init)(), (*cur)();
    int (*set)(int), (*quiet_set)(int);
    int (*num)(const char *);
};

const accessors all_members[] = {
#define AUDIO_MEMBER(slot, name)                                                                   \
    {slot,                                                                                         \
     #name,                                                                                        \
     para_get_audio_##name##_def,                                                                  \
     para_get_audio_##name##_min,                                                                  \
     para_get_audio_##name##_max,                                                                  \
     para_get_audio_##name##_init,                                                                 \
     para_get_audio_##name##_cur,                                                                  \
     para_set_audio_##name##_cur,                                                                  \
     _para_set_audio_##name##_cur,                                                                 \
     para_get_audio_##name##_num},
#include "camparam/audio_members.def"
};

struct named_accessors {
    const char *key;
    const char *(*str)(int);
    int (*num)(const char *);
};

const named_accessors named_members[] = {
#define AUDIO_NAMED_MEMBER(slot, name)                                                             \
    {#name, para_get_audio_##name##_str, para_get_audio_##name##_num},
#include "camparam/audio_members.def"
};

const std::map<std::string, std::vector<std::string>> names = {
    {"aeFormat", {"AAC", "G711A"}},
    {"audioInput", {"linein", "micin"}},
    {"audioOut", {"lineout", "hdmi"}},
};

struct notified {
    int (*setter)(int);
    int value;
};
std::vector<notified> notifications;
void notify(int (*setter)(int), int value)
{
    notifications.push_back({setter, value});
}

std::vector<std::string> requests;
void requested(const cJSON *item)
{
    requests.push_back(item->string + compact(item));
}

const char wide_ranges[] = "{'audioEnable':[0,1],'aeFormat':['AAC','G711A'],'adtsFlag':[0,1],"
                           "'sampleRate':[8000,48000],'streamRate':[16,256],"
                           "'audioInput':['linein','micin'],'volLeftIn':[0,100],"
                           "'volRightIn':[0,100],'audioInputVol':[0,100],'audioOut':[0,1],"
                           "'audioOutVol':[0,100],'mute':[0,1],'denoise':[0,3],'agcEnable':[0,1],"
                           "'audioOutMute':[0,1]}";
const char numeric_defaults[] = "{'audioEnable':1,'aeFormat':1,'adtsFlag':0,'sampleRate':48000,"
                                "'streamRate':128,'audioInput':0,'volLeftIn':50,'volRightIn':51,"
                                "'audioInputVol':52,'audioOut':1,'audioOutVol':53,'mute':0,"
                                "'denoise':2,'agcEnable':1,'audioOutMute':0}";
const char named_defaults[] = "{'audioEnable':1,'aeFormat':'AAC','sampleRate':48000,"
                              "'audioInput':'micin','audioOut':'hdmi','mute':0}";

} // namespace

class Audio : public Store {
protected:
    Audio()
    {
        write_home("audio_range.json", wide_ranges);
        write_home("audio_def.json", numeric_defaults);
        para_profile.audio_set_notify_hook = notify;
        para_profile.audio_set_request_hook = requested;
    }

    int init(const std::string &defaults = "")
    {
        if (!defaults.empty())
            write_home("audio_def.json", defaults);
        return para_init_audio("audio");
    }

    bool due() { return para_need_save_audio("audio") == 1; }

    bool change_pending()
    {
        move_clock(10000);
        return due();
    }

    std::string query(const std::string &item)
    {
        const json request = parse("{'any key':" + item + "}");
        cJSON *answer = nullptr;
        EXPECT_EQ(para_get_audio_opt("any key", request->child, &answer, "audio"), 0);
        const json owner(answer);
        return answer != nullptr ? compact(answer) : "none";
    }

    void change(const std::string &item)
    {
        const json request = parse("{'any key':" + item + "}");
        EXPECT_EQ(para_set_audio_opt("any key", request->child, "audio"), 0);
    }

    std::string saved()
    {
        EXPECT_EQ(para_save_audio("audio"), 0);
        return read_data("audio_cur.json").value_or("none");
    }
};

using AudioStart = Audio;
using AudioNames = Audio;
using AudioSetter = Audio;
using AudioQuery = Audio;
using AudioSetRequest = Audio;
using AudioSave = Audio;

TEST_F(AudioStart, EveryMemberHasTheValuesOfItsFiles)
{
    std::string range = "{", def = "{", cur = "{";
    for (const accessors &member : all_members) {
        const std::string key = std::string("'") + member.key + "':";
        range += key + "[" + std::to_string(member.slot) + "," + std::to_string(member.slot + 200) +
                 "],";
        def += key + std::to_string(member.slot + 100) + ",";
        cur += key + std::to_string(member.slot + 50) + ",";
    }
    for (std::string *text : {&range, &def, &cur})
        text->back() = '}';
    write_home("audio_range.json", range);
    write_data("audio_cur.json", cur);
    EXPECT_EQ(init(def), 0);
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.min(), member.slot) << member.key;
        EXPECT_EQ(member.max(), member.slot + 200) << member.key;
        EXPECT_EQ(member.def(), member.slot + 100) << member.key;
        EXPECT_EQ(member.cur(), member.slot + 50) << member.key;
        EXPECT_EQ(member.init(), member.slot + 50) << member.key;
        EXPECT_EQ(para_audio_exist[member.slot], 0x81) << member.key;
        EXPECT_EQ(para_audio_cur[member.slot], member.slot + 50);
    }
}

TEST_F(AudioStart, AbsentMembersReadAsMinusOneWhereCurrentValuesAreConcerned)
{
    EXPECT_EQ(init("{'aeFormat':1}"), 0);
    for (const accessors &member : all_members) {
        const bool present = member.slot == 1;
        EXPECT_EQ(member.cur(), present ? 1 : -1) << member.key;
        EXPECT_EQ(member.init(), present ? 1 : -1) << member.key;
        EXPECT_EQ(member.def(), present ? 1 : 0) << member.key;
    }
    EXPECT_EQ(para_get_audio_sampleRate_max(), 48000);
}

TEST_F(AudioStart, PresenceTellsTheFormOfTheDefault)
{
    init(named_defaults);
    EXPECT_EQ(para_audio_exist[1], 0x101);
    EXPECT_EQ(para_audio_exist[3], 0x81);
    EXPECT_EQ(para_audio_exist[2], 0);
    EXPECT_EQ(para_get_audio_aeFormat_def(), 0);
    EXPECT_EQ(para_get_audio_audioInput_def(), 1);
    EXPECT_EQ(para_get_audio_audioInput_cur(), 1);
}

TEST_F(AudioStart, ANumericMemberGivenAsTextReadsItsOneName)
{
    init("{'mute':'null','denoise':'','agcEnable':'on','sampleRate':true}");
    EXPECT_EQ(para_audio_exist[11], 0x101) << "null is its one name";
    EXPECT_EQ(para_audio_exist[12], 0x101);
    EXPECT_EQ(para_audio_exist[13], 1) << "named in the file, in no form that can be exchanged";
    EXPECT_EQ(para_audio_exist[3], 1);
    EXPECT_EQ(para_get_audio_mute_cur(), 0);
}

TEST_F(AudioStart, PresenceIsNotClearedByStartingAgain)
{
    init(numeric_defaults);
    init("{'mute':1}");
    for (const accessors &member : all_members)
        EXPECT_EQ(para_audio_exist[member.slot], 0x81) << member.key;
}

TEST_F(AudioStart, NamesInFilesMayBeCutShortAndTheLastFittingOneWins)
{
    write_home("audio_range.json", "{'aeFormat':['A','G'],'audioInput':['','m'],"
                                   "'audioOut':['line','']}");
    write_data("audio_cur.json", "{'aeFormat':'','audioInput':'l'}");
    init("{'aeFormat':'A','audioInput':'mic','audioOut':'lineo'}");
    EXPECT_EQ(para_get_audio_aeFormat_min(), 0);
    EXPECT_EQ(para_get_audio_aeFormat_max(), 1);
    EXPECT_EQ(para_get_audio_audioInput_min(), 1) << "the empty text fits both, the last wins";
    EXPECT_EQ(para_get_audio_audioInput_max(), 1);
    EXPECT_EQ(para_get_audio_audioOut_min(), 0);
    EXPECT_EQ(para_get_audio_audioOut_max(), 1);
    EXPECT_EQ(para_get_audio_aeFormat_def(), 0);
    EXPECT_EQ(para_get_audio_audioInput_def(), 1);
    EXPECT_EQ(para_get_audio_audioOut_def(), 0);
    EXPECT_EQ(para_get_audio_aeFormat_cur(), 1);
    EXPECT_EQ(para_get_audio_audioInput_cur(), 0);
}

TEST_F(AudioStart, UnknownNamesAndOtherTypesLeaveValuesAlone)
{
    write_home("audio_range.json",
               "{'aeFormat':['MP3',1],'audioInput':[0,null],'mute':['x',true]}");
    write_data("audio_cur.json", "{'aeFormat':'AACX','audioInput':null,'audioOut':[1]}");
    init("{'aeFormat':1,'audioInput':1,'audioOut':'none'}");
    EXPECT_EQ(para_get_audio_aeFormat_min(), 0);
    EXPECT_EQ(para_get_audio_aeFormat_max(), 1);
    EXPECT_EQ(para_get_audio_audioInput_max(), 0);
    EXPECT_EQ(para_get_audio_mute_max(), 0);
    EXPECT_EQ(para_get_audio_aeFormat_cur(), 1);
    EXPECT_EQ(para_get_audio_audioInput_cur(), 1);
    EXPECT_EQ(para_audio_exist[9], 1);
    EXPECT_EQ(para_get_audio_audioOut_cur(), 0);
}

TEST_F(AudioStart, RangesAreArraysOfTwoOrMore)
{
    write_home("audio_range.json", "{'audioEnable':[5],'adtsFlag':[],'sampleRate':7,"
                                   "'streamRate':[1,2,3],'mute':{'a':3,'b':4},'Denoise':[1,9]}");
    init();
    EXPECT_EQ(para_get_audio_audioEnable_min(), 0);
    EXPECT_EQ(para_get_audio_sampleRate_max(), 0);
    EXPECT_EQ(para_get_audio_streamRate_min(), 1);
    EXPECT_EQ(para_get_audio_streamRate_max(), 2);
    EXPECT_EQ(para_get_audio_mute_max(), 0) << "an object is no range";
    EXPECT_EQ(para_get_audio_denoise_max(), 9) << "keys are matched without regard to case";
}

TEST_F(AudioStart, UnreadableFilesAreTraced)
{
    mkdir((data + "/audio_cur.json").c_str(), 0755);
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_audio"),
                ElementsAre("Error read cur buf\n\n", "parse_ok:0\n"));

    forget_traces();
    unlink((home + "/audio_def.json").c_str());
    EXPECT_EQ(init(), -1);
    EXPECT_THAT(traces_of("para_init_audio"), ElementsAre("Error read def buf\n\n"));

    forget_traces();
    unlink((home + "/audio_range.json").c_str());
    EXPECT_EQ(init(), -1);
    EXPECT_THAT(traces_of("para_init_audio"), ElementsAre("Error range def buf\n\n"));
}

TEST_F(AudioStart, BrokenFilesAreTraced)
{
    write_data("audio_cur.json", "rubbish");
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_audio"),
                ElementsAre("Error before: [rubbish]\n\n", "parse_ok:0\n"));
    EXPECT_EQ(para_get_audio_sampleRate_cur(), 48000);
    EXPECT_EQ(init("rubbish"), -1);
    write_home("audio_range.json", "rubbish");
    EXPECT_EQ(init(numeric_defaults), -1);
    EXPECT_EQ(count_traces("Error before: [rubbish]\n", "para_init_audio"), 3);
}

TEST_F(AudioStart, AMissingCurrentFileIsNoError)
{
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_audio"), ElementsAre("parse_ok:0\n"));
}

TEST_F(AudioStart, DumpsItsTable)
{
    init("{'aeFormat':'G711A','volLeftIn':7}");
    const std::vector<std::string> page = traces_of("audio_page");
    ASSERT_EQ(page.size(), 17U);
    EXPECT_EQ(page[0], "----------AUDIO PARAM-----------\n\n");
    EXPECT_EQ(page[1], "     audioEnable : cur:[0],\tdef:[0],\trange:[0,1]\n");
    EXPECT_EQ(page[2], "        aeFormat : cur:[1],\tdef:[1],\trange:[0,1]\n");
    EXPECT_EQ(page[7], "       volLeftIn : cur:[7],\tdef:[7],\trange:[0,100]\n");
    EXPECT_EQ(page[15], "    audioOutMute : cur:[0],\tdef:[0],\trange:[0,1]\n");
    EXPECT_EQ(page[16], "--------------------------------\n\n");
}

TEST_F(AudioNames, EveryNameHasItsValueAndBack)
{
    ASSERT_EQ(std::size(named_members), names.size());
    for (const named_accessors &member : named_members) {
        const std::vector<std::string> &expected = names.at(member.key);
        for (size_t i = 0; i < expected.size(); i++) {
            EXPECT_STREQ(member.str(static_cast<int>(i)), expected[i].c_str());
            EXPECT_EQ(member.num(expected[i].c_str()), static_cast<int>(i));
        }
        EXPECT_EQ(member.str(-1), nullptr);
        EXPECT_EQ(member.str(static_cast<int>(expected.size())), nullptr);
        EXPECT_EQ(member.str(INT_MAX), nullptr);
        EXPECT_EQ(member.str(INT_MIN), nullptr);
    }
}

TEST_F(AudioNames, ATextFitsTheFirstNameThatBeginsWithIt)
{
    EXPECT_EQ(para_get_audio_aeFormat_num("G7"), 1);
    EXPECT_EQ(para_get_audio_aeFormat_num(""), 0);
    EXPECT_EQ(para_get_audio_audioOut_num("h"), 1);
    EXPECT_EQ(para_get_audio_aeFormat_num("AACX"), -1000);
    EXPECT_EQ(para_get_audio_aeFormat_num("aac"), -1000);
}

TEST_F(AudioNames, ATextThatBeginsWithADigitIsANumber)
{
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.num("25"), 25) << member.key;
        EXPECT_EQ(member.num("7 apples"), 7) << member.key;
        EXPECT_EQ(member.num("99999999999999999999"), INT_MAX) << member.key;
        EXPECT_EQ(member.num("-1"), -1000) << member.key;
        EXPECT_EQ(member.num(" 1"), -1000) << member.key;
        EXPECT_EQ(member.num("x"), -1000) << member.key;
        EXPECT_EQ(member.num("\xe9"), -1000) << member.key;
        EXPECT_EQ(member.num(nullptr), -1000) << member.key;
    }
}

TEST_F(AudioNames, MembersWithoutNamesKnowNull)
{
    for (const accessors &member : all_members) {
        if (names.count(member.key) != 0)
            continue;
        for (const char *text : {"null", "nul", "n", ""})
            EXPECT_EQ(member.num(text), 0) << member.key << " " << text;
        EXPECT_EQ(member.num("nulls"), -1000) << member.key;
    }
}

TEST_F(AudioSetter, TakesEveryValueOfTheRangeAndTellsTheHook)
{
    init();
    for (const accessors &member : all_members) {
        for (const int value : {member.max(), member.min()}) {
            member.quiet_set(value == member.max() ? member.min() : member.max());
            notifications.clear();
            EXPECT_EQ(member.set(value), 0);
            EXPECT_EQ(member.cur(), value) << member.key;
            ASSERT_EQ(notifications.size(), 1U) << member.key;
            EXPECT_EQ(notifications[0].setter, member.set) << member.key;
            EXPECT_EQ(notifications[0].value, value) << member.key;
        }
    }
    EXPECT_TRUE(change_pending());
}

TEST_F(AudioSetter, TheInternalSetterTellsTheChangeAndNoHook)
{
    init();
    for (const accessors &member : all_members) {
        const int other = member.cur() == member.max() ? member.min() : member.max();
        EXPECT_EQ(member.quiet_set(other), 1) << member.key;
        EXPECT_EQ(member.quiet_set(other), 0) << member.key;
        EXPECT_EQ(member.cur(), other) << member.key;
    }
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_TRUE(change_pending());
}

TEST_F(AudioSetter, RefusesWhatIsOutsideTheRangeOrCurrent)
{
    init();
    for (const accessors &member : all_members) {
        const int before = member.cur();
        for (const int value : {member.min() - 1, member.max() + 1, INT_MIN, INT_MAX, before}) {
            EXPECT_EQ(member.set(value), 0);
            EXPECT_EQ(member.quiet_set(value), 0);
            EXPECT_EQ(member.cur(), before) << member.key;
        }
    }
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(AudioSetter, AnAbsentMemberCannotBeSet)
{
    init("{}");
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.set(member.max()), 0);
        EXPECT_EQ(member.quiet_set(member.max()), 0);
        EXPECT_EQ(para_audio_cur[member.slot], 0) << member.key;
    }
    EXPECT_FALSE(change_pending());
}

TEST_F(AudioSetter, WorksWithoutAHook)
{
    para_profile.audio_set_notify_hook = nullptr;
    init();
    EXPECT_EQ(para_set_audio_mute_cur(1), 0);
    EXPECT_EQ(para_get_audio_mute_cur(), 1);
}

TEST_F(AudioQuery, MemberLookUpGivesValueNameAndPresence)
{
    init(named_defaults);
    int value = 77;
    const char *text = "untouched";
    EXPECT_EQ(para_get_audio_member_json("audioInput", &value, &text), 0x101);
    EXPECT_EQ(value, 1);
    EXPECT_STREQ(text, "micin");
    EXPECT_EQ(para_get_audio_member_json("audioInput", &value, nullptr), 0x101);

    text = "untouched";
    EXPECT_EQ(para_get_audio_member_json("sampleRate", &value, &text), 0x81);
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
    EXPECT_EQ(para_get_audio_member_json("aeFormat", &value, &text), 0x81);
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
    EXPECT_EQ(para_audio_cur[2], 0) << "absent";
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

TEST_F(AudioSave, WritesNumbersAndNamesInFileOrder)
{
    init(numeric_defaults);
    EXPECT_EQ(saved(), std::string("{\n"
                                   "\t\"audioEnable\":\t1,\n"
                                   "\t\"adtsFlag\":\t0,\n"
                                   "\t\"aeFormat\":\t\"G711A\",\n"
                                   "\t\"sampleRate\":\t48000,\n"
                                   "\t\"streamRate\":\t128,\n"
                                   "\t\"audioInput\":\t\"linein\",\n"
                                   "\t\"volLeftIn\":\t50,\n"
                                   "\t\"volRightIn\":\t51,\n"
                                   "\t\"audioOut\":\t\"hdmi\",\n"
                                   "\t\"audioInputVol\":\t52,\n"
                                   "\t\"audioOutVol\":\t53,\n"
                                   "\t\"mute\":\t0,\n"
                                   "\t\"denoise\":\t2,\n"
                                   "\t\"agcEnable\":\t1,\n"
                                   "\t\"audioOutMute\":\t0\n"
                                   "}") +
                           '\0');
}

TEST_F(AudioSave, WritesNamedDefaults)
{
    init("{'aeFormat':'G711A','audioInput':'micin','audioOut':'hdmi'}");
    EXPECT_EQ(saved(), std::string("{\n"
                                   "\t\"aeFormat\":\t\"G711A\",\n"
                                   "\t\"audioInput\":\t\"micin\",\n"
                                   "\t\"audioOut\":\t\"hdmi\"\n"
                                   "}") +
                           '\0');
}

TEST_F(AudioSave, WritesMixedDefaults)
{
    init("{'aeFormat':0,'audioInput':'linein','sampleRate':8000}");
    para_set_audio_sampleRate_cur(16000);
    EXPECT_EQ(saved(), std::string("{\n"
                                   "\t\"aeFormat\":\t\"AAC\",\n"
                                   "\t\"sampleRate\":\t16000,\n"
                                   "\t\"audioInput\":\t\"linein\",\n"
                                   "\t\"audioOut\":\t\"lineout\"\n"
                                   "}") +
                           '\0')
        << "the output is written with the input";
}

TEST_F(AudioSave, OutputFollowsThePresenceOfTheInput)
{
    init("{'audioOut':'hdmi','mute':1}");
    EXPECT_EQ(saved(), std::string("{\n\t\"mute\":\t1\n}") + '\0');
    EXPECT_EQ(query("['audioOut']"), "{'audioOut':'hdmi'}") << "a query still reports it";
}

TEST_F(AudioSave, WhatIsSavedIsLoadedAgain)
{
    init(named_defaults);
    change("{'aeFormat':'G711A','audioInput':'linein','audioOut':'lineout','sampleRate':8000}");
    saved();
    init(named_defaults);
    EXPECT_EQ(query("['aeFormat','audioInput','audioOut','sampleRate']"),
              "{'aeFormat':'G711A','audioInput':'linein','audioOut':'lineout','sampleRate':8000}");
}

TEST_F(AudioSave, IsDueAfterItsDelay)
{
    init();
    EXPECT_FALSE(due());
    para_set_audio_mute_cur(1);
    EXPECT_FALSE(due());
    move_clock(1900);
    EXPECT_FALSE(due());
    move_clock(101);
    EXPECT_TRUE(due());
    saved();
    EXPECT_FALSE(due());
}

TEST_F(AudioSave, TheDelayCanBeSet)
{
    init();
    para_set_audio_mute_cur(1);
    EXPECT_EQ(platformparam_set_save_param_time(500, 9000), 0);
    EXPECT_EQ(audio_save_param_time, 500);
    move_clock(501);
    EXPECT_TRUE(due());
    EXPECT_EQ(para_set_audio_save_param_time(5000), 0);
    EXPECT_FALSE(due());
    para_set_audio_save_param_time(0);
    EXPECT_TRUE(due());
    para_set_audio_save_param_time(-5);
    EXPECT_TRUE(due());
}

TEST_F(AudioSave, HostDrivenSaveGoesByTheModulesDelay)
{
    init();
    para_set_audio_mute_cur(1);
    move_clock(1000);
    for (const int argument : {0, -1, 500, 100000}) {
        EXPECT_EQ(save_cur_audio_param_delay(argument), 0);
        EXPECT_FALSE(read_data("audio_cur.json")) << argument;
    }
    move_clock(1001);
    EXPECT_EQ(save_cur_audio_param_delay(100000), 0);
    EXPECT_TRUE(read_data("audio_cur.json"));
    EXPECT_FALSE(due());
}

TEST_F(AudioSave, HostDrivenSaveDoesNothingWithoutAChange)
{
    init();
    move_clock(5000);
    save_cur_audio_param_delay(0);
    EXPECT_FALSE(read_data("audio_cur.json"));
}

TEST_F(AudioSave, AFailedSaveIsNotRetried)
{
    init();
    para_set_audio_mute_cur(1);
    rmdir(data.c_str());
    EXPECT_EQ(para_save_audio("audio"), 0);
    EXPECT_FALSE(change_pending());
}

TEST_F(AudioSave, TheThreadSavesARequestedChange)
{
    write_home("audio_def.json", named_defaults);
    start_store();
    Client client;
    client.ask("{'msg_type':'set','audio':{'aeFormat':'G711A'}}");
    move_clock(2000);
    EXPECT_TRUE(wait_until([this] { return read_data("audio_cur.json").has_value(); }));
    stop_store();
    EXPECT_THAT(read_data("audio_cur.json").value_or(""), HasSubstr("\"aeFormat\":\t\"G711A\""));
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

TEST_F(AudioSave, OutputIsWrittenWithWhateverItsSlotHolds)
{
    write_data("audio_cur.json", "{'audioOut':'hdmi'}");
    init("{'audioInput':'linein'}");
    EXPECT_EQ(saved(), std::string("{\n"
                                   "\t\"audioInput\":\t\"linein\",\n"
                                   "\t\"audioOut\":\t\"hdmi\"\n"
                                   "}") +
                           '\0');
}

TEST_F(AudioSave, AValueWithoutANameIsSavedAsANumberAndNotReportedAsAName)
{
    write_home("audio_range.json", "{'aeFormat':[0,9]}");
    init("{'aeFormat':'AAC'}");
    para_set_audio_aeFormat_cur(7);
    EXPECT_EQ(query("['aeFormat']"), "{}");
    EXPECT_EQ(saved(), std::string("{\n\t\"aeFormat\":\t7\n}") + '\0');
    init("{'aeFormat':'AAC'}");
    EXPECT_EQ(para_get_audio_aeFormat_cur(), 7);
}

TEST_F(AudioSave, IsDueAtItsDelayExactly)
{
    init();
    stop_clock();
    para_set_audio_mute_cur(1);
    move_clock(1999);
    EXPECT_FALSE(due());
    save_cur_audio_param_delay(0);
    EXPECT_FALSE(read_data("audio_cur.json"));
    para_set_audio_mute_cur(100);
    para_set_audio_mute_cur(1);
    move_clock(1);
    EXPECT_TRUE(due()) << "a refused set stamps nothing";
    save_cur_audio_param_delay(0);
    EXPECT_TRUE(read_data("audio_cur.json"));
}

TEST_F(AudioSave, WithoutADelayAChangeIsDueAtOnce)
{
    init();
    stop_clock();
    para_set_audio_save_param_time(0);
    para_set_audio_mute_cur(1);
    EXPECT_TRUE(due());
}

TEST_F(AudioStart, TracesAtTheirLevels)
{
    write_data("audio_cur.json", "{'mute':1}");
    init();
    change("{}");
    query("['mute']");
    EXPECT_THAT(levels_of("parse_ok:1", "para_init_audio"), ElementsAre(6));
    EXPECT_THAT(levels_of("inter", "para_set_audio_opt"), ElementsAre(6));
    EXPECT_THAT(levels_of("leave", "para_get_audio_opt"), ElementsAre(6));
    set_trace_level(5);
    forget_traces();
    init();
    change("{}");
    query("['mute']");
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(AudioStart, SettingLeavesTheStartUpValue)
{
    init();
    para_set_audio_mute_cur(1);
    EXPECT_EQ(para_get_audio_mute_init(), 0);
}

TEST_F(Audio, MayBeUsedByManyThreadsAtOnce)
{
    para_profile.audio_set_notify_hook = nullptr; // the test's own records one thread's changes
    start_store();
    std::vector<std::thread> hosts;
    for (int first = 0; first < 4; first++) {
        hosts.emplace_back([first] {
            for (int i = 0; i < 300; i++) {
                para_set_audio_volLeftIn_cur((first * 25 + i) % 100);
                para_set_audio_aeFormat_cur(i % 2);
                para_set_audio_save_param_time(i % 3);
            }
        });
    }
    Client client;
    for (int i = 0; i < 100; i++) {
        EXPECT_THAT(client.ask("{'msg_type':'set','msg_id':1,'audio':{'volLeftIn':" +
                               std::to_string(i) + "}}"),
                    StartsWith("{'msg_id'"));
        EXPECT_THAT(client.ask("{'msg_type':'get','audio':['all']}"), StartsWith("{'audio':{"));
    }
    for (std::thread &host : hosts)
        host.join();
}
