// The default style, and the default of antiflicker that wins over every style.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <utility>

#include "camparam/guard.h"
#include "modules/fixed/another_process.h"
#include "modules/fixed/isp_style_fixture.h"
#include "modules/fixed/presence.h"

using testing::ElementsAre;
using testing::IsEmpty;

using IspDefaultStyle = IspStyle;
using IspStyleAntiflicker = IspStyle;

TEST_F(IspDefaultStyle, ComesFromTheFile)
{
    start("{'isp0_style_def':1,'isp0_style_list':['a','b'],'a':{'saturation':5},"
          "'b':{'saturation':6}}");
    for (const int instance : {0, 1, -1, INT_MAX})
        EXPECT_EQ(para_get_isp_style_def_index(instance), 1) << "one for all instances";
    EXPECT_EQ(current(), "{'style':1,'saturation':6}");
}

TEST_F(IspDefaultStyle, TheOdmStoreWinsOverTheFile)
{
    load_odm("{'version':1,'isp0_style_def':1,'isp0_antiflicker_def':50}");
    EXPECT_EQ(load(), 0);
    EXPECT_EQ(para_get_isp_style_def_index(0), 1);
    EXPECT_EQ(traces_of("para_init_isp_style")[0],
              "style_excute_by_arm:3,total_style:2,style_def:1,antiflicker_def:50\n");
}

TEST_F(IspDefaultStyle, AnIndexWithoutAStyleIsNotCorrected)
{
    for (const int index : no_index) {
        in_another_process([&] {
            load_odm("{'version':1,'isp0_style_def':" + std::to_string(index) + "}");
            start();
            EXPECT_EQ(para_get_isp_style_def_index(0), index);
            EXPECT_EQ(current(), "{'style':" + std::to_string(index) + "}");
        });
    }
}

// Without a style no member is present, and the file would lose all of them.
TEST_F(IspDefaultStyle, WithTheGuardAnIndexWithoutAStyleIsNotSavedOver)
{
    const std::string saved = "{'isp0':{'style':4,'saturation':6,'sharpness':7}}";
    for (const char *file :
         {two_styles, "{'isp0_style_list':['a','b','c','d','gone'],'a':{'saturation':5}}"}) {
        in_another_process([&] {
            platformparam_set_guard(1);
            load_odm("{'version':1,'isp0_style_def':4}");
            write_data("isp_cur.json", saved);
            start(file);
            EXPECT_EQ(count_traces("isp is not loaded, and will not be saved"), 1);
            EXPECT_EQ(para_save_isp("isp0"), EOF);
            EXPECT_EQ(read_data("isp_cur.json"), swap_quotes(saved, '\'', '"'));
        });
    }
}

TEST_F(IspDefaultStyle, WithTheGuardASavedStyleIsEnough)
{
    platformparam_set_guard(1);
    load_odm("{'version':1,'isp0_style_def':4}");
    write_data("isp_cur.json", "{'isp0':{'style':1,'saturation':6}}");
    start();
    EXPECT_EQ(para_save_isp("isp0"), 0);
    EXPECT_EQ(current(), "{'style':1,'antiflicker':2,'saturation':6,'sharpness':10}");
}

TEST_F(IspDefaultStyle, TheIndexAloneIsSetForThisRun)
{
    start();
    for (const int instance : {0, 1, -1, INT_MAX}) {
        EXPECT_EQ(para_set_isp_style_def_index(instance, 0), 0);
        EXPECT_EQ(para_set_isp_style_def_index(instance, 1), 0) << "the instance is ignored";
        EXPECT_EQ(para_get_isp_style_def_index(0), 1);
    }
    EXPECT_EQ(defaults(), "{'style':0,'antiflicker':1,'saturation':50,'sharpness':8}");
    EXPECT_THAT(odm_keys, IsEmpty());
    EXPECT_EQ(odm_number("isp0_style_def"), "none");
}

TEST_F(IspDefaultStyle, ANewOneGivesTheDefaultsAndLivesInTheOdmStore)
{
    start();
    const std::string before = current();
    EXPECT_EQ(para_set_isp_style_def(0, 1), 0);
    EXPECT_EQ(para_get_isp_style_def_index(0), 1);
    EXPECT_EQ(defaults(), "{'style':1,'antiflicker':2,'saturation':70,'sharpness':10}");
    EXPECT_EQ(current(), before) << "current values stay";
    EXPECT_EQ(odm_number("isp0_style_def"), "1");
    EXPECT_THAT(odm_keys, ElementsAre("isp0_style_def"));
    EXPECT_EQ(notifications, 0);
    move_clock(10000);
    EXPECT_EQ(para_need_save_isp("isp0"), 0);
    EXPECT_EQ(para_need_save_odm("odmInter"), 1);

    para_isp_cur_restore_isp_def();
    EXPECT_EQ(current(), "{'style':1,'antiflicker':2,'saturation':70,'sharpness':10}");
}

TEST_F(IspDefaultStyle, TheOdmStoreIsToldOnceTheDefaultsStand)
{
    static int saturation_in_hook;
    para_profile.odm_set_notify_hook = [](const char *) {
        saturation_in_hook = para_get_isp_saturation_def(0);
    };
    start();
    EXPECT_EQ(para_set_isp_style_def(0, 1), 0);
    EXPECT_EQ(saturation_in_hook, 70);
}

TEST_F(IspDefaultStyle, TheSameOneIsNoChangeOfTheOdmStore)
{
    start();
    para_set_isp_style_def(0, 1);
    odm_keys.clear();
    EXPECT_EQ(para_set_isp_style_def(0, 1), 0);
    EXPECT_THAT(odm_keys, IsEmpty());
}

TEST_F(IspDefaultStyle, MembersThatItDoesNotNameKeepTheirDefaults)
{
    start("{'isp0_style_list':['a','b'],'a':{'style':0,'saturation':5,'hue':1},"
          "'b':{'sharpness':6,'saturation':'x','NR3D':3}}");
    EXPECT_EQ(para_set_isp_style_def(0, 1), 0);
    EXPECT_EQ(defaults(), "{'style':0,'saturation':0,'hue':1,'sharpness':6,'nr3d':3}");
    EXPECT_EQ(para_isp_exist[0].sharpness, present_as_number) << "present from now on";
    EXPECT_EQ(para_isp_exist[0].saturation, present_as_number);
    EXPECT_EQ(current(), "{'style':0,'saturation':5,'hue':1,'sharpness':0,'nr3d':0}");
}

TEST_F(IspDefaultStyle, MayBeLoadedIntoTheSecondInstance)
{
    start();
    EXPECT_EQ(para_set_isp_style_def(1, 1), 0);
    EXPECT_EQ(defaults(1), "{'style':1,'antiflicker':2,'saturation':70,'sharpness':10}");
    EXPECT_EQ(defaults(0), "{'style':0,'antiflicker':1,'saturation':50,'sharpness':8}");
    EXPECT_EQ(para_get_isp_style_def_index(0), 1) << "one default for both";
    EXPECT_EQ(odm_number("isp0_style_def"), "1");
}

TEST_F(IspDefaultStyle, OtherInstancesAreRefused)
{
    start();
    for (const int instance : {-1, 2, 1000000, INT_MIN, INT_MAX})
        EXPECT_EQ(para_set_isp_style_def(instance, 1), -1) << instance;
    EXPECT_EQ(para_get_isp_style_def_index(0), 0);
    EXPECT_EQ(odm_number("isp0_style_def"), "none");
}

TEST_F(IspDefaultStyle, StandsAfterARestart)
{
    in_another_process([this] {
        start_store();
        EXPECT_EQ(para_set_isp_style_def(0, 1), 0);
        stop_store();
    });
    start_store();
    EXPECT_EQ(para_get_isp_style_def_index(0), 1);
    EXPECT_EQ(para_get_isp_style_cur(0), 0) << "the current style was saved as well";
}

TEST_F(IspDefaultStyle, IsTheCurrentOneAfterARestartWhenItWasAdopted)
{
    in_another_process([this] {
        start_store();
        para_set_isp_style_def(0, 1);
        para_isp_cur_restore_isp_def();
        stop_store();
    });
    start_store();
    EXPECT_EQ(current(), "{'style':1,'antiflicker':2,'saturation':70,'sharpness':10}");
    EXPECT_EQ(defaults(), current());
    EXPECT_EQ(notifications, 0);
}

TEST_F(IspStyleAntiflicker, WinsOverEveryStyle)
{
    load_odm("{'version':1,'isp0_antiflicker_def':50}");
    start();
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 50);
    for (const int index : {1, 0, 1}) {
        para_set_isp_style_def(0, index);
        EXPECT_EQ(para_get_isp_antiflicker_def(0), 50);
    }
    para_set_isp_style_def(1, 1);
    EXPECT_EQ(para_get_isp_antiflicker_def(1), 50);
    EXPECT_EQ(para_get_isp_antiflicker_cur(0), 1);
}

TEST_F(IspStyleAntiflicker, IsWrittenIntoAnyRecord)
{
    load_odm("{'version':1,'isp0_antiflicker_def':50}");
    load();
    isp_record record;
    memset(&record, 0x11, sizeof record);
    EXPECT_EQ(parse_isp_def_odm(&record), 0);
    EXPECT_EQ(record.antiflicker, 50);
    record.antiflicker = 0x11111111;
    isp_record untouched;
    memset(&untouched, 0x11, sizeof untouched);
    EXPECT_EQ(memcmp(&record, &untouched, sizeof record), 0) << "that word alone";
}

TEST_F(IspStyleAntiflicker, NoneLeavesARecordAlone)
{
    load();
    isp_record record = {};
    record.antiflicker = 7;
    EXPECT_EQ(parse_isp_def_odm(&record), 0);
    EXPECT_EQ(record.antiflicker, 7);
}

TEST_F(IspStyleAntiflicker, ZeroIsAValueAndNegativeOnesAreNone)
{
    const std::pair<int, int> cases[] = {{0, 0}, {-1, 7}, {-50, 7}, {INT_MIN, 7}, {5000, 5000}};
    for (const auto &[value, expected] : cases) {
        in_another_process([&, value = value, expected = expected] {
            load_odm("{'version':1,'isp0_antiflicker_def':" + std::to_string(value) + "}");
            load();
            isp_record record = {};
            record.antiflicker = 7;
            parse_isp_def_odm(&record);
            EXPECT_EQ(record.antiflicker, expected) << value;
        });
    }
}

TEST_F(IspStyleAntiflicker, IsTheOneOfStartUpForTheWholeRun)
{
    load_odm("{'version':1,'isp0_antiflicker_def':50}");
    start();
    para_set_isp_antiflicker_def(0, 40);
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 40);
    EXPECT_EQ(odm_number("isp0_antiflicker_def"), "40");
    para_set_isp_style_def(0, 1);
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 50);
}

TEST_F(IspStyleAntiflicker, WithoutAnOdmValueTheStyleGivesIt)
{
    start();
    para_set_isp_antiflicker_def(0, 40);
    para_set_isp_style_def(0, 1);
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 2);
}
