// Names and setters of audio.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "modules/fixed/audio_fixture.h"

using testing::IsEmpty;
using testing::StartsWith;

using AudioNames = Audio;
using AudioSetter = Audio;

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

TEST_F(AudioSetter, TheHookFindsTheChangeDone)
{
    static int value_in_hook;
    static bool due_in_hook;
    para_profile.audio_set_notify_hook = [](int (*)(int), int) {
        value_in_hook = para_get_audio_volLeftIn_cur();
        move_clock(2000);
        due_in_hook = para_need_save_audio("audio") == 1;
    };
    init();
    para_set_audio_volLeftIn_cur(77);
    EXPECT_EQ(value_in_hook, 77);
    EXPECT_TRUE(due_in_hook);
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
