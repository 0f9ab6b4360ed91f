// Requests to the image signal processor.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

#include "modules/fixed/another_process.h"
#include "modules/fixed/isp_fixture.h"
#include "modules/fixed/presence.h"

using testing::ElementsAre;
using testing::IsEmpty;

using IspQuery = Isp;
using IspSetByName = Isp;
using IspSetRequest = Isp;

TEST_F(IspQuery, MemberLookUpGivesValueAndPresence)
{
    init();
    for (const accessors &member : all_members) {
        member.set(0, 3);
        int value = 77;
        const char *text = "untouched";
        EXPECT_EQ(para_get_isp_cur_member(member.key, 0, &value, &text), present_as_number)
            << member.key;
        EXPECT_EQ(value, 3) << member.key;
        EXPECT_EQ(para_get_isp_def_member(member.key, 0, &value, &text), present_as_number)
            << member.key;
        EXPECT_EQ(value, member.word == PARA_ISP_style ? 0 : 100 + member.word) << member.key;
        EXPECT_STREQ(text, "untouched");
    }
}

TEST_F(IspQuery, MemberLookUpKnowsNoOtherNames)
{
    init();
    for (const char *name : {"exposure_mode_priority", "len_type", "ccm_style", "hotpixel",
                             "shutte", "shutters", "Shutter", "", "all", "size"}) {
        int value = 77;
        EXPECT_EQ(para_get_isp_cur_member(name, 0, &value, nullptr), 0) << name;
        EXPECT_EQ(para_get_isp_def_member(name, 0, &value, nullptr), 0) << name;
        EXPECT_EQ(value, 77) << name;
    }
}

TEST_F(IspQuery, AnAbsentMemberHasNoPresence)
{
    remove_home("isp_def.json");
    init();
    int value = 77;
    EXPECT_EQ(para_get_isp_cur_member("shutter", 0, &value, nullptr), 0);
    EXPECT_EQ(para_get_isp_cur_member("style", 0, &value, nullptr), present_as_number);
    EXPECT_EQ(query("isp0", "['shutter','style']"), "{'style':0}");
}

TEST_F(IspQuery, MemberLookUpGivesTheStoredValueOfAnAbsentMember)
{
    init();
    para_isp_exist[0].shutter = 0;
    int value = 77;
    EXPECT_EQ(para_get_isp_cur_member("shutter", 0, &value, nullptr), 0);
    EXPECT_EQ(value, para_get_isp_shutter_cur(0));
    EXPECT_NE(value, -1) << "unlike audio and video";
    EXPECT_EQ(para_get_isp_def_member("shutter", 0, &value, nullptr), 0);
    EXPECT_EQ(value, para_get_isp_shutter_def(0));
}

TEST_F(IspQuery, TheKeyChoosesCurrentValuesOrDefaults)
{
    init();
    para_set_isp_shutter_cur(0, 5);
    EXPECT_EQ(query("isp0", "['shutter','iris']"), "{'shutter':5,'iris':105}");
    EXPECT_EQ(query("isp0_cur_all", "['shutter','iris']"), "{'shutter':5,'iris':105}");
    EXPECT_EQ(query("isp0_def", "['shutter','iris']"), "{'shutter':104,'iris':105}");
}

TEST_F(IspQuery, AllAnswersInFileOrder)
{
    write_data("isp_cur.json", "{'isp0':" + values(500) + "}");
    init();
    EXPECT_EQ(query("isp0", "['all']"), everything(501, 500));
    EXPECT_EQ(query("isp0_cur_all", "['all']"), everything(501, 500));
    EXPECT_EQ(query("isp0_def", "['all']"), everything(0, 100));
    EXPECT_EQ(query("isp0", "['allegro']"), everything(501, 500));
    EXPECT_EQ(query("isp0", "['al']"), "{}");
    EXPECT_EQ(query("isp0", "['ALL']"), "{}");
    EXPECT_EQ(query("isp0", "['all','shutter']"), "{'shutter':504}");
    EXPECT_EQ(to_json(0, 0), everything(501, 500));
    EXPECT_EQ(to_json(0, 1), everything(0, 100));
    EXPECT_EQ(to_json(0, -5), everything(0, 100));
}

TEST_F(IspQuery, MembersOutOfReachAreLeftOut)
{
    init();
    EXPECT_EQ(query("isp0", "['exposure_mode_priority','ccm_style','nr2d','len_type','hotpixel',"
                            "'nothing',5,null,['iris'],{'a':'iris'},'hue']"),
              "{'nr2d':135,'hue':125}");
}

TEST_F(IspQuery, EveryMemberIsAnsweredByItsName)
{
    init();
    std::string names, answer;
    for (const accessors &member : all_members) {
        const std::string value =
            std::to_string(member.word == PARA_ISP_style ? 0 : 100 + member.word);
        names += std::string(names.empty() ? "['" : ",'") + member.key + "'";
        answer += std::string(answer.empty() ? "{'" : ",'") + member.key + "':" + value;
    }
    EXPECT_EQ(query("isp0", names + "]"), answer + "}") << "in the order of the request";
    EXPECT_EQ(query("isp0_def", names + "]"), answer + "}");
}

TEST_F(IspQuery, AnItemThatIsNoListIsAnsweredEmpty)
{
    init();
    for (const char *item : {"'all'", "5", "null", "[]", "{}", "[[]]", "[null]", "true"})
        EXPECT_EQ(query("isp0", item), "{}") << item;
}

TEST_F(IspQuery, OtherKeysAreNotAnswered)
{
    init();
    for (const char *key :
         {"isp0x", "isp", "isp0_", "isp0_cur", "isp0_de", "isp0_defs", "isp0_cur_alls", "isp00",
          "ISP0", "isp1", "isp1_def", "isp1_cur_all", "isp2", "isp5", "", "isp-1", "isp%d"}) {
        EXPECT_EQ(query(key, "['all']"), "none") << key;
        EXPECT_EQ(query(key, "['shutter']"), "none") << key;
    }
}

TEST_F(IspQuery, TheSecondInstanceIsAnsweredWhenItIsInUse)
{
    write_home("isp_range.json", "{'isp0':" + ranges() + ",'isp1':{}}");
    init();
    para_set_isp_style_def(1, 2);
    EXPECT_EQ(query("isp1", "['shutter','iris']"), "{'shutter':0,'iris':0}");
    EXPECT_EQ(query("isp1_cur_all", "['shutter']"), "{'shutter':0}");
    EXPECT_EQ(query("isp1_def", "['shutter']"), "{'shutter':304}");
    EXPECT_EQ(query("isp1_def", "['all']"), everything(2, 300));
    EXPECT_EQ(query("isp2", "['all']"), "none");
    EXPECT_EQ(query("isp0", "['shutter']"), "{'shutter':104}");
}

TEST_F(IspQuery, IsTraced)
{
    init();
    forget_traces();
    query("isp0_def", "['shutter']");
    query("isp0", "['all']");
    query("isp0x", "['all']");
    EXPECT_THAT(traces_of("para_get_isp_opt"),
                ElementsAre("inter isp0_def\n", "leave\n", "inter isp0\n", "inter isp0x\n"));
    EXPECT_EQ(traces()[0].level, 7);
    EXPECT_EQ(traces()[1].level, 6);
}

TEST_F(IspQuery, IsServedOverUdp)
{
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_id':1,'isp0':{'shutter':12,'saturation':60}}"),
              "{'msg_id':1}");
    EXPECT_EQ(client.ask("{'msg_type':'get','isp0':['shutter','saturation'],'isp0x':['shutter'],"
                         "'isp0_def':['shutter'],'isp0_cur_all':['shutter'],'msg_id':2}"),
              "{'isp0':{'shutter':12,'saturation':60},'isp0_def':{'shutter':104},"
              "'isp0_cur_all':{'shutter':12},'msg_id':2}");
    EXPECT_EQ(requests, 0);
}

TEST_F(IspSetByName, AKeyIsTakenByTheFirstMemberWhoseNameItBeginsWith)
{
    init();
    for (const expected_member &target : expected_record) {
        for (const std::string suffix : {"", "x", "_tuning", "2"}) {
            const std::string key = target.name + suffix;
            std::string taken_by;
            for (const std::string &name : expected_by_name_order) {
                if (taken_by.empty() && key.compare(0, name.size(), name) == 0)
                    taken_by = name;
            }
            para_isp_cur_restore_isp_def();
            EXPECT_EQ(isp_set_member_by_name(key.c_str(), 0, 33, nullptr), taken_by.empty() ? 0 : 1)
                << key;
            for (const accessors &member : all_members) {
                const int expected = member.key == taken_by ? 33 : member.def(0);
                EXPECT_EQ(member.cur(0), expected) << key << " " << member.key;
            }
        }
    }
}

TEST_F(IspSetByName, LongerNamesAreTakenByShorterOnes)
{
    init();
    const std::pair<const char *, const char *> taken[] = {
        {"rgain_tuning", "rgain"},
        {"rgain_onepush", "rgain"},
        {"bgain_tuning", "bgain"},
        {"bgain_onepush", "bgain"},
        {"exposure_mode_priority", "exposure_mode"},
        {"ggain_tuning", "ggain_tuning"},
        {"skin_saturation", "skin_saturation"},
        {"style_of_mine", "style"},
    };
    for (const auto &[key, name] : taken) {
        para_isp_cur_restore_isp_def();
        const accessors &member = member_named(name);
        EXPECT_EQ(isp_set_member_by_name(key, 0, 33, nullptr), 1) << key;
        EXPECT_EQ(member.cur(0), 33) << key;
    }
}

TEST_F(IspSetByName, TheRangeIsThatOfTheMemberThatTakesTheKey)
{
    init();
    const int max = para_get_isp_rgain_max(0);
    EXPECT_LT(max, para_get_isp_rgain_tuning_max(0));
    EXPECT_EQ(isp_set_member_by_name("rgain_tuning", 0, max + 1, nullptr), 0);
    EXPECT_EQ(isp_set_member_by_name("rgain_tuning", 0, max, nullptr), 1);
    EXPECT_EQ(isp_set_member_by_name("rgain_tuning", 0, max, nullptr), 0) << "current";
}

TEST_F(IspSetByName, OtherKeysAreIgnored)
{
    init();
    for (const char *key : {"", "s", "shutte", "Shutter", "len_type", "ccm_style", "hotpixel",
                            "size", "expcomp", "exposure", "all", "tuning"})
        EXPECT_EQ(isp_set_member_by_name(key, 0, 33, nullptr), 0) << key;
    EXPECT_EQ(to_json(0, 0), everything(0, 100));
}

TEST_F(IspSetByName, NeedsADefaultThatWasANumber)
{
    init();
    para_isp_exist[0].shutter = PARA_PRESENT;
    EXPECT_EQ(isp_set_member_by_name("shutter", 0, 33, nullptr), 0);
    EXPECT_EQ(_para_set_isp_shutter_cur(0, 33), 1) << "presence is enough for the setter";
    para_isp_exist[0].iris = PARA_PRESENT_AS_NUMBER;
    EXPECT_EQ(isp_set_member_by_name("iris", 0, 33, nullptr), 1);
    para_isp_exist[0].hue = 0;
    EXPECT_EQ(isp_set_member_by_name("hue", 0, 33, nullptr), 0);
}

TEST_F(IspSetByName, TheTextIsIgnoredAndNoHookIsTold)
{
    init();
    EXPECT_EQ(isp_set_member_by_name("shutter", 0, 33, "44"), 1);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 33);
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_TRUE(change_pending());
}

TEST_F(IspSetRequest, AppliesEachMember)
{
    init();
    change("isp0", "{'shutter':5,'unknown':1,'iris':6,'hue':5000,'len_type':7}");
    EXPECT_EQ(query("isp0", "['shutter','iris','hue']"), "{'shutter':5,'iris':6,'hue':125}");
    EXPECT_EQ(para_isp_cur[0].len_type, 127);
    EXPECT_TRUE(change_pending());
}

TEST_F(IspSetRequest, ALaterMemberOverridesAnEarlierOne)
{
    init();
    change("isp0", "{'shutter':5,'rgain':6,'rgain_tuning':7,'shutter':8}");
    EXPECT_EQ(para_get_isp_shutter_cur(0), 8);
    EXPECT_EQ(para_get_isp_rgain_cur(0), 7);
    EXPECT_EQ(para_get_isp_rgain_tuning_cur(0), 119);
}

TEST_F(IspSetRequest, TellsNoHook)
{
    init();
    change("isp0", "{'shutter':5,'style':1}");
    change("isp9", "{'shutter':6}");
    change("isp5", "{'shutter':6}");
    EXPECT_EQ(para_get_isp_shutter_cur(0), 5);
    EXPECT_EQ(requests, 0);
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(IspSetRequest, TheItemsOwnKeyNamesTheInstance)
{
    init();
    para_set_isp_style_def(1, 1);
    para_isp_cur_restore_isp_def();
    const std::string first = to_json(0, 0);
    change("isp1", "{'shutter':0}");
    EXPECT_EQ(para_get_isp_shutter_cur(1), 0) << "whether or not it is in use";
    EXPECT_EQ(to_json(0, 0), first);
}

TEST_F(IspSetRequest, KeysBeyondTheRecordsAreAcceptedAndIgnored)
{
    init();
    for (const char *key : {"isp2", "isp3", "isp4", "isp5"})
        change(key, "{'shutter':5,'style':1}");
    EXPECT_EQ(to_json(0, 0), everything(0, 100));
    EXPECT_FALSE(change_pending());
}

TEST_F(IspSetRequest, OtherKeysAreIgnored)
{
    init();
    for (const char *key : {"isp", "isp0x", "isp0_def", "isp0_cur_all", "isp6", "isp00", "ISP0",
                            "isp-1", "", "af", "isp4294967296"})
        change(key, "{'shutter':5}");
    EXPECT_EQ(para_get_isp_shutter_cur(0), 104);
    EXPECT_FALSE(change_pending());
}

TEST_F(IspSetRequest, AnItemWithoutAKeyIsIgnored)
{
    init();
    const json item = parse("{'shutter':5}");
    EXPECT_EQ(para_set_isp_opt("isp0", item.get(), "isp0"), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 104);
}

TEST_F(IspSetRequest, ValuesOfOtherTypesAreTheNumberZero)
{
    for (const char *value : {"'25'", "null", "true", "[5]", "{'a':5}", "0.9"}) {
        in_another_process([&] {
            init();
            change("isp0", std::string("{'shutter':") + value + "}");
            const bool is_true = strcmp(value, "true") == 0; // which is kept with the number 1
            EXPECT_EQ(para_get_isp_shutter_cur(0), is_true ? 1 : 0) << value;
        });
    }
}

TEST_F(IspSetRequest, NumbersSaturateAndAreThenRefused)
{
    init();
    change("isp0", "{'shutter':1e20,'iris':-1e20}");
    EXPECT_EQ(to_json(0, 0), everything(0, 100));
}

TEST_F(IspSetRequest, AnItemThatIsNoObjectChangesNothing)
{
    init();
    for (const char *item : {"[]", "['shutter',5]", "[{'shutter':5}]", "'shutter'", "5", "null"})
        change("isp0", item);
    EXPECT_EQ(to_json(0, 0), everything(0, 100));
}

TEST_F(IspSetRequest, IsTraced)
{
    init();
    forget_traces();
    change("isp0", "{'shutter':5}");
    change("isp9", "{'shutter':5}");
    EXPECT_THAT(traces_of("para_set_isp_opt"), ElementsAre("inter\n", "inter\n"));
    EXPECT_EQ(traces()[0].level, 6);
}
