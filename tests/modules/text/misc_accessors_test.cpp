// Typed accessors of "misc", and requests to it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <thread>
#include <vector>

#include "modules/text/misc_fixture.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

using MiscAccessors = Misc;
using MiscSetter = Misc;
using MiscRequest = Misc;

TEST_F(MiscAccessors, ReadTheCurrentSet)
{
    init_versioned();
    expect_number_members();
}

TEST_F(MiscAccessors, ReadTheLegacySet)
{
    init_legacy();
    expect_number_members();
}

TEST_F(MiscAccessors, EnumMembersAreReadAsPositions)
{
    init_versioned();
    EXPECT_EQ(para_get_misc_ViStrategy_min(), 0);
    EXPECT_EQ(para_get_misc_ViStrategy_max(), 3);
    EXPECT_EQ(para_get_misc_ViStrategy_def(), 1);
    EXPECT_EQ(para_get_misc_ndi_mode_max(), 7);
    EXPECT_EQ(para_get_misc_ndi_mode_cur(), 3);
    EXPECT_EQ(para_get_misc_hdmivideoformat_max(), 2);
    EXPECT_EQ(para_get_misc_hdmivideoformat_cur(), 0);
}

TEST_F(MiscAccessors, NamesAndPositionsGoByTheRangeOfTheDevice)
{
    init_legacy();
    EXPECT_STREQ(para_get_misc_hdmivideoformat_str(0), "4KP30");
    EXPECT_STREQ(para_get_misc_hdmivideoformat_str(3), "4KP60");
    EXPECT_EQ(para_get_misc_hdmivideoformat_str(4), nullptr);
    EXPECT_EQ(para_get_misc_hdmivideoformat_str(-1), nullptr);
    EXPECT_EQ(para_get_misc_hdmivideoformat_num("4KP50"), 2);
    EXPECT_EQ(para_get_misc_hdmivideoformat_num("1080P60"), -1);
    EXPECT_EQ(para_get_misc_hdmivideoformat_num("4KP5"), -1);
    EXPECT_EQ(para_get_misc_hdmivideoformat_num(nullptr), -1);
    EXPECT_EQ(para_get_misc_ndi_mode_num("264P50"), -1);
}

TEST_F(MiscAccessors, EveryNameOfEveryEnumMemberGoesThereAndBack)
{
    std::string range = "{'version':1", defaults;
    for (const enum_accessors &member : enum_members) {
        range += std::string(",'") + member.key +
                 "':" + list_of(member.names, 0, member.names.size() - 1);
        defaults += std::string(member.key) + " = '" + member.names[0] + "'\n";
    }
    write_home("misc_range.json", range + "}");
    write_home("misc.conf", defaults);
    init();
    for (const enum_accessors &member : enum_members) {
        const int count = static_cast<int>(member.names.size());
        for (int i = count - 1; i >= 0; i--) {
            const std::string &name = member.names[static_cast<size_t>(i)];
            EXPECT_EQ(member.str(i), name);
            EXPECT_EQ(member.num(name.c_str()), i);
            EXPECT_EQ(member.set(i), 1) << name;
            EXPECT_EQ(value(member.key), name);
            EXPECT_EQ(member.cur(), i);
        }
        for (int i = count - 1; i >= 0; i--) {
            EXPECT_EQ(member.set_by_text(member.names[static_cast<size_t>(i)].c_str()), 1);
            EXPECT_EQ(member.cur(), i);
        }
        EXPECT_EQ(member.str(count), nullptr);
        EXPECT_EQ(member.set(count), 0);
        EXPECT_EQ(member.set(-1), 0);
    }
}

TEST_F(MiscAccessors, WithoutAStoreThereIsNoModule)
{
    for (const accessors &member : all_members) {
        for (const int result : {member.min(), member.max(), member.def(), member.cur()})
            EXPECT_EQ(result, -1) << member.key;
        EXPECT_EQ(member.set(1), -1) << member.key;
    }
    EXPECT_EQ(para_get_misc_ndi_mode_str(0), nullptr);
    EXPECT_EQ(para_get_misc_ndi_mode_num("off"), -1);
    EXPECT_EQ(para_set_misc_ndi_mode_cur_bystr("off"), 0);
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(MiscSetter, StoresAndTellsTheHookWithItself)
{
    init_versioned();
    for (const accessors &member : all_members) {
        const int other = member.cur() == 0 ? 1 : 0;
        notifications.clear();
        EXPECT_EQ(member.set(other), 1) << member.key;
        EXPECT_EQ(member.cur(), other) << member.key;
        ASSERT_THAT(notifications, SizeIs(1)) << member.key;
        EXPECT_EQ(notifications[0].module, "misc");
        EXPECT_EQ(notifications[0].setter, reinterpret_cast<para_entry_point>(member.set));
        EXPECT_EQ(notifications[0].member, member.key);
        EXPECT_EQ(notifications[0].value, other) << member.key;
        EXPECT_EQ(member.set(other), 0) << member.key;
        EXPECT_THAT(notifications, SizeIs(1)) << "the same value again";
    }
    EXPECT_TRUE(change_pending());
    EXPECT_THAT(requests, IsEmpty());
}

TEST_F(MiscSetter, StoresTheTextOfAPosition)
{
    init_versioned();
    EXPECT_EQ(para_set_misc_ndi_mode_cur(4), 1);
    EXPECT_EQ(value("ndi_mode"), "264P50");
    ASSERT_THAT(notifications, SizeIs(1));
    EXPECT_EQ(notifications[0].value, 4);
}

TEST_F(MiscSetter, ByTextTellsNoHook)
{
    init_versioned();
    EXPECT_EQ(para_set_misc_ndi_mode_cur_bystr("264P50"), 1);
    EXPECT_EQ(value("ndi_mode"), "264P50");
    EXPECT_EQ(para_set_misc_ndi_mode_cur_bystr("264P50"), 0);
    EXPECT_EQ(para_set_misc_ndi_mode_cur_bystr("264"), 0);
    EXPECT_EQ(para_set_misc_ndi_mode_cur_bystr(nullptr), 0);
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_TRUE(change_pending());
}

TEST_F(MiscSetter, DoesNotEnforceTheRangeOfNumbers)
{
    init_legacy();
    for (const int number : {99, -1, INT_MAX, INT_MIN}) {
        EXPECT_EQ(para_set_misc_mirror_cur(number), 1);
        EXPECT_EQ(para_get_misc_mirror_cur(), number);
    }
    EXPECT_THAT(notifications, SizeIs(4));
}

TEST_F(MiscSetter, APositionOutsideTheListIsRefused)
{
    init_legacy();
    for (const int position : {-1, 4, INT_MAX})
        EXPECT_EQ(para_set_misc_ndi_mode_cur(position), 0);
    EXPECT_EQ(value("ndi_mode"), "high");
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(MiscSetter, WorksWithoutAHook)
{
    para_profile.misc_set_notify_hook = nullptr;
    init_versioned();
    EXPECT_EQ(para_set_misc_mirror_cur(1), 1);
    EXPECT_EQ(para_get_misc_mirror_cur(), 1);
}

TEST_F(MiscRequest, IsServedOverUdp)
{
    write_versioned();
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_id':3,'misc':{'hdmivideoformat':'1080P50',"
                         "'mirror':1,'flip':'0','ndi_mode':0,'version':9}}"),
              "{'msg_id':3}");
    EXPECT_EQ(client.ask("{'msg_type':'get','misc':['hdmivideoformat','mirror','flip','ndi_mode',"
                         "'version']}"),
              "{'misc':{'hdmivideoformat':'1080P50','mirror':1,'flip':1,'ndi_mode':'high'}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','misc_def':['hdmivideoformat','mirror']}"),
              "{'misc_def':{'hdmivideoformat':'1080P60','mirror':0}}");
    EXPECT_THAT(requests, ElementsAre("misc{'hdmivideoformat':'1080P50','mirror':1,'flip':'0',"
                                      "'ndi_mode':0,'version':9}"));
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(MiscRequest, AllAnswersEveryEntry)
{
    write_legacy();
    start_store();
    para_set_misc_mirror_cur(1);
    para_set_misc_ViStrategy_cur_bystr("dial");
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'get','misc':['all']}"),
              "{'misc':{'ViStrategy':'dial','ndi_mode':'high','hdmivideoformat':'4KP25','mirror':1,"
              "'flip':1,'vi_framerate':50,'ezoom_limit':4,'lock':0,'privacyCover':1,"
              "'netStream':2,'trackMode':3,'telnetEn':0}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','misc_def':['all']}"),
              std::string("{'misc_def':") + legacy_defaults + "}");
    EXPECT_EQ(client.ask("{'msg_type':'get','misc':['all','mirror']}"), "{'misc':{'mirror':1}}");
}

TEST_F(Misc, MayBeUsedByManyThreadsAtOnce)
{
    para_profile.misc_set_notify_hook = nullptr; // the test's own record one thread's changes
    para_profile.misc_set_request_hook = nullptr;
    set_trace_level(3);
    write_legacy();
    start_store();
    std::vector<std::thread> hosts;
    for (int first = 0; first < 3; first++) {
        hosts.emplace_back([first] {
            for (int i = 0; i < 200; i++) {
                para_set_misc_vi_framerate_cur(first * 1000 + i);
                para_set_misc_ndi_mode_cur(i % 4);
                para_set_misc_ViStrategy_cur_bystr(i % 2 == 0 ? "dial" : "osd");
                EXPECT_GE(para_get_misc_vi_framerate_cur(), 0);
                EXPECT_GE(para_get_misc_ndi_mode_cur(), 0);
            }
        });
    }
    hosts.emplace_back([] {
        for (int i = 0; i < 20; i++)
            platformparam_save();
    });
    Client client;
    for (int i = 0; i < 60; i++) {
        client.ask("{'msg_type':'set','misc':{'lock':" + std::to_string(i) + "}}");
        EXPECT_THAT(client.ask("{'msg_type':'get','misc':['all']}"), StartsWith("{'misc':{"));
        move_clock(700);
    }
    for (std::thread &host : hosts)
        host.join();
    stop_store();
    EXPECT_THAT(read_data("misc_cur.json").value_or(""), HasSubstr("\"lock\":\t59,\n"));
}
