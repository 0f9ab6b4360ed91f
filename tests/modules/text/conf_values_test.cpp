// Conf modules: values, setters and changed keys.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "modules/text/conf_answers.h"
#include "modules/text/conf_fixture.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

using ConfValue = ConfModule;
using ConfSetter = ConfModule;
using ConfKeyChange = ConfModule;

TEST_F(ConfValue, UnknownModulesHaveNone)
{
    init();
    for (const char *module : unknown_modules) {
        expect_nothing(module);
        EXPECT_EQ(para_need_save_conf(module), -1) << text_or_none(module);
    }
}

TEST_F(ConfValue, UnknownKeysHaveNone)
{
    init();
    char text[32] = "untouched";
    for (const char *key : {"por", "ports", "Port", "", static_cast<const char *>(nullptr)}) {
        EXPECT_EQ(para_conf_get_member("netport", key), nullptr);
        EXPECT_NE(para_conf_get_member_safe("netport", key, text, sizeof text), 0);
        EXPECT_NE(para_conf_get_def_member_safe("netport", key, text, sizeof text), 0);
    }
    EXPECT_STREQ(text, "untouched");
}

TEST_F(ConfValue, TheMemberIsTheStoredTextItself)
{
    init();
    const char *const text = para_conf_get_member("netport", "port");
    EXPECT_STREQ(text, "80");
    EXPECT_EQ(para_conf_get_member("netport", "port"), text);
    EXPECT_EQ(para_get_netport_member("port"), text);
}

TEST_F(ConfValue, TheTextIsCopiedWhenItFits)
{
    init(port_defaults, "port = '12345'\n");
    char text[8] = "xxxxxxx";
    EXPECT_EQ(para_conf_get_member_safe("netport", "port", text, 6), 0);
    EXPECT_STREQ(text, "12345");
    EXPECT_EQ(text[6], 'x');
    for (const int size : {5, 1, 0, -1})
        EXPECT_NE(para_conf_get_member_safe("netport", "port", text, size), 0) << size;
    EXPECT_EQ(para_conf_get_def_member_safe("netport", "port", text, 3), 0);
    EXPECT_STREQ(text, "80");
    EXPECT_NE(para_conf_get_def_member_safe("netport", "port", text, 2), 0);
}

TEST_F(ConfValue, TextsOfAnyLengthAreKept)
{
    const std::string fits(255, 'f'), longer(256, 'l'), huge(10000, 'h');
    init("fits = '" + fits + "'\nlonger = '" + longer + "'\nhuge = '" + huge + "'\n");
    EXPECT_EQ(value("fits"), fits);
    EXPECT_EQ(value("longer"), longer);
    EXPECT_EQ(value("huge"), huge);
    EXPECT_EQ(query("['fits','longer','huge']"), "{'fits':'" + fits + "'}");
    EXPECT_EQ(query("['all']"),
              "{'fits':'" + fits + "','longer':'" + longer + "','huge':'" + huge + "'}");
    EXPECT_EQ(para_conf_set_member("netport", "fits", longer.c_str()), 1);
    EXPECT_EQ(value("fits"), longer);
    EXPECT_EQ(saved(),
              "fits = \"" + longer + "\"\nlonger = \"" + longer + "\"\nhuge = \"" + huge + "\"\n");
}

TEST_F(ConfSetter, StoresAndTellsTheHook)
{
    init();
    EXPECT_EQ(para_conf_set_member("netport", "port", "8080"), 1);
    EXPECT_EQ(value("port"), "8080");
    EXPECT_EQ(default_value("port"), "80");
    EXPECT_THAT(members_told, ElementsAre("netport port"));
    EXPECT_THAT(updates_told, IsEmpty());
    EXPECT_TRUE(change_pending());
}

TEST_F(ConfSetter, TheHookFindsTheChangeDone)
{
    static std::string value_in_hook;
    static bool due_in_hook;
    para_profile.conf_member_notify_hook = [](const char *module, const char *key) {
        value_in_hook = para_conf_get_member(module, key);
        move_clock(2000);
        due_in_hook = para_need_save_conf(module) == 1;
    };
    init();
    para_conf_set_member("netport", "port", "8080");
    EXPECT_EQ(value_in_hook, "8080");
    EXPECT_TRUE(due_in_hook);
}

TEST_F(ConfSetter, TheHookMayReloadTheModule)
{
    alarm(20); // ends the test where a lock is held meanwhile
    para_profile.conf_member_notify_hook = [](const char *module, const char *) {
        para_conf_need_update(module);
    };
    init();
    EXPECT_EQ(para_conf_set_member("netport", "port", "8080"), 1);
    EXPECT_EQ(value("port"), "80") << "as it stands in the files";
    EXPECT_EQ(unlink((home + "/netport.conf").c_str()), 0);
    EXPECT_EQ(para_conf_set_member("netport", "port", "8080"), 1);
    EXPECT_EQ(value("port"), "none") << "the reload has failed";
    alarm(0);
}

TEST_F(ConfSetter, TheInternalSetterTellsNoHook)
{
    init();
    EXPECT_EQ(_para_conf_set_member("netport", "port", "8080"), 1);
    EXPECT_EQ(value("port"), "8080");
    EXPECT_THAT(members_told, IsEmpty());
    EXPECT_TRUE(change_pending());
}

TEST_F(ConfSetter, TheSameValueChangesNothing)
{
    init();
    EXPECT_EQ(para_conf_set_member("netport", "port", "80"), 0);
    EXPECT_EQ(_para_conf_set_member("netport", "empty", ""), 0);
    EXPECT_THAT(members_told, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(ConfSetter, ANewKeyIsAdded)
{
    init();
    EXPECT_EQ(para_conf_set_member("netport", "new", ""), 1);
    EXPECT_EQ(value("new"), "");
    EXPECT_EQ(default_value("new"), "none");
    EXPECT_THAT(members_told, ElementsAre("netport new"));
}

TEST_F(ConfSetter, EveryAnswerButZeroIsAChangeThoughOnlyOneIsTold)
{
    init();
    let_changes_answer(2);
    EXPECT_EQ(para_conf_set_member("netport", "port", "8080"), 2);
    EXPECT_TRUE(change_pending());
    saved();
    let_changes_answer(-1);
    EXPECT_EQ(para_conf_set_member("netport", "port", "8081"), -1);
    EXPECT_TRUE(change_pending());
    EXPECT_THAT(members_told, IsEmpty());
}

TEST_F(ConfSetter, NullTextsAreRefused)
{
    init();
    EXPECT_NE(para_conf_set_member("netport", "port", nullptr), 1);
    EXPECT_NE(para_conf_set_member("netport", nullptr, "1"), 1);
    EXPECT_EQ(value("port"), "80");
    EXPECT_THAT(members_told, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(ConfSetter, WorksWithoutAHook)
{
    para_profile.conf_member_notify_hook = nullptr;
    init();
    EXPECT_EQ(para_conf_set_member("netport", "port", "1"), 1);
    EXPECT_EQ(value("port"), "1");
}

TEST_F(ConfSetter, ARepeatedValueDoesNotPostponeTheSave)
{
    init();
    stop_clock();
    para_conf_set_member("netport", "port", "1");
    move_clock(1999);
    EXPECT_EQ(para_need_save_conf("netport"), 0);
    para_conf_set_member("netport", "port", "1");
    move_clock(1);
    EXPECT_EQ(para_need_save_conf("netport"), 1);
    para_conf_set_member("netport", "port", "2");
    EXPECT_EQ(para_need_save_conf("netport"), 0) << "a change restarts the delay";
}

TEST_F(ConfKeyChange, TellsAChangeOnce)
{
    init();
    EXPECT_EQ(changed({"port", "rtsp"}), 0);
    para_conf_set_member("netport", "rtsp", "555");
    forget_traces();
    EXPECT_EQ(changed({"port", "rtsp"}), 1);
    EXPECT_THAT(traces_of("para_conf_key_IsChanged"), ElementsAre("key id 1 changed\n"));
    forget_traces();
    EXPECT_EQ(changed({"port", "rtsp"}), 0);
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(ConfKeyChange, LooksAtTheListedKeysAlone)
{
    init();
    para_conf_set_member("netport", "rtsp", "555");
    EXPECT_EQ(changed({"port", "name", "nothing"}), 0);
    const char *const none[] = {nullptr};
    EXPECT_EQ(para_conf_key_IsChanged("netport", none, 0), 0);
    EXPECT_EQ(changed({"rtsp"}), 1);
    EXPECT_EQ(count_traces("key id 0 changed", "para_conf_key_IsChanged"), 1);
}

TEST_F(ConfKeyChange, SeesWhatAReloadBrings)
{
    init();
    write_data("netport.conf", "port = '8080'\n");
    para_conf_need_update("netport");
    EXPECT_EQ(changed({"port"}), 1);
    para_conf_need_update("netport");
    EXPECT_EQ(changed({"port"}), 0);
}

TEST_F(ConfKeyChange, NoKeyOfANullListHasChanged)
{
    init();
    EXPECT_EQ(para_conf_key_IsChanged("netport", nullptr, 3), 0);
    EXPECT_EQ(para_key_IsChanged_netport(nullptr, 3), 0);
    EXPECT_EQ(para_conf_key_IsChanged("unknown", nullptr, 3), -1);
}

TEST_F(ConfKeyChange, TheNamedCallsCutTheCountToEightBits)
{
    init();
    const char *const keys[] = {"port", "rtsp"};
    para_conf_set_member("netport", "port", "1");
    para_conf_set_member("netport", "rtsp", "2");
    EXPECT_EQ(para_key_IsChanged_netport(keys, 256), 0) << "no key";
    EXPECT_EQ(para_key_IsChanged_netport(keys, 257), 1) << "one key";
    EXPECT_EQ(para_key_IsChanged_netport(keys, 257), 0);
    EXPECT_EQ(para_key_IsChanged_netport(keys, 2), 1) << "the second was not asked about";
}

TEST_F(ConfModule, MayBeUsedByManyThreadsWhileReloadsFail)
{
    para_profile.conf_member_notify_hook = nullptr; // the test's own record one thread's changes
    para_profile.conf_update_hook = nullptr;
    set_trace_level(3);
    write_home("netport.conf", port_defaults);
    start_store();
    const std::string here = home + "/netport.conf", away = home + "/away.conf";

    std::atomic<bool> stop{false};
    std::vector<std::thread> hosts;
    for (int first = 0; first < 2; first++) {
        hosts.emplace_back([&stop, first] {
            const char *const keys[] = {"port", "rtsp"};
            char text[400];
            for (int i = 0; !stop; i++) {
                const std::string number = std::to_string(first * 100000 + i);
                para_conf_set_member("netport", "port", number.c_str());
                para_conf_get_member_safe("netport", "rtsp", text, sizeof text);
                para_conf_get_def_member_safe("netport", "port", text, sizeof text);
                para_conf_get_member("netport", "name");
                para_key_IsChanged_netport(keys, 2);
                para_save_conf_2_buf("netport", text, sizeof text);
                para_need_save_conf("netport");
            }
        });
    }
    for (int i = 0; i < 2; i++) {
        hosts.emplace_back([&stop] {
            while (!stop)
                para_need_update_netport();
        });
    }
    hosts.emplace_back([&] {
        while (!stop) {
            rename(here.c_str(), away.c_str());
            platformparam_save();
            rename(away.c_str(), here.c_str());
            platformparam_save();
        }
    });
    Client client;
    for (int i = 0; i < 60; i++) {
        client.ask("{'msg_type':'set','netport':{'rtsp':'" + std::to_string(i) + "'}}");
        EXPECT_THAT(client.ask("{'msg_type':'get','netport':['all'],'netport_def':['port']}"),
                    StartsWith("{'netport':{"));
        move_clock(700);
    }
    stop = true;
    for (std::thread &host : hosts)
        host.join();

    EXPECT_EQ(para_init_single_conf("netport"), 0);
    client.ask("{'msg_type':'set','netport':{'rtsp':'last'}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','netport':['rtsp']}"), "{'netport':{'rtsp':'last'}}");
    stop_store();
    EXPECT_THAT(read_data("netport.conf").value_or(""), HasSubstr("rtsp = \"last\"\n"));
}
