// Picture styles: look-ups and the records that styles make.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

#include "modules/fixed/isp_style_fixture.h"

using testing::IsEmpty;

using IspStyleLookUp = IspStyle;
using IspStyleRecord = IspStyle;

TEST_F(IspStyleLookUp, RejectsEveryIndexWithoutAStyle)
{
    start();
    for (const int index : no_index)
        expect_no_style(index);
    expect_no_style(2);
    EXPECT_EQ(para_get_isp_style_def_index(0), 0) << "a refused index changes nothing";
    EXPECT_EQ(defaults(), "{'style':0,'antiflicker':1,'saturation':50,'sharpness':8}");
    EXPECT_THAT(odm_keys, IsEmpty());
}

TEST_F(IspStyleLookUp, NamesAreExact)
{
    load();
    for (const char *text : {"Vivid", "vivi", "vivids", " vivid", "", "isp0_style_list"})
        EXPECT_EQ(para_get_isp_style_index(text), -1) << text;
    EXPECT_EQ(para_get_isp_style_index(nullptr), -1);
    for (const int index : {0, 1})
        EXPECT_EQ(para_get_isp_style_index(para_get_isp_style_string(index)), index);
}

TEST_F(IspStyleLookUp, TheObjectIsThatOfTheDocument)
{
    load();
    EXPECT_EQ(compact(get_isp_style_json(1)),
              "{'style':1,'saturation':70,'sharpness':10,'antiflicker':2}");
    EXPECT_STREQ(get_isp_style_json(1)->string, "vivid");
}

TEST_F(IspStyleRecord, HoldsEveryLoadedMember)
{
    std::string style;
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written)                                 \
    style += std::string(",'") + #name + "':" + std::to_string(500 + word);
#include "camparam/isp_members.def"
    start("{'isp0_style_list':['none','all'],'all':{" + style.substr(1) + "}}");

    const isp_record *const record = para_get_isp_style_param(0, 1);
    ASSERT_NE(record, nullptr);
    int words[PARA_ISP_SLOTS];
    ASSERT_EQ(sizeof words, sizeof *record);
    memcpy(words, record, sizeof words);
    for (int word = 1; word < PARA_ISP_SLOTS; word++) {
        const int expected = word == PARA_ISP_style ? 1
                             : word == PARA_ISP_antiflicker || word == PARA_ISP_hotpixel
                                 ? 0
                                 : 500 + word;
        EXPECT_EQ(words[word], expected) << word;
    }
    EXPECT_EQ(words[0], 156);
}

TEST_F(IspStyleRecord, MembersThatTheStyleDoesNotNameAreZero)
{
    start("{'isp0_style_list':['a','b'],'a':{'saturation':5},'b':{'sharpness':6}}");
    const isp_record *const record = para_get_isp_style_param(0, 1);
    EXPECT_EQ(record->size, 156);
    EXPECT_EQ(record->style, 0) << "not named, not set";
    EXPECT_EQ(record->saturation, 0);
    EXPECT_EQ(record->sharpness, 6);
    EXPECT_EQ(record->hotpixel, 0);
}

TEST_F(IspStyleRecord, ValuesOfOtherTypesAreZeroAndUnchecked)
{
    start("{'isp0_style_list':['a'],'a':{'saturation':'50','sharpness':null,'hue':[1],"
          "'gamma':5000,'meter':-7,'drc':1e20,'iris':2.9}}");
    const isp_record *const record = para_get_isp_style_param(0, 0);
    EXPECT_EQ(record->saturation, 0);
    EXPECT_EQ(record->sharpness, 0);
    EXPECT_EQ(record->hue, 0);
    EXPECT_EQ(record->gamma, 5000);
    EXPECT_EQ(record->meter, -7);
    EXPECT_EQ(record->drc, INT_MAX);
    EXPECT_EQ(record->iris, 2);
}

TEST_F(IspStyleRecord, TheStyleIsItsPlaceInTheListWhateverTheFileSays)
{
    load("{'isp0_style_list':['a','b','c'],'a':{'style':7},'b':{'style':7},'c':{'style':7}}");
    for (const int index : {0, 1, 2}) {
        EXPECT_EQ(para_get_isp_style_param(0, index)->style, index);
        EXPECT_EQ(compact(get_isp_style_json(index)), "{'style':" + std::to_string(index) + "}");
    }
}

TEST_F(IspStyleRecord, CarriesTheCurrentAntiflickerOfTheInstance)
{
    start();
    para_set_isp_antiflicker_cur(0, 33);
    for (const int index : {0, 1}) {
        EXPECT_EQ(para_get_isp_style_param(0, index)->antiflicker, 33);
        EXPECT_EQ(para_get_isp_style_param(1, index)->antiflicker, 0);
    }
    para_set_isp_antiflicker_cur(0, 34);
    EXPECT_EQ(para_get_isp_style_param(0, 1)->antiflicker, 34);
}

TEST_F(IspStyleRecord, IsSharedByTheInstances)
{
    start();
    isp_record *const record = para_get_isp_style_param(0, 1);
    EXPECT_EQ(para_get_isp_style_param(1, 1), record);
    EXPECT_EQ(record->antiflicker, 0) << "of the last call";
    EXPECT_NE(para_get_isp_style_param(0, 0), record);
}

TEST_F(IspStyleRecord, OtherInstancesHaveNone)
{
    start();
    para_set_isp_antiflicker_cur(0, 33);
    isp_record *const record = para_get_isp_style_param(0, 1);
    for (const int instance : {-1, 2, 1000000, INT_MIN, INT_MAX})
        EXPECT_EQ(para_get_isp_style_param(instance, 1), nullptr) << instance;
    EXPECT_EQ(record->antiflicker, 33);
}

TEST_F(IspStyleRecord, IsAppliedByTheHostThroughTheSetters)
{
    start();
    const isp_record *const record = para_get_isp_style_param(0, 1);
    para_set_isp_style_cur(0, record->style);
    para_set_isp_saturation_cur(0, record->saturation);
    para_set_isp_sharpness_cur(0, record->sharpness);
    para_set_isp_antiflicker_cur(0, record->antiflicker);
    EXPECT_EQ(current(), "{'style':1,'antiflicker':1,'saturation':70,'sharpness':10}");
    EXPECT_EQ(notifications, 3) << "the same antiflicker is no change";
}
