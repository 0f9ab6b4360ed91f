// Names and setters of the video streams.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "modules/fixed/video_fixture.h"

using testing::IsEmpty;
using testing::StartsWith;

using VideoNames = Video;
using VideoSetter = Video;

TEST_F(VideoNames, EveryNameHasItsValueAndBack)
{
    ASSERT_EQ(std::size(named_members), name_counts.size());
    for (const named_accessors &member : named_members) {
        const int count = name_counts.at(member.key);
        for (int i = 0; i < count; i++) {
            ASSERT_NE(member.str(i), nullptr);
            EXPECT_EQ(member.num(member.str(i)), i) << member.str(i);
        }
        for (const int beyond : {-1, count, INT_MAX, INT_MIN})
            EXPECT_EQ(member.str(beyond), nullptr) << member.key;
        EXPECT_EQ(member.num(""), 0);
        EXPECT_EQ(member.num("7"), 7);
        EXPECT_EQ(member.num("none"), -1000);
        EXPECT_EQ(member.num(nullptr), -1000);
    }
    EXPECT_STREQ(para_get_video_rcMode_str(3), "FIXQP");
    EXPECT_STREQ(para_get_video_profile_str(3), "svc-t");
    EXPECT_EQ(para_get_video_protocol_num("H26"), 0);
}

TEST_F(VideoNames, MembersWithoutNamesKnowNull)
{
    for (const accessors &member : all_members) {
        if (name_counts.count(member.key) != 0)
            continue;
        EXPECT_EQ(member.num("nul"), 0) << member.key;
        EXPECT_EQ(member.num("12x"), 12) << member.key;
        EXPECT_EQ(member.num("x"), -1000) << member.key;
    }
}

TEST_F(VideoNames, SettingByNameTakesWholeNames)
{
    init(2);
    for (const named_accessors &member : named_members) {
        for (int i = 0; i < name_counts.at(member.key); i++) {
            EXPECT_EQ(member.set_bystr(1, member.str(i)), 0);
            EXPECT_EQ(member.cur(1), i) << member.key;
        }
        for (const char *text : {"", "PIC_D", "H26", "C", "base", "h264", "0", "PIC_D1 "})
            EXPECT_EQ(member.set_bystr(1, text), -1) << member.key << " " << text;
        EXPECT_EQ(member.set_bystr(1, nullptr), -1);
    }
}

TEST_F(VideoNames, SettingByNameTellsTheHookOfThePublicSetter)
{
    init(1);
    EXPECT_EQ(para_set_video_rcMode_cur_bystr(0, "AVBR"), 0);
    ASSERT_EQ(notifications.size(), 1U);
    EXPECT_EQ(notifications[0].setter, para_set_video_rcMode_cur);
    EXPECT_EQ(notifications[0].value, 4);
    EXPECT_EQ(para_set_video_rcMode_cur_bystr(0, "AVBR"), 0) << "known, if already so";
    EXPECT_EQ(notifications.size(), 1U);
}

TEST_F(VideoSetter, TakesEveryValueOfTheRangeAndTellsTheHook)
{
    init(3);
    for (int stream = 0; stream < 3; stream++) {
        for (const accessors &member : all_members) {
            for (const int value : {member.max(stream), member.min(stream)}) {
                member.quiet_set(stream, value == member.max(stream) ? member.min(stream)
                                                                     : member.max(stream));
                notifications.clear();
                EXPECT_EQ(member.set(stream, value), 0);
                EXPECT_EQ(member.cur(stream), value) << member.key;
                ASSERT_EQ(notifications.size(), 1U) << member.key;
                EXPECT_EQ(notifications[0].setter, member.set) << member.key;
                EXPECT_EQ(notifications[0].stream, stream);
                EXPECT_EQ(notifications[0].value, value);
            }
        }
    }
}

TEST_F(VideoSetter, TheHookFindsTheChangeDone)
{
    static int value_in_hook;
    static bool due_in_hook;
    para_profile.video_set_notify_hook = [](int (*)(int, int), int, int) {
        value_in_hook = para_get_video_gop_cur(1);
        move_clock(2000);
        due_in_hook = para_need_save_video("video0") == 1;
    };
    init(2);
    para_set_video_gop_cur(1, 7);
    EXPECT_EQ(value_in_hook, 7);
    EXPECT_TRUE(due_in_hook);
}

TEST_F(VideoSetter, TheInternalSetterTellsTheChangeAndNoHook)
{
    init(2);
    for (const accessors &member : all_members) {
        const int other = member.cur(1) == member.max(1) ? member.min(1) : member.max(1);
        const int before = member.cur(0);
        EXPECT_EQ(member.quiet_set(1, other), 1) << member.key;
        EXPECT_EQ(member.quiet_set(1, other), 0) << member.key;
        EXPECT_EQ(member.cur(0), before) << "the other stream is left alone";
    }
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_TRUE(change_pending());
}

TEST_F(VideoSetter, RefusesWhatIsOutsideTheRangeOrCurrent)
{
    init(1);
    for (const accessors &member : all_members) {
        const int before = member.cur(0);
        for (const int value : {member.min(0) - 1, member.max(0) + 1, INT_MIN, INT_MAX, before}) {
            EXPECT_EQ(member.set(0, value), 0);
            EXPECT_EQ(member.quiet_set(0, value), 0);
            EXPECT_EQ(member.cur(0), before) << member.key;
        }
    }
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(VideoSetter, AnAbsentMemberCannotBeSet)
{
    init(streams_of({stream_range}), "{}");
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.set(0, member.max(0)), 0);
        EXPECT_EQ(member.quiet_set(0, member.max(0)), 0);
        EXPECT_EQ(para_video_cur[member.slot], 0) << member.key;
    }
    EXPECT_FALSE(change_pending());
}

TEST_F(VideoSetter, WorksWithoutAHook)
{
    para_profile.video_set_notify_hook = nullptr;
    init(1);
    EXPECT_EQ(para_set_video_gop_cur(0, 7), 0);
    EXPECT_EQ(para_get_video_gop_cur(0), 7);
}

TEST_F(Video, MayBeUsedByManyThreadsAtOnce)
{
    para_profile.video_set_notify_hook = nullptr; // the test's own records one thread's changes
    write_home("video_range.json", streams_of({stream_range, stream_range}));
    write_home("video_def.json", streams_of({named_stream, named_stream}));
    start_store();
    std::vector<std::thread> hosts;
    for (int first = 0; first < 4; first++) {
        hosts.emplace_back([first] {
            for (int i = 0; i < 300; i++) {
                para_set_video_bitRate_cur(i % 2, 100 + first * 300 + i);
                para_set_video_size_cur_bystr(1, i % 2 == 0 ? "PIC_CIF" : "PIC_VGA");
                save_cur_video_param_delay(100000);
            }
        });
    }
    Client client;
    for (int i = 0; i < 100; i++) {
        if (i % 20 == 0)
            move_clock(2000);
        client.ask("{'msg_type':'set','video1':{'gop':" + std::to_string(i) + "}}");
        EXPECT_THAT(client.ask("{'msg_type':'get','video1':['all']}"), StartsWith("{'video1':{"));
    }
    for (std::thread &host : hosts)
        host.join();
}
