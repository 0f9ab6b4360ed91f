// Setting focus and zoom.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

#include "modules/fixed/af_fixture.h"

using testing::IsEmpty;
using testing::StartsWith;

using AfSetter = Af;

TEST_F(AfSetter, TakesEveryValueOfTheRangeAndTellsTheHook)
{
    init();
    for (const accessors &member : all_members) {
        for (const int value : {member.max(), member.min()}) {
            notifications.clear();
            EXPECT_EQ(member.set(value), 0);
            EXPECT_EQ(member.cur(), value) << member.key;
            ASSERT_EQ(notifications.size(), 1U) << member.key;
            EXPECT_EQ(notifications[0].setter, member.set) << member.key;
            EXPECT_EQ(notifications[0].value, value) << member.key;
        }
    }
}

TEST_F(AfSetter, TheHookFindsTheChangeDone)
{
    static int value_in_hook;
    static bool due_in_hook;
    para_profile.af_set_notify_hook = [](int (*)(int), int) {
        value_in_hook = para_get_af_zoom_value_cur();
        move_clock(2000);
        due_in_hook = para_need_save_af("af") == 1;
    };
    init();
    para_set_af_zoom_value_cur(200);
    EXPECT_EQ(value_in_hook, 200);
    EXPECT_TRUE(due_in_hook);
}

TEST_F(AfSetter, RefusesWhatIsOutsideTheRange)
{
    init();
    const std::vector<int> before(para_af_cur, para_af_cur + 7);
    for (const accessors &member : all_members) {
        for (const int value : {member.min() - 1, member.max() + 1, INT_MIN, INT_MAX})
            EXPECT_EQ(member.set(value), 0);
    }
    EXPECT_EQ(std::vector<int>(para_af_cur, para_af_cur + 7), before);
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(AfSetter, TheCurrentValueAgainIsNoChange)
{
    init();
    for (const accessors &member : all_members)
        EXPECT_EQ(member.set(member.cur()), 0);
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(AfSetter, TheCurrentValueAgainDoesNotPostponeTheSave)
{
    init();
    stop_clock();
    para_set_af_zoom_value_cur(200);
    move_clock(1500);
    para_set_af_zoom_value_cur(200);
    move_clock(500);
    EXPECT_EQ(para_need_save_af("af"), 1);
}

TEST_F(AfSetter, RefusedValueDoesNotPostponeTheSave)
{
    init();
    stop_clock();
    para_set_af_zoom_value_cur(200);
    move_clock(1500);
    para_set_af_focus_mode_cur(para_get_af_focus_mode_max() + 1);
    move_clock(500);
    EXPECT_EQ(para_need_save_af("af"), 1);
}

TEST_F(AfSetter, WorksWithoutAHook)
{
    para_profile.af_set_notify_hook = nullptr;
    init();
    EXPECT_EQ(para_set_af_zoom_value_cur(200), 0);
    EXPECT_EQ(para_get_af_zoom_value_cur(), 200);
}

TEST_F(AfSetter, AMemberWithoutRangeTakesOnlyZero)
{
    write_home("af_range.json", "{}");
    init();
    para_set_af_zoom_value_cur(1);
    EXPECT_EQ(para_get_af_zoom_value_cur(), 100);
    para_set_af_zoom_value_cur(0);
    EXPECT_EQ(para_get_af_zoom_value_cur(), 0);
    EXPECT_EQ(notifications.size(), 1U);
}

TEST_F(AfSetter, AnAbsentMemberCanBeSetButIsNeitherSavedNorReported)
{
    write_home("af_def.json", "{'focus_mode':1}");
    init();
    para_set_af_zoom_value_cur(200);
    EXPECT_EQ(para_get_af_zoom_value_cur(), 200);
    EXPECT_EQ(notifications.size(), 1U);
    EXPECT_EQ(query("['zoom_value','focus_mode']"), "{'focus_mode':1}");
    EXPECT_EQ(query("['all']"), "{'focus_mode':1}");
    para_save_af("af");
    EXPECT_EQ(read_data("af_cur.json"), "{\n\t\"focus_mode\":\t1\n}" + std::string(1, '\0'));
}

// Else a save in between would clear the mark of a value that it has not written.
TEST_F(AfSetter, TheValueStandsBeforeTheChangeIsStamped)
{
    static int value_at_stamp;
    init();
    watch_clock([] { value_at_stamp = para_get_af_zoom_value_cur(); });
    para_set_af_zoom_value_cur(200);
    watch_clock(nullptr);
    EXPECT_EQ(value_at_stamp, 200);
}

TEST_F(AfSetter, StampsTheMonotonicTime)
{
    init();
    timespec before = {}, after = {};
    clock_gettime(CLOCK_MONOTONIC, &before);
    para_set_af_zoom_value_cur(200);
    clock_gettime(CLOCK_MONOTONIC, &after);
    EXPECT_GE(lib_common_diff_msec_timespec(&before, &af_item_start_time), 0);
    EXPECT_GE(lib_common_diff_msec_timespec(&af_item_start_time, &after), 0);
}

TEST_F(Af, MayBeUsedByManyThreadsAtOnce)
{
    para_profile.af_set_notify_hook = nullptr; // the test's own records one thread's changes
    start_store();
    std::vector<std::thread> hosts;
    for (int first = 0; first < 4; first++) {
        hosts.emplace_back([first] {
            for (int i = 0; i < 400; i++) {
                para_set_af_zoom_value_cur(first * 1000 + i);
                para_set_af_focus_value_cur(i % 500);
                if (i % 100 == 0)
                    platformparam_save();
            }
        });
    }
    Client client;
    for (int i = 0; i < 100; i++) {
        if (i % 10 == 0)
            move_clock(2000);
        EXPECT_THAT(client.ask("{'msg_type':'get','af':['all']}"), StartsWith("{'af':{"));
    }
    for (std::thread &host : hosts)
        host.join();
}
