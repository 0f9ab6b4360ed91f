// Restoring ISP's defaults, and changing the one that the ODM store keeps.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "modules/fixed/another_process.h"
#include "modules/fixed/isp_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

using IspRestore = Isp;
using IspAntiflickerDefault = Isp;

TEST_F(IspRestore, MakesEveryDefaultCurrentInBothRecords)
{
    init();
    for (const accessors &member : all_members)
        member.quiet_set(0, 3);
    para_set_isp_style_def(1, 1);
    const isp_record min = para_isp_min[0], max = para_isp_max[0], start = para_isp_init[0];
    const isp_record exist = para_isp_exist[0];
    EXPECT_EQ(para_isp_cur_restore_isp_def(), 0);
    EXPECT_EQ(memcmp(para_isp_cur, para_isp_def, sizeof para_isp_cur), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 104);
    EXPECT_EQ(para_get_isp_shutter_cur(1), 204);
    EXPECT_EQ(para_isp_cur[0].exposure_mode_priority, 102);
    EXPECT_EQ(memcmp(&para_isp_min[0], &min, sizeof min), 0);
    EXPECT_EQ(memcmp(&para_isp_max[0], &max, sizeof max), 0);
    EXPECT_EQ(memcmp(&para_isp_init[0], &start, sizeof start), 0);
    EXPECT_EQ(memcmp(&para_isp_exist[0], &exist, sizeof exist), 0);
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(IspRestore, IsDueAtOnceWhenTheLastChangeIsOld)
{
    init();
    stop_clock();
    para_isp_cur_restore_isp_def();
    EXPECT_TRUE(due()) << "nothing was ever changed";
    saved();

    para_set_isp_shutter_cur(0, 5);
    saved();
    para_isp_cur_restore_isp_def();
    EXPECT_FALSE(due()) << "the time of the last change stands";
    move_clock(1999);
    para_isp_cur_restore_isp_def();
    EXPECT_FALSE(due());
    move_clock(1);
    EXPECT_TRUE(due());
}

TEST_F(IspRestore, DefaultsOutsideTheRangeAreTakenToo)
{
    write_home("isp_range.json", "{'isp0':{'shutter':[0,10]}}");
    init();
    para_set_isp_shutter_cur(0, 5);
    para_isp_cur_restore_isp_def();
    EXPECT_EQ(para_get_isp_shutter_cur(0), 104);
}

TEST_F(IspAntiflickerDefault, IsKeptInTheOdmStore)
{
    init();
    EXPECT_EQ(para_set_isp_antiflicker_def(0, 50), 0);
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 50);
    EXPECT_EQ(para_get_isp_antiflicker_cur(0), 112) << "the current value stays";
    int value = 0;
    EXPECT_EQ(para_get_odm_int("isp0_antiflicker_def", &value), 0);
    EXPECT_EQ(value, 50);
    EXPECT_THAT(odm_keys, ElementsAre("isp0_antiflicker_def"));
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending()) << "no current value changed";
}

TEST_F(IspAntiflickerDefault, IsStoredOnceTheOdmStoreHasBeenTold)
{
    static int default_in_hook, stored_in_hook;
    para_profile.odm_set_notify_hook = [](const char *key) {
        default_in_hook = para_get_isp_antiflicker_def(0);
        para_get_odm_int(key, &stored_in_hook);
    };
    init();
    para_set_isp_antiflicker_def(0, 50);
    EXPECT_EQ(default_in_hook, 112) << "the default before the change";
    EXPECT_EQ(stored_in_hook, 50);
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 50);
}

TEST_F(IspAntiflickerDefault, TakesTheWholeRangeAndNoMore)
{
    init();
    const int min = para_get_isp_antiflicker_min(0), max = para_get_isp_antiflicker_max(0);
    for (const int value : {min, max}) {
        para_set_isp_antiflicker_def(0, value);
        EXPECT_EQ(para_get_isp_antiflicker_def(0), value);
    }
    odm_keys.clear();
    for (const int value : {min - 1, max + 1, INT_MIN, INT_MAX, max}) {
        EXPECT_EQ(para_set_isp_antiflicker_def(0, value), 0);
        EXPECT_EQ(para_get_isp_antiflicker_def(0), max) << value;
    }
    EXPECT_THAT(odm_keys, IsEmpty());
}

TEST_F(IspAntiflickerDefault, TheStylesOwnValueIsNoneOfTheDeviceMaker)
{
    init();
    EXPECT_EQ(para_set_isp_antiflicker_def(0, para_get_isp_antiflicker_def(0)), 0);
    EXPECT_THAT(odm_keys, IsEmpty());
    int value = 0;
    EXPECT_EQ(para_get_odm_int("isp0_antiflicker_def", &value), -1) << "no document is made";
}

TEST_F(IspAntiflickerDefault, AnAbsentMemberHasNone)
{
    remove_home("isp_def.json");
    init();
    para_set_isp_antiflicker_def(0, 50);
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 0);
    EXPECT_THAT(odm_keys, IsEmpty());
}

TEST_F(IspAntiflickerDefault, HasOneKeyForEveryInstance)
{
    init();
    para_set_isp_antiflicker_def(1, 0);
    EXPECT_THAT(odm_keys, IsEmpty()) << "absent there";
    para_set_isp_style_def(1, 1);
    odm_keys.clear();
    para_set_isp_antiflicker_def(1, 0);
    EXPECT_THAT(odm_keys, ElementsAre("isp0_antiflicker_def"));
    EXPECT_EQ(para_get_isp_antiflicker_def(1), 0);
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 112);
    int value = 77;
    EXPECT_EQ(para_get_odm_int("isp0_antiflicker_def", &value), 0);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(para_get_odm_int("isp1_antiflicker_def", &value), -2);
}

TEST_F(IspAntiflickerDefault, StandsAfterARestart)
{
    in_another_process([this] {
        EXPECT_EQ(para_init_odm("odmInter"), 0);
        init();
        para_set_isp_antiflicker_def(0, 50);
        EXPECT_EQ(para_save_odm("odmInter"), 0);
    });
    EXPECT_EQ(para_init_odm("odmInter"), 0);
    init();
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 50);
    EXPECT_EQ(para_get_isp_antiflicker_cur(0), 112);
}
