// Audio at start-up: the model with members that have names.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "modules/fixed/audio_fixture.h"
#include "modules/fixed/presence.h"

using testing::ElementsAre;
using testing::IsEmpty;

using AudioStart = Audio;

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
        EXPECT_EQ(para_audio_exist[member.slot], present_as_number) << member.key;
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
    EXPECT_EQ(para_audio_exist[PARA_AUDIO_aeFormat], present_as_name);
    EXPECT_EQ(para_audio_exist[PARA_AUDIO_sampleRate], present_as_number);
    EXPECT_EQ(para_audio_exist[PARA_AUDIO_adtsFlag], 0);
    EXPECT_EQ(para_get_audio_aeFormat_def(), 0);
    EXPECT_EQ(para_get_audio_audioInput_def(), 1);
    EXPECT_EQ(para_get_audio_audioInput_cur(), 1);
}

TEST_F(AudioStart, ANumericMemberGivenAsTextReadsItsOneName)
{
    init("{'mute':'null','denoise':'','agcEnable':'on','sampleRate':true}");
    EXPECT_EQ(para_audio_exist[PARA_AUDIO_mute], present_as_name) << "null is its one name";
    EXPECT_EQ(para_audio_exist[PARA_AUDIO_denoise], present_as_name);
    EXPECT_EQ(para_audio_exist[PARA_AUDIO_agcEnable], PARA_PRESENT)
        << "named in the file, in no form that can be exchanged";
    EXPECT_EQ(para_audio_exist[PARA_AUDIO_sampleRate], PARA_PRESENT);
    EXPECT_EQ(para_get_audio_mute_cur(), 0);
}

TEST_F(AudioStart, PresenceIsNotClearedByStartingAgain)
{
    init(numeric_defaults);
    init("{'mute':1}");
    for (const accessors &member : all_members)
        EXPECT_EQ(para_audio_exist[member.slot], present_as_number) << member.key;
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
    EXPECT_EQ(para_audio_exist[PARA_AUDIO_audioOut], PARA_PRESENT);
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
