// Saving the image signal processor.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "modules/fixed/another_process.h"
#include "modules/fixed/isp_fixture.h"

using testing::HasSubstr;

using IspSave = Isp;

TEST_F(IspSave, WritesOneInstanceInFileOrder)
{
    write_home("isp_def.json", "{'isp0_style_list':['a'],'a':" + values(100) + "}");
    init();
    para_set_isp_shutter_cur(0, 12);
    EXPECT_EQ(saved(), std::string("{\n"
                                   "\t\"isp0\":\t{\n"
                                   "\t\t\"style\":\t0,\n"
                                   "\t\t\"exposure_mode\":\t103,\n"
                                   "\t\t\"shutter\":\t12,\n"
                                   "\t\t\"iris\":\t105,\n"
                                   "\t\t\"bright\":\t106,\n"
                                   "\t\t\"expcomp_mode\":\t107,\n"
                                   "\t\t\"expcomp_level\":\t108,\n"
                                   "\t\t\"backlight\":\t109,\n"
                                   "\t\t\"gain_limit\":\t110,\n"
                                   "\t\t\"manual_gain\":\t111,\n"
                                   "\t\t\"antiflicker\":\t112,\n"
                                   "\t\t\"meter\":\t113,\n"
                                   "\t\t\"wdr_strength\":\t114,\n"
                                   "\t\t\"wb_mode\":\t115,\n"
                                   "\t\t\"awb_sens\":\t116,\n"
                                   "\t\t\"rgain\":\t117,\n"
                                   "\t\t\"bgain\":\t118,\n"
                                   "\t\t\"rgain_tuning\":\t119,\n"
                                   "\t\t\"bgain_tuning\":\t120,\n"
                                   "\t\t\"ggain_tuning\":\t121,\n"
                                   "\t\t\"rgain_onepush\":\t122,\n"
                                   "\t\t\"bgain_onepush\":\t123,\n"
                                   "\t\t\"saturation\":\t124,\n"
                                   "\t\t\"skin_saturation\":\t138,\n"
                                   "\t\t\"hue\":\t125,\n"
                                   "\t\t\"temperature\":\t126,\n"
                                   "\t\t\"len_type\":\t127,\n"
                                   "\t\t\"luminance\":\t128,\n"
                                   "\t\t\"contrast\":\t129,\n"
                                   "\t\t\"sharpness\":\t130,\n"
                                   "\t\t\"blackwhite_mode\":\t131,\n"
                                   "\t\t\"gamma\":\t132,\n"
                                   "\t\t\"drc\":\t133,\n"
                                   "\t\t\"ccm_style\":\t134,\n"
                                   "\t\t\"nr2d\":\t135,\n"
                                   "\t\t\"nr3d\":\t136\n"
                                   "\t}\n"
                                   "}") +
                           '\0');
}

TEST_F(IspSave, WritesTwoInstances)
{
    write_home("isp_range.json", "{'isp0':" + ranges() + ",'isp1':" + ranges() + "}");
    write_home("isp_def.json", "{'isp0_style_list':['a'],'a':{'style':0,'exposure_mode':0,"
                               "'exposure_mode_priority':1,'shutter':12}}");
    init();
    EXPECT_EQ(saved(), std::string("{\n"
                                   "\t\"isp0\":\t{\n"
                                   "\t\t\"style\":\t0,\n"
                                   "\t\t\"exposure_mode\":\t0,\n"
                                   "\t\t\"shutter\":\t12\n"
                                   "\t},\n"
                                   "\t\"isp1\":\t{\n"
                                   "\t}\n"
                                   "}") +
                           '\0');
}

TEST_F(IspSave, AMemberMadePresentWithoutAValueIsNeverTheReservedOne)
{
    write_data("isp_cur.json", "{'isp0':{'hotpixel':5}}");
    init();
    EXPECT_THAT(saved(), testing::Not(HasSubstr("hotpixel")));
    EXPECT_EQ(para_isp_exist[0].hotpixel, 0);
}

TEST_F(IspSave, IsDueTwoSecondsAfterTheLastChange)
{
    init();
    stop_clock();
    EXPECT_FALSE(due());
    para_set_isp_shutter_cur(0, 5);
    EXPECT_FALSE(due());
    move_clock(1999);
    EXPECT_FALSE(due());
    para_set_isp_iris_cur(0, 5);
    move_clock(1999);
    EXPECT_FALSE(due()) << "a further change postpones the save";
    move_clock(1);
    EXPECT_TRUE(due());
    saved();
    EXPECT_FALSE(change_pending());
}

TEST_F(IspSave, ItsDelayIsFixed)
{
    init();
    stop_clock();
    platformparam_set_save_param_time(0, 0);
    para_set_isp_shutter_cur(0, 5);
    EXPECT_FALSE(due());
    platformparam_set_save_param_time(900000, 900000);
    move_clock(2000);
    EXPECT_TRUE(due());
}

TEST_F(IspSave, AFailedOneIsNotRetried)
{
    init();
    std::filesystem::create_directory(data + "/isp_cur.json");
    para_set_isp_shutter_cur(0, 5);
    EXPECT_EQ(para_save_isp("isp0"), 0);
    EXPECT_FALSE(change_pending());
    std::filesystem::remove(data + "/isp_cur.json");
    para_set_isp_shutter_cur(0, 6);
    EXPECT_TRUE(change_pending());
    EXPECT_THAT(saved(), HasSubstr("\"shutter\":\t6"));
}

TEST_F(IspSave, ADataDirectoryMayEndWithASlash)
{
    const std::string ending = data + "/";
    para_profile.data_dir = ending.c_str();
    init();
    EXPECT_NE(saved(), "none");
}

TEST_F(IspSave, APathThatIsTooLongIsNeverCut)
{
    init();
    const size_t file_length = strlen("/isp_cur.json");
    for (const size_t length : {127 - file_length, 128 - file_length, 127UL, 200UL}) {
        std::string directory = data + "/";
        directory.append(length - directory.size(), 'd');
        std::filesystem::create_directory(directory);
        para_profile.data_dir = directory.c_str();
        EXPECT_EQ(para_save_isp("isp0"), 0);
        const bool fits = length + file_length <= 127;
        EXPECT_EQ(read_file(directory + "/isp_cur.json").has_value(), fits) << length;
        EXPECT_EQ(std::filesystem::is_empty(directory), !fits) << length;
        std::filesystem::remove_all(directory);
        EXPECT_TRUE(std::filesystem::is_empty(data)) << length;
    }
}

TEST_F(IspSave, WhatIsSavedIsLoadedAgain)
{
    std::string before;
    in_another_process([this] {
        init();
        for (const accessors &member : all_members)
            EXPECT_EQ(member.quiet_set(0, member.word == PARA_ISP_style ? 2 : member.word), 1)
                << member.key;
        saved();
    });
    before = read_data("isp_cur.json").value_or("none");
    init();
    for (const accessors &member : all_members)
        EXPECT_EQ(member.cur(0), member.word == PARA_ISP_style ? 2 : member.word) << member.key;
    EXPECT_EQ(to_json(0, 1), everything(2, 300)) << "the defaults are those of the saved style";
    EXPECT_EQ(para_isp_cur[0].exposure_mode_priority, 302) << "never saved: the style's";
    EXPECT_EQ(saved(), before);
}

TEST_F(IspSave, MembersOutOfReachKeepTheirSavedValues)
{
    write_data("isp_cur.json", "{'isp0':{'len_type':6,'ccm_style':7}}");
    init();
    const std::string bytes = saved();
    EXPECT_THAT(bytes, HasSubstr("\"len_type\":\t6,"));
    EXPECT_THAT(bytes, HasSubstr("\"ccm_style\":\t7,"));
}

TEST_F(IspSave, TheThreadSavesARequestedChange)
{
    start_store();
    Client client;
    client.ask("{'msg_type':'set','isp0':{'shutter':12}}");
    move_clock(2000);
    EXPECT_TRUE(wait_until([this] { return read_data("isp_cur.json").has_value(); }));
    stop_store();
    EXPECT_THAT(read_data("isp_cur.json").value_or(""), HasSubstr("\"shutter\":\t12,"));
}
