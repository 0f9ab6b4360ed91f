// Which of the style, the saved and the device maker's values ISP starts with.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <string>

#include "modules/fixed/another_process.h"
#include "modules/fixed/isp_fixture.h"
#include "modules/fixed/presence.h"

using testing::IsEmpty;

using IspStart = Isp;

TEST_F(IspStart, WithoutAStyleFileSavedValuesAreReadAndNotReported)
{
    remove_home("isp_def.json");
    write_data("isp_cur.json", "{'isp0':{'shutter':5}}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 5);
    EXPECT_EQ(para_get_isp_shutter_init(0), 5);
    EXPECT_EQ(to_json(0, 0), "{'style':0}");
}

TEST_F(IspStart, SavedValuesOverrideTheStyleWithoutARangeCheck)
{
    write_data("isp_cur.json", "{'isp0':{'shutter':5000,'len_type':6,'iris':'text','HUE':7,"
                               "'hotpixel':8,'exposure_mode_priority':9}}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 5000);
    EXPECT_EQ(para_get_isp_shutter_def(0), 104);
    EXPECT_EQ(para_isp_cur[0].len_type, 6);
    EXPECT_EQ(para_isp_def[0].len_type, 127);
    EXPECT_EQ(para_get_isp_iris_cur(0), 0) << "a text is the number 0";
    EXPECT_EQ(para_get_isp_hue_cur(0), 7);
    EXPECT_EQ(para_isp_cur[0].hotpixel, 0);
    EXPECT_EQ(para_isp_cur[0].exposure_mode_priority, 9);
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(IspStart, AStyleValueOfAnotherTypeIsPresentAsZero)
{
    write_home("isp_def.json", "{'isp0_style_list':['a'],'a':{'shutter':'25','iris':null,"
                               "'bright':[3],'METER':4,'hue':5.9}}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(to_json(0, 0), "{'style':0,'shutter':0,'iris':0,'bright':0,'meter':4,'hue':5}");
    for (const char *name : {"shutter", "iris", "bright", "meter", "hue"})
        EXPECT_EQ(word_at(para_isp_exist[0], word_of(name)), present_as_number) << name;
}

TEST_F(IspStart, SavedStyleThatDiffersIsOneChange)
{
    write_data("isp_cur.json", "{'isp0':{'shutter':5,'style':1}}");
    stop_clock();
    EXPECT_EQ(init(), 0);
    ASSERT_EQ(notifications.size(), 1U);
    EXPECT_EQ(notifications[0].setter, para_set_isp_style_cur);
    EXPECT_EQ(notifications[0].instance, 0);
    EXPECT_EQ(notifications[0].value, 1);
    EXPECT_FALSE(due());
    move_clock(1999);
    EXPECT_FALSE(due());
    move_clock(1);
    EXPECT_TRUE(due());
}

TEST_F(IspStart, SavedStyleGivesDefaultsAndWhatTheFileLacks)
{
    write_data("isp_cur.json", "{'isp0':{'shutter':5,'style':1}}");
    init();
    EXPECT_EQ(to_json(0, 1), everything(1, 200));
    EXPECT_EQ(para_get_isp_shutter_cur(0), 5);
    for (const accessors &member : all_members) {
        const int expected = member.word == PARA_ISP_style     ? 1
                             : member.word == PARA_ISP_shutter ? 5
                                                               : 200 + member.word;
        EXPECT_EQ(member.cur(0), expected) << member.key;
        EXPECT_EQ(member.init(0), member.cur(0)) << member.key;
    }
    EXPECT_EQ(para_get_isp_style_def_index(0), 0) << "the default style stays";
}

TEST_F(IspStart, SavedStyleThatDiffersIsSavedOnceByTheThread)
{
    write_data("isp_cur.json", "{'isp0':{'style':1}}");
    start_store();
    ASSERT_EQ(notifications.size(), 1U);
    EXPECT_EQ(read_data("isp_cur.json"), "{\"isp0\":{\"style\":1}}");
    move_clock(2000);
    const std::string bytes =
        "{\n\t\"isp0\":\t" + everything_printed(1, 200) + "\n}" + std::string(1, '\0');
    EXPECT_TRUE(wait_until([&] { return read_data("isp_cur.json") == bytes; }));
    move_clock(10000);
    Client client;
    for (int turn = 0; turn < 3; turn++)
        EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(count_traces("isp0 save..."), 1);
}

TEST_F(IspStart, SavedStyleThatIsTheDefaultIsNoChange)
{
    write_home("isp_def.json", style_file(1));
    write_data("isp_cur.json", "{'isp0':{'style':1,'shutter':5}}");
    init();
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
    EXPECT_EQ(para_get_isp_shutter_cur(0), 5);
    EXPECT_EQ(para_get_isp_iris_cur(0), 205);
}

TEST_F(IspStart, SavedStyleOutsideItsRangeStandsAloneWithoutBeingAChange)
{
    write_data("isp_cur.json", "{'isp0':{'style':5000}}");
    init();
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
    EXPECT_EQ(para_get_isp_style_cur(0), 5000) << "saved values are not checked";
    EXPECT_EQ(para_get_isp_style_def(0), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 104);
    EXPECT_EQ(para_get_isp_shutter_def(0), 104);
}

TEST_F(IspStart, SavedStyleWithoutAnObjectKeepsTheValuesOfTheDefault)
{
    write_data("isp_cur.json", "{'isp0':{'style':7,'shutter':5}}");
    init();
    ASSERT_EQ(notifications.size(), 1U);
    EXPECT_EQ(notifications[0].value, 7);
    EXPECT_EQ(para_get_isp_style_cur(0), 7);
    EXPECT_EQ(para_get_isp_style_def(0), 0);
    EXPECT_EQ(para_get_isp_iris_cur(0), 105);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 5);
}

TEST_F(IspStart, SavedStyleThatIsNegativeHasNoObject)
{
    write_data("isp_cur.json", "{'isp0':{'style':-1}}");
    init();
    EXPECT_EQ(para_get_isp_style_cur(0), -1);
    EXPECT_EQ(para_get_isp_iris_cur(0), 105);
}

TEST_F(IspStart, SavedStyleKeepsWhatTheStyleDoesNotName)
{
    write_home("isp_def.json", "{'isp0_style_list':['a','b'],'a':{'shutter':1,'iris':2,'hue':3},"
                               "'b':{'shutter':11}}");
    write_data("isp_cur.json", "{'isp0':{'style':1,'hue':30}}");
    init();
    EXPECT_EQ(to_json(0, 0), "{'style':1,'shutter':11,'iris':2,'hue':30}");
    EXPECT_EQ(to_json(0, 1), "{'style':0,'shutter':11,'iris':2,'hue':3}")
        << "a style without a style member leaves that word";
}

TEST_F(IspStart, SavedStyleWorksWithoutAHook)
{
    para_profile.isp_set_notify_hook = nullptr;
    write_data("isp_cur.json", "{'isp0':{'style':1}}");
    EXPECT_EQ(init(), 0);
    EXPECT_TRUE(change_pending());
}

TEST_F(IspStart, ADefaultStyleWithoutAnObjectLoadsNothing)
{
    for (const int index : {3, 1000000, -1, INT_MIN}) {
        in_another_process([&] {
            write_home("isp_def.json", style_file(index));
            EXPECT_EQ(init(), 0);
            EXPECT_EQ(to_json(0, 0), "{'style':" + std::to_string(index) + "}");
            EXPECT_EQ(to_json(0, 1), "{'style':" + std::to_string(index) + "}");
        });
    }
}

TEST_F(IspStart, OdmValuesOverrideTheStyleFile)
{
    write_odm("{'version':1,'isp0_style_def':1,'isp0_antiflicker_def':50}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(para_get_isp_style_def_index(0), 1);
    EXPECT_EQ(para_get_isp_style_cur(0), 1);
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 50);
    EXPECT_EQ(para_get_isp_antiflicker_cur(0), 212) << "the current value is the style's";
    EXPECT_EQ(para_get_isp_antiflicker_init(0), 212);
    EXPECT_EQ(para_get_isp_shutter_def(0), 204);
    EXPECT_EQ(para_isp_def[1].antiflicker, 0);
    EXPECT_FALSE(change_pending());
    EXPECT_THAT(odm_keys, IsEmpty());
}

TEST_F(IspStart, TheOdmAntiflickerWinsOverASavedStyleToo)
{
    write_odm("{'version':1,'isp0_antiflicker_def':50}");
    write_data("isp_cur.json", "{'isp0':{'style':2,'antiflicker':60}}");
    init();
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 50);
    EXPECT_EQ(para_get_isp_antiflicker_cur(0), 60);
}

TEST_F(IspStart, TheStoreLoadsTheOdmValuesFirst)
{
    std::filesystem::create_directory(data + "/persist");
    write_data("persist/odm.json", "{'version':1,'isp0_style_def':2}");
    start_store();
    EXPECT_EQ(para_get_isp_style_def_index(0), 2);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 304);
    EXPECT_EQ(count_traces("isp0 init err"), 0);
}
