// Pattern modules: setters and the hooks they tell.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <thread>
#include <vector>

#include "modules/text/pattern_fixture.h"

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

using JsonSetter = JsonModule;
using JsonHook = JsonModule;

TEST_F(JsonSetter, StoresNumbersOutsideTheRange)
{
    init();
    for (const int number : {-1, 101, INT_MIN, INT_MAX}) {
        EXPECT_EQ(para_set_json_cur_number("panel", "brightness", number), 1) << number;
        EXPECT_EQ(para_get_json_cur("panel", "brightness"), number);
        EXPECT_EQ(value("brightness"), std::to_string(number));
    }
    EXPECT_EQ(para_get_json_def("panel", "brightness"), 50);
}

TEST_F(JsonSetter, TakesEveryTextOfAnEnumMember)
{
    init();
    for (const char *text : {"off", "auto", "on"}) {
        EXPECT_EQ(para_set_json_cur_str("panel", "mode", text), 1) << text;
        EXPECT_EQ(value("mode"), text);
    }
    EXPECT_EQ(para_get_json_def("panel", "mode"), 1);
}

TEST_F(JsonSetter, RefusesOtherTexts)
{
    init();
    for (const char *text : {"of", "offf", "OFF", "", "0"})
        EXPECT_EQ(para_set_json_cur_str("panel", "mode", text), 0) << text;
    EXPECT_EQ(para_set_json_cur_str("panel", "mode", nullptr), 0);
    EXPECT_EQ(value("mode"), "on");
    EXPECT_FALSE(change_pending());
}

TEST_F(JsonSetter, RefusesTheOtherForm)
{
    init();
    EXPECT_EQ(para_set_json_cur_str("panel", "brightness", "60"), 0);
    EXPECT_EQ(para_set_json_cur_number("panel", "mode", 2), 0);
    EXPECT_EQ(value("brightness") + value("mode"), "50on");
    EXPECT_FALSE(change_pending());
}

TEST_F(JsonSetter, RefusesMembersWithoutAKind)
{
    init();
    for (const char *member :
         {"flags", "extra", "plain", "empty", "", static_cast<const char *>(nullptr)}) {
        EXPECT_EQ(para_set_json_cur_str("panel", member, "on"), 0);
        EXPECT_EQ(para_set_json_cur_number("panel", member, 5), 0);
        EXPECT_EQ(_para_set_json_cur("panel", member, 5), 0);
    }
    EXPECT_EQ(value("flags"), "1");
    EXPECT_FALSE(change_pending());
}

TEST_F(JsonSetter, AMemberThatNoFileHasCannotBeSet)
{
    init();
    EXPECT_EQ(para_set_json_cur_number("panel", "unset", 5), 0);
    EXPECT_EQ(para_set_json_cur_str("panel", "unset_mode", "a"), 0);
    EXPECT_EQ(_para_set_json_cur("panel", "unset_mode", 0), 0);
    EXPECT_EQ(value("unset") + value("unset_mode"), "nonenone");
    EXPECT_FALSE(change_pending());
}

TEST_F(JsonSetter, AMemberThatTheCurrentFileAloneHasCanBeSet)
{
    write_data("panel.conf", "unset = '1'\n");
    init();
    EXPECT_EQ(para_set_json_cur_number("panel", "unset", 5), 1);
    EXPECT_EQ(value("unset"), "5");
    EXPECT_EQ(para_get_json_def("panel", "unset"), -1);
}

TEST_F(JsonSetter, TheSameValueChangesNothing)
{
    init("{'n':[0,9],'e':['a','b']}", "n = '07 apples'\ne = 'a'\n");
    EXPECT_EQ(para_set_json_cur_number("panel", "n", 7), 0);
    EXPECT_EQ(value("n"), "07 apples") << "what counts is the number";
    EXPECT_EQ(para_set_json_cur_str("panel", "e", "a"), 0);
    EXPECT_EQ(_para_set_json_cur("panel", "e", 0), 0);
    EXPECT_FALSE(change_pending());
}

TEST_F(JsonSetter, ARepeatedValueDoesNotPostponeTheSave)
{
    init();
    stop_clock();
    EXPECT_EQ(para_set_json_cur("panel", "brightness", 60), 1);
    move_clock(1500);
    EXPECT_EQ(para_set_json_cur("panel", "brightness", 60), 0);
    EXPECT_EQ(para_set_json_cur_str("panel", "mode", "never"), 0);
    move_clock(500);
    EXPECT_TRUE(due());
}

// Else a save in between would clear the mark of a value that it has not written.
TEST_F(JsonSetter, TheValueStandsBeforeTheChangeIsStamped)
{
    static int value_at_stamp;
    init();
    watch_clock([] { value_at_stamp = para_get_json_cur("panel", "brightness"); });
    para_set_json_cur_number("panel", "brightness", 7);
    watch_clock(nullptr);
    EXPECT_EQ(value_at_stamp, 7);
}

TEST_F(JsonSetter, ByNumberAnEnumMemberTakesThePosition)
{
    init();
    EXPECT_EQ(_para_set_json_cur("panel", "mode", 2), 1);
    EXPECT_EQ(value("mode"), "auto");
    for (const int position : {-1, 3, INT_MIN, INT_MAX})
        EXPECT_EQ(_para_set_json_cur("panel", "mode", position), 0) << position;
    EXPECT_EQ(value("mode"), "auto");
    EXPECT_EQ(_para_set_json_cur("panel", "brightness", 2), 1);
    EXPECT_EQ(value("brightness"), "2");
}

TEST_F(JsonSetter, EnumTextsOfAnyBytesAndLengthAreTaken)
{
    const std::string fits(255, 'f'), longer(256, 'l');
    init("{'e':['a','','two words ','gr\xc3\xbc\xc3\x9f','" + fits + "','" + longer + "']}",
         "e = 'a'\n");
    for (const std::string &text : {std::string(), std::string("two words "),
                                    std::string("gr\xc3\xbc\xc3\x9f"), fits, longer}) {
        EXPECT_EQ(para_set_json_cur_str("panel", "e", text.c_str()), 1) << text;
        EXPECT_EQ(value("e"), text);
    }
    EXPECT_EQ(para_get_json_cur("panel", "e"), -1) << "256 characters are not read";
    EXPECT_EQ(para_set_json_cur_str("panel", "e", "a"), 0) << "nor replaced";
    EXPECT_EQ(value("e"), longer);
}

TEST_F(JsonHook, IsToldOfAChangeByThePublicSetter)
{
    init();
    EXPECT_EQ(para_set_json_cur("panel", "brightness", 200), 1);
    EXPECT_EQ(para_set_json_cur("panel", "mode", 2), 1);
    const auto setter = reinterpret_cast<para_entry_point>(para_set_json_cur);
    ASSERT_EQ(notifications.size(), 2U);
    for (const notified &call : notifications) {
        EXPECT_EQ(call.module, "panel");
        EXPECT_EQ(call.setter, setter);
    }
    EXPECT_EQ(notifications[0].member, "brightness");
    EXPECT_EQ(notifications[0].value, 200);
    EXPECT_EQ(notifications[1].member, "mode");
    EXPECT_EQ(notifications[1].value, 2);
    EXPECT_THAT(requests, IsEmpty());
}

TEST_F(JsonHook, FindsTheChangeDone)
{
    static int value_in_hook;
    static bool due_in_hook;
    para_profile.misc_set_notify_hook = [](const char *module, para_entry_point, const char *member,
                                           int) {
        value_in_hook = para_get_json_cur(module, member);
        move_clock(2000);
        due_in_hook = para_need_save_misc("panel") == 1;
    };
    init();
    para_set_json_cur("panel", "brightness", 7);
    EXPECT_EQ(value_in_hook, 7);
    EXPECT_TRUE(due_in_hook);
}

TEST_F(JsonHook, IsNotToldOfARefusedValue)
{
    init();
    EXPECT_EQ(para_set_json_cur("panel", "brightness", 50), 0);
    EXPECT_EQ(para_set_json_cur("panel", "mode", 3), 0);
    EXPECT_EQ(para_set_json_cur("panel", "unset", 3), 0);
    EXPECT_EQ(para_set_json_cur("panels", "brightness", 3), -1);
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(JsonHook, IsNotToldByTheOtherSetters)
{
    init();
    EXPECT_EQ(para_set_json_cur_str("panel", "mode", "off"), 1);
    EXPECT_EQ(para_set_json_cur_number("panel", "brightness", 1), 1);
    EXPECT_EQ(_para_set_json_cur("panel", "brightness", 2), 1);
    change("{'brightness':3,'mode':'auto'}");
    EXPECT_EQ(value("brightness") + value("mode"), "3auto");
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(JsonHook, MayBeAbsent)
{
    para_profile.misc_set_notify_hook = nullptr;
    para_profile.misc_set_request_hook = nullptr;
    init();
    EXPECT_EQ(para_set_json_cur("panel", "brightness", 1), 1);
    change("{'brightness':2}");
    EXPECT_EQ(value("brightness"), "2");
}

TEST_F(JsonModule, MayBeUsedByManyThreadsAtOnce)
{
    para_profile.misc_set_notify_hook = nullptr; // the test's own record one thread's changes
    para_profile.misc_set_request_hook = nullptr;
    set_trace_level(3);
    write_home("www2json.json", "{'json_pattern_list':['panel']}");
    write_module("panel");
    start_store();
    std::vector<std::thread> hosts;
    for (int first = 0; first < 3; first++) {
        hosts.emplace_back([first] {
            char text[400];
            for (int i = 0; i < 200; i++) {
                para_set_json_cur("panel", "brightness", first * 1000 + i);
                para_set_json_cur_str("panel", "mode", i % 2 == 0 ? "off" : "auto");
                EXPECT_GE(para_get_json_cur("panel", "brightness"), 0);
                EXPECT_GT(para_save_misc_conf_2_buf("panel", text, sizeof text), 0);
            }
        });
    }
    hosts.emplace_back([] {
        for (int i = 0; i < 20; i++)
            platformparam_save();
    });
    Client client;
    for (int i = 0; i < 60; i++) {
        client.ask("{'msg_type':'set','panel':{'offset':" + std::to_string(i) + "}}");
        EXPECT_THAT(client.ask("{'msg_type':'get','panel':['all']}"), StartsWith("{'panel':{"));
        move_clock(700);
    }
    for (std::thread &host : hosts)
        host.join();
    EXPECT_EQ(client.ask("{'msg_type':'get','panel':['offset']}"), "{'panel':{'offset':59}}");
    stop_store();
    EXPECT_THAT(read_data("panel.conf").value_or(""), HasSubstr("offset = \"59\"\n"));
}
