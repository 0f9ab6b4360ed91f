// Which instances of the image signal processor are in use.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <utility>

#include "modules/fixed/isp_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

using IspInstances = Isp;

TEST_F(IspInstances, AreCountedInTheRangeFile)
{
    const std::pair<const char *, int> files[] = {
        {"{}", 0},
        {"[]", 0},
        {"{'isp0':{}}", 1},
        {"{'isp0':null,'isp1':5}", 2},
        {"{'isp1':{}}", 1},
        {"{'ISP0':{},'Isp1':{}}", 2},
        {"{'isp2':{},'isp':{},'isp00':{}}", 0},
        {"{'isp0':{},'isp1':{},'isp2':{},'isp3':{}}", 2},
    };
    for (const auto &[text, count] : files) {
        forget_traces();
        EXPECT_EQ(check_isp_num(parse(text).get()), count) << text;
        EXPECT_THAT(traces_of("check_isp_num"),
                    ElementsAre("check isp num = " + std::to_string(count) + "\n"));
    }
}

TEST_F(IspInstances, NoFileFillsTheSecond)
{
    write_home("isp_range.json", "{'isp0':" + ranges() + ",'isp1':" + ranges() + "}");
    write_data("isp_cur.json", "{'isp0':{'style':0},'isp1':" + values(500) + "}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(isp_num, 2);
    for (int word = 1; word < 39; word++) {
        EXPECT_EQ(word_at(para_isp_min[1], word), 0) << word;
        EXPECT_EQ(word_at(para_isp_max[1], word), 0) << word;
        EXPECT_EQ(word_at(para_isp_def[1], word), 0) << word;
        EXPECT_EQ(word_at(para_isp_cur[1], word), 0) << word;
        EXPECT_EQ(word_at(para_isp_init[1], word), 0) << word;
        EXPECT_EQ(word_at(para_isp_exist[1], word), 0) << word;
    }
    EXPECT_EQ(query("isp1", "['all']"), "{}");
}

TEST_F(IspInstances, ASecondAloneIsServedAsTheFirst)
{
    write_home("isp_range.json", "{'isp1':" + ranges() + "}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(isp_num, 1);
    EXPECT_EQ(query("isp0", "['shutter']"), "{'shutter':104}");
    EXPECT_EQ(query("isp1", "['shutter']"), "none");
}

TEST_F(IspInstances, OthersReadAsZeroAndCannotBeSet)
{
    init();
    for (const int instance : {-1, 2, 3, 5, 1000000, INT_MIN, INT_MAX}) {
        for (const accessors &member : all_members) {
            for (const auto get : {member.def, member.min, member.max, member.init, member.cur})
                EXPECT_EQ(get(instance), 0) << member.key << " " << instance;
            EXPECT_EQ(member.set(instance, 1), 0) << member.key << " " << instance;
            EXPECT_EQ(member.quiet_set(instance, 1), 0) << member.key << " " << instance;
            EXPECT_EQ(isp_set_member_by_name(member.key, instance, 1, nullptr), 0) << member.key;
            int value = 77;
            EXPECT_EQ(para_get_isp_cur_member(member.key, instance, &value, nullptr), 0);
            EXPECT_EQ(para_get_isp_def_member(member.key, instance, &value, nullptr), 0);
            EXPECT_EQ(value, 77);
        }
        EXPECT_EQ(to_json(instance, 0), "{}");
        EXPECT_EQ(to_json(instance, 1), "{}");
        EXPECT_EQ(para_set_isp_antiflicker_def(instance, 5), 0);
    }
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_THAT(odm_keys, IsEmpty());
    EXPECT_EQ(to_json(0, 0), everything(0, 100));
    EXPECT_FALSE(change_pending());
}

TEST_F(IspInstances, TheSecondIsSetOnceAStyleMadeItPresent)
{
    init();
    EXPECT_EQ(para_set_isp_shutter_cur(1, 0), 0);
    EXPECT_EQ(para_set_isp_style_def(1, 1), 0);
    para_isp_cur_restore_isp_def();
    EXPECT_EQ(para_get_isp_shutter_cur(1), 204);
    EXPECT_EQ(para_set_isp_shutter_cur(1, 5), 0) << "its range is empty";
    EXPECT_EQ(para_get_isp_shutter_cur(1), 204);
    EXPECT_EQ(para_set_isp_shutter_cur(1, 0), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(1), 0);
    ASSERT_EQ(notifications.size(), 1U);
    EXPECT_EQ(notifications[0].setter, para_set_isp_shutter_cur);
    EXPECT_EQ(notifications[0].instance, 1);
    EXPECT_EQ(notifications[0].value, 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 104);
}
