// The image signal processor at start-up: files, ranges, traces.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "modules/fixed/another_process.h"
#include "modules/fixed/isp_fixture.h"
#include "modules/fixed/presence.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using IspStart = Isp;

TEST_F(IspStart, EveryMemberHasTheValuesOfItsFiles)
{
    write_data("isp_cur.json", "{'isp0':" + values(500) + "}");
    EXPECT_EQ(init(), 0);
    for (const expected_member &member : expected_record) {
        const int word = word_of(member.name);
        const bool is_style = word == PARA_ISP_style;
        EXPECT_EQ(word_at(para_isp_min[0], word), member.loaded ? -word : 0) << member.name;
        EXPECT_EQ(word_at(para_isp_max[0], word), member.loaded ? 1000 + word : 0) << member.name;
        EXPECT_EQ(word_at(para_isp_def[0], word), is_style        ? 0
                                                  : member.loaded ? 100 + word
                                                                  : 0)
            << member.name;
        EXPECT_EQ(word_at(para_isp_cur[0], word), member.loaded ? 500 + word : 0) << member.name;
        EXPECT_EQ(word_at(para_isp_init[0], word), member.loaded ? 500 + word : 0) << member.name;
        EXPECT_EQ(word_at(para_isp_exist[0], word), member.loaded ? present_as_number : 0)
            << member.name;
    }
}

TEST_F(IspStart, AccessorsReadTheirWord)
{
    write_data("isp_cur.json", "{'isp0':" + values(500) + "}");
    init();
    para_set_isp_shutter_cur(0, 7);
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.word, word_of(member.key));
        EXPECT_EQ(member.min(0), -member.word) << member.key;
        EXPECT_EQ(member.max(0), 1000 + member.word) << member.key;
        EXPECT_EQ(member.def(0), member.word == PARA_ISP_style ? 0 : 100 + member.word)
            << member.key;
        EXPECT_EQ(member.cur(0), member.word == PARA_ISP_shutter ? 7 : 500 + member.word)
            << member.key;
        EXPECT_EQ(member.init(0), 500 + member.word) << member.key;
    }
}

TEST_F(IspStart, EachRecordBeginsWithItsSize)
{
    init();
    for (const int instance : {0, 1}) {
        EXPECT_EQ(para_isp_min[instance].size, 156);
        EXPECT_EQ(para_isp_max[instance].size, 156);
        EXPECT_EQ(para_isp_def[instance].size, 156);
        EXPECT_EQ(para_isp_cur[instance].size, 156);
        EXPECT_EQ(para_isp_init[instance].size, 156);
        EXPECT_EQ(para_isp_exist[instance].size, 0);
    }
}

TEST_F(IspStart, WithoutARangeFileFails)
{
    remove_home("isp_range.json");
    write_data("isp_cur.json", "{'isp0':" + values(500) + "}");
    EXPECT_EQ(init(), -1);
    EXPECT_THAT(traces(), IsEmpty());
    EXPECT_NE(isp_inited, 0);
    EXPECT_EQ(isp_num, 0);
    EXPECT_EQ(para_isp_cur[1].size, 156);
    EXPECT_EQ(para_isp_init[0].size, 0) << "the start-up values are copied at the end";
    EXPECT_EQ(para_isp_exist[0].style, 0) << "no style was loaded";
    EXPECT_EQ(para_get_isp_shutter_cur(0), 0);
    EXPECT_EQ(get_isp_style_json(0), nullptr);
}

TEST_F(IspStart, ABrokenRangeFileFails)
{
    write_home("isp_range.json", "rubbish");
    EXPECT_EQ(init(), -1);
    EXPECT_THAT(traces_of("para_init_isp"), ElementsAre("Error before: [rubbish]\n\n"));
    EXPECT_EQ(traces().size(), 1U);
    EXPECT_EQ(traces()[0].level, 6);
}

TEST_F(IspStart, HappensOnce)
{
    remove_home("isp_range.json");
    EXPECT_EQ(init(), -1);
    write_home("isp_range.json", "{'isp0':" + ranges() + "}");
    forget_traces();
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(para_init_isp(nullptr), 0);
    EXPECT_THAT(traces(), IsEmpty());
    EXPECT_EQ(para_get_isp_shutter_max(0), 0);
}

TEST_F(IspStart, TheModuleNameIsIgnored)
{
    EXPECT_EQ(para_init_isp(nullptr), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 104);
    EXPECT_EQ(para_need_save_isp(nullptr), 0);
    EXPECT_EQ(para_save_isp(nullptr), 0);
    EXPECT_TRUE(read_data("isp_cur.json"));
}

TEST_F(IspStart, ARangeIsAnArrayOfTwoOrMore)
{
    write_home("isp_range.json",
               "{'isp0':{'shutter':[5],'iris':[],'bright':7,'meter':[1,2,3],"
               "'gamma':{'a':3,'b':4},'hue':'text','drc':null,'NR2D':[3,4],'nr3d':['a',2.9]}}");
    EXPECT_EQ(init(), 0);
    for (const char *name : {"shutter", "iris", "bright", "gamma", "hue", "drc"}) {
        EXPECT_EQ(member_named(name).min(0), 0) << name;
        EXPECT_EQ(member_named(name).max(0), 0) << name;
    }
    EXPECT_EQ(para_get_isp_meter_min(0), 1);
    EXPECT_EQ(para_get_isp_meter_max(0), 2);
    EXPECT_EQ(para_get_isp_nr2d_max(0), 4) << "keys are matched without regard to case";
    EXPECT_EQ(para_get_isp_nr3d_min(0), 0) << "a text is the number 0";
    EXPECT_EQ(para_get_isp_nr3d_max(0), 2);
}

TEST_F(IspStart, ARangeFileWithoutTheInstanceLeavesEveryRangeEmpty)
{
    write_home("isp_range.json", ranges());
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(isp_num, 0);
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.max(0), 0) << member.key;
        EXPECT_EQ(member.cur(0), member.word == PARA_ISP_style ? 0 : 100 + member.word)
            << member.key;
    }
    EXPECT_EQ(query("isp0", "['all']"), "none");
    EXPECT_EQ(saved(), std::string("{\n}") + '\0');
}

TEST_F(IspStart, WithoutAStyleFileMembersAreAbsentButForTheStyle)
{
    remove_home("isp_def.json");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(to_json(0, 0), "{'style':0}");
    for (const accessors &member : all_members) {
        EXPECT_EQ(word_at(para_isp_exist[0], member.word),
                  member.word == PARA_ISP_style ? present_as_number : 0);
        EXPECT_EQ(member.def(0), 0) << member.key;
        EXPECT_EQ(member.cur(0), 0) << member.key;
        EXPECT_EQ(member.max(0), 1000 + member.word) << member.key;
    }
    EXPECT_THAT(traces_of("para_init_isp_style"), IsEmpty());
}

TEST_F(IspStart, ABrokenStyleFileIsNoFailure)
{
    write_home("isp_def.json", "rubbish");
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_isp_style"), ElementsAre("Error before: [rubbish]\n\n"));
    EXPECT_EQ(to_json(0, 0), "{'style':0}");
}

TEST_F(IspStart, WithoutACurrentFileTheDefaultStyleStands)
{
    write_home("isp_def.json", style_file(1));
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_isp"), ElementsAre("parse_ok:0\n"));
    EXPECT_EQ(to_json(0, 0), everything(1, 200));
    EXPECT_EQ(to_json(0, 1), everything(1, 200));
    EXPECT_EQ(para_isp_cur[0].exposure_mode_priority, 202);
    EXPECT_EQ(para_isp_def[0].exposure_mode_priority, 202);
    EXPECT_FALSE(change_pending());
}

TEST_F(IspStart, ABrokenCurrentFileIsNoFailure)
{
    write_data("isp_cur.json", "rubbish");
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_isp"),
                ElementsAre("Error before: [rubbish]\n\n", "parse_ok:0\n"));
    EXPECT_EQ(to_json(0, 0), everything(0, 100));
    EXPECT_FALSE(change_pending());
}

TEST_F(IspStart, ACurrentFileThatCannotBeReadIsNoFailure)
{
    std::filesystem::create_directory(data + "/isp_cur.json");
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_isp"), ElementsAre("parse_ok:0\n"));
    EXPECT_EQ(to_json(0, 0), everything(0, 100));
}

TEST_F(IspStart, ACurrentFileWithoutTheInstanceChangesNothing)
{
    write_data("isp_cur.json", "{'isp1':{'style':1,'shutter':5},'style':1,'shutter':6}");
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_isp"), ElementsAre("parse_ok:1\n"));
    EXPECT_EQ(to_json(0, 0), everything(0, 100));
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(IspStart, FailureIsTracedByTheStore)
{
    remove_home("isp_range.json");
    start_store();
    EXPECT_EQ(count_traces("isp0 init err"), 1);
}

TEST_F(IspStart, WithoutDirectoriesFilesAreInTheWorkingDirectory)
{
    ASSERT_EQ(chdir(home.c_str()), 0);
    write_home("isp_cur.json", "{'isp0':{'shutter':5}}");
    para_profile.home_dir = nullptr;
    para_profile.data_dir = nullptr;
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(para_get_isp_shutter_max(0), 1004);
    EXPECT_EQ(para_get_isp_shutter_def(0), 104);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 5);
    EXPECT_EQ(para_save_isp("isp0"), 0);
    EXPECT_THAT(read_file(home + "/isp_cur.json").value_or(""), HasSubstr("\"shutter\":\t5,"));
}

TEST_F(IspStart, PathsThatAreTooLongAreNeverCut)
{
    std::string directory = data + "/";
    directory.append(128 - strlen("/isp_cur.json") - directory.size(), 'd');
    std::filesystem::create_directory(directory);
    write_file(directory + "/isp_cur.json", R"({"isp0":{"shutter":5}})");
    write_file(directory + "/isp_cur.jso", R"({"isp0":{"shutter":5}})");
    write_file(directory + "/isp_range.json", "{}");
    para_profile.data_dir = directory.c_str();
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 104);

    in_another_process([&] {
        isp_inited = 0;
        para_profile.home_dir = directory.c_str();
        EXPECT_EQ(init(), -1);
    });
}

TEST_F(IspStart, DumpsPresentMembers)
{
    write_home("isp_def.json", "{'isp0_style_list':['a'],'a':{'skin_saturation':3,'shutter':2,"
                               "'len_type':5,'exposure_mode_priority':6,'nr3d':4}}");
    write_data("isp_cur.json", "{'isp0':{'shutter':12}}");
    init();
    EXPECT_THAT(traces_of("isp_page"),
                ElementsAre("----------ISP PARAM-----------\n\n", "isp0 param:\n\n",
                            "           style : cur:[0],\tdef:[0],\trange:[-1,1001]\n",
                            "         shutter : cur:[12],\tdef:[2],\trange:[-4,1004]\n",
                            "            nr3d : cur:[4],\tdef:[4],\trange:[-36,1036]\n",
                            " skin_saturation : cur:[3],\tdef:[3],\trange:[-38,1038]\n",
                            "--------------------------------\n\n"));
}

TEST_F(IspStart, DumpsTheOdmValueOfADefault)
{
    write_odm("{'version':1,'isp0_antiflicker_def':50}");
    init();
    EXPECT_EQ(
        count_traces("     antiflicker : cur:[112],\tdef:[50],\trange:[-12,1012]", "isp_page"), 1);
}

TEST_F(IspStart, DumpsEveryInstance)
{
    remove_home("isp_def.json");
    write_home("isp_range.json", "{'isp0':{},'isp1':{}}");
    init();
    EXPECT_THAT(traces_of("isp_page"),
                ElementsAre("----------ISP PARAM-----------\n\n", "isp0 param:\n\n",
                            "           style : cur:[0],\tdef:[0],\trange:[0,0]\n",
                            "isp1 param:\n\n", "--------------------------------\n\n"));
    forget_traces();
    isp_page();
    EXPECT_EQ(traces().size(), 5U);
    EXPECT_EQ(traces()[2].level, 6);
}

TEST_F(IspStart, IsSilentBelowTheLevelOfProgress)
{
    set_trace_level(5);
    write_data("isp_cur.json", "rubbish");
    init();
    query("isp0", "['shutter']");
    change("isp0", "{'shutter':5}");
    EXPECT_THAT(traces(), IsEmpty());
}
