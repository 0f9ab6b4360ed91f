// Members, names and setters of the image signal processor.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "modules/fixed/isp_fixture.h"

using testing::IsEmpty;
using testing::StartsWith;

using IspMembers = Isp;
using IspNames = Isp;
using IspSetter = Isp;

TEST_F(IspMembers, StandInTheRecordInTheirOrder)
{
    std::vector<std::string> names;
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written) names.push_back(#name);
#include "camparam/isp_members.def"
    std::vector<std::string> expected;
    for (const expected_member &member : expected_record)
        expected.push_back(member.name);
    EXPECT_EQ(names, expected);
    EXPECT_EQ(sizeof(isp_record), 156U);

    isp_record record = {};
    int next = 0;
    record.size = next++;
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written)                                 \
    EXPECT_EQ(word, next) << #name;                                                                \
    record.name = next++;
#include "camparam/isp_members.def"
    for (int word = 0; word < 39; word++)
        EXPECT_EQ(word_at(record, word), word);
}

TEST_F(IspMembers, HaveTheColumnsThatHostsRelyOn)
{
    const expected_member listed[] = {
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written)                                 \
    {#name, loaded, accessor, by_name, written},
#include "camparam/isp_members.def"
    };
    ASSERT_EQ(std::size(listed), std::size(expected_record));
    for (size_t i = 0; i < std::size(listed); i++) {
        const expected_member &expected = expected_record[i];
        EXPECT_EQ(listed[i].loaded, expected.loaded) << expected.name;
        EXPECT_EQ(listed[i].accessor, expected.accessor) << expected.name;
        EXPECT_EQ(listed[i].by_name, expected.by_name) << expected.name;
        EXPECT_EQ(listed[i].written, expected.written) << expected.name;
    }
    EXPECT_EQ(std::size(all_members), 34U);
    EXPECT_EQ(std::size(all_converters), 37U);
    EXPECT_EQ(std::size(expected_json_order), 37U);
    EXPECT_EQ(std::size(expected_by_name_order), 34U);
}

TEST_F(IspNames, EveryLoadedMemberKnowsNullAlone)
{
    for (const converter &member : all_converters) {
        for (const char *text : {"", "n", "nu", "nul", "null", "0"})
            EXPECT_EQ(member.num(text), 0) << member.key << " " << text;
        EXPECT_EQ(member.num("25"), 25) << member.key;
        EXPECT_EQ(member.num("7 apples"), 7) << member.key;
        EXPECT_EQ(member.num("99999999999999999999"), INT_MAX) << member.key;
        for (const char *text : {"x", "nulls", "Null", "-1", " 1", "+1", "\xe9"})
            EXPECT_EQ(member.num(text), -1000) << member.key << " " << text;
        EXPECT_EQ(member.num(nullptr), -1000) << member.key;
    }
}

TEST_F(IspSetter, TakesEveryValueOfTheRangeAndTellsTheHook)
{
    init();
    for (const accessors &member : all_members) {
        for (const int value : {member.max(0), member.min(0), 3}) {
            notifications.clear();
            EXPECT_EQ(member.set(0, value), 0);
            EXPECT_EQ(member.cur(0), value) << member.key;
            EXPECT_EQ(word_at(para_isp_cur[0], member.word), value) << member.key;
            ASSERT_EQ(notifications.size(), 1U) << member.key;
            EXPECT_EQ(notifications[0].setter, member.set) << member.key;
            EXPECT_EQ(notifications[0].instance, 0) << member.key;
            EXPECT_EQ(notifications[0].value, value) << member.key;
        }
        EXPECT_EQ(member.init(0), member.word == PARA_ISP_style ? 0 : 100 + member.word)
            << member.key;
        EXPECT_EQ(member.def(0), member.word == PARA_ISP_style ? 0 : 100 + member.word)
            << member.key;
    }
    EXPECT_TRUE(change_pending());
}

TEST_F(IspSetter, TheHookFindsTheChangeDone)
{
    static int value_in_hook;
    static bool due_in_hook;
    para_profile.isp_set_notify_hook = [](int (*)(int, int), int, int) {
        value_in_hook = para_get_isp_shutter_cur(0);
        move_clock(2000);
        due_in_hook = para_need_save_isp("isp0") == 1;
    };
    init();
    para_set_isp_shutter_cur(0, 7);
    EXPECT_EQ(value_in_hook, 7);
    EXPECT_TRUE(due_in_hook);
}

TEST_F(IspSetter, TheInternalSetterTellsTheChangeAndNoHook)
{
    init();
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.quiet_set(0, 3), 1) << member.key;
        EXPECT_EQ(member.quiet_set(0, 3), 0) << member.key;
        EXPECT_EQ(member.cur(0), 3) << member.key;
    }
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_TRUE(change_pending());
}

TEST_F(IspSetter, RefusesWhatIsOutsideTheRangeOrCurrent)
{
    init();
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

TEST_F(IspSetter, ARefusedValueDoesNotPostponeTheSave)
{
    init();
    stop_clock();
    para_set_isp_shutter_cur(0, 5);
    move_clock(2000);
    para_set_isp_shutter_cur(0, 5);
    para_set_isp_shutter_cur(0, 5000);
    change("isp0", "{'shutter':5,'iris':5000}");
    EXPECT_TRUE(due());
}

TEST_F(IspSetter, AnAbsentMemberCannotBeSet)
{
    remove_home("isp_def.json");
    init();
    for (const accessors &member : all_members) {
        const bool present = member.word == PARA_ISP_style;
        EXPECT_EQ(member.quiet_set(0, 3), present ? 1 : 0);
        EXPECT_EQ(member.set(0, 4), 0);
        EXPECT_EQ(member.cur(0), present ? 4 : 0) << member.key;
    }
    EXPECT_EQ(notifications.size(), 1U);
}

TEST_F(IspSetter, SettingTheStyleChangesThatWordAlone)
{
    init();
    para_set_isp_style_cur(0, 2);
    EXPECT_EQ(to_json(0, 0), everything(2, 100));
    EXPECT_EQ(to_json(0, 1), everything(0, 100));
    EXPECT_EQ(para_get_isp_style_def_index(0), 0);
}

TEST_F(IspSetter, WorksWithoutAHook)
{
    para_profile.isp_set_notify_hook = nullptr;
    init();
    EXPECT_EQ(para_set_isp_shutter_cur(0, 5), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 5);
}

TEST_F(Isp, MayBeUsedByManyThreadsAtOnce)
{
    static std::atomic<int> told;
    para_profile.isp_set_notify_hook = [](int (*)(int, int), int, int) { told++; };
    para_profile.odm_set_notify_hook = [](const char *) { told++; };
    start_store();
    std::vector<std::thread> hosts;
    for (int host = 0; host < 4; host++) {
        hosts.emplace_back([host] {
            const std::string key = "host" + std::to_string(host);
            char text[PARA_ODM_TEXT_MAX];
            for (int i = 1; i <= 200; i++) {
                para_set_isp_shutter_cur(0, host * 200 + i);
                all_members[static_cast<size_t>(4 + host)].set(0, i);
                para_set_isp_antiflicker_def(0, i);
                para_set_odm_int(key.c_str(), i);
                para_set_odm_string("shared", key.c_str());
                para_get_odm_string("shared", text);
                if (i % 20 == 0)
                    para_set_isp_style_def(0, i / 20 % 3);
                if (i % 50 == 0)
                    para_isp_cur_restore_isp_def();
                isp_record *const style = para_get_isp_style_param(0, i % 3);
                EXPECT_NE(style, nullptr);
            }
            all_members[static_cast<size_t>(4 + host)].set(0, 900 + host);
        });
    }
    hosts.emplace_back([] {
        for (int i = 0; i < 20; i++) {
            move_clock(1000);
            platformparam_save();
        }
    });
    Client client;
    for (int i = 0; i < 60; i++) {
        EXPECT_EQ(
            client.ask("{'msg_type':'set','msg_id':1,'isp0':{'hue':" + std::to_string(i) + "}}"),
            "{'msg_id':1}");
        EXPECT_THAT(client.ask("{'msg_type':'get','isp0':['all']}"), StartsWith("{'isp0':{"));
        EXPECT_THAT(client.ask("{'msg_type':'get','isp0_def':['all']}"),
                    StartsWith("{'isp0_def':{"));
    }
    for (std::thread &host : hosts)
        host.join();
    stop_store();
    EXPECT_GT(told.load(), 0);

    const json odm = parse(read_data("persist/odm.json").value_or("").c_str());
    for (int host = 0; host < 4; host++) {
        const std::string key = "host" + std::to_string(host);
        const cJSON *const item = cJSON_GetObjectItem(odm.get(), key.c_str());
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->valueint, 200);
    }
    const json current = parse(read_data("isp_cur.json").value_or("").c_str());
    const cJSON *const first = cJSON_GetObjectItem(current.get(), "isp0");
    for (const accessors &member : all_members) {
        const cJSON *const item = cJSON_GetObjectItem(first, member.key);
        ASSERT_NE(item, nullptr) << member.key;
        EXPECT_EQ(item->valueint, member.cur(0)) << member.key;
    }
}
