// Requests for focus and zoom.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "modules/fixed/af_fixture.h"

using testing::ElementsAre;

using AfQuery = Af;

TEST_F(AfQuery, MemberLookUpIsExact)
{
    init();
    int value = 77;
    const char *text = "untouched";
    EXPECT_NE(para_get_af_member_json("zoom_value", &value, &text), 0);
    EXPECT_EQ(value, 100);
    EXPECT_STREQ(text, "untouched");
    EXPECT_NE(para_get_af_member_json("focus_value", &value, nullptr), 0);
    EXPECT_EQ(value, -7);
    for (const char *name : {"zoom", "zoom_values", "Zoom_value", "", "all"}) {
        value = 77;
        EXPECT_EQ(para_get_af_member_json(name, &value, nullptr), 0) << name;
        EXPECT_EQ(value, 77) << name;
    }
}

TEST_F(AfQuery, MemberLookUpStoresAnAbsentMembersValueToo)
{
    write_home("af_def.json", "{}");
    init();
    para_set_af_zoom_value_cur(5);
    int value = 77;
    EXPECT_EQ(para_get_af_member_json("zoom_value", &value, nullptr), 0);
    EXPECT_EQ(value, 5);
}

TEST_F(AfQuery, AnswersTheListedMembersInTheirOrder)
{
    init();
    EXPECT_EQ(query("['zoom_value','nothing','focus_mode','zoom_value',5,null]"),
              "{'zoom_value':100,'focus_mode':1,'zoom_value':100}");
    EXPECT_THAT(traces_of("para_get_af_opt"), ElementsAre("inter\n", "leave\n"));
}

TEST_F(AfQuery, AllMeansEveryPresentMember)
{
    init();
    const char *const everything = "{'focus_mode':1,'focus_zone':2,'focus_sens':5,"
                                   "'focus_value':-7,'focus_lock':0,'zoom_value':100}";
    EXPECT_EQ(query("['all']"), everything);
    EXPECT_THAT(traces_of("para_get_af_opt"), ElementsAre("inter\n"));
    EXPECT_EQ(query("['allegro']"), everything);
}

TEST_F(AfQuery, AllAmongOthersIsAnUnknownName)
{
    init();
    EXPECT_EQ(query("['all','zoom_value']"), "{'zoom_value':100}");
    EXPECT_EQ(query("['al']"), "{}");
    EXPECT_EQ(query("['All']"), "{}");
}

TEST_F(AfQuery, AnItemThatIsNoListIsAnsweredEmpty)
{
    init();
    for (const char *item : {"'all'", "5", "null", "true", "[]", "{}", "[[]]", "[5]"})
        EXPECT_EQ(query(item), "{}") << item;
}

TEST_F(AfQuery, TheMembersOfAnObjectCountAsAList)
{
    init();
    EXPECT_EQ(query("{'x':'zoom_value','y':'focus_mode'}"), "{'zoom_value':100,'focus_mode':1}");
    EXPECT_EQ(query("{'x':'all'}"), query("['all']"));
}

TEST_F(AfQuery, KeyMayBeCutShort)
{
    init();
    EXPECT_EQ(query("['zoom_value']", "a"), "{'zoom_value':100}");
    EXPECT_EQ(query("['zoom_value']", ""), "{'zoom_value':100}");
}

TEST_F(AfQuery, AnItemWithoutAKeyIsAnswered)
{
    init();
    const json item = parse("['zoom_value']");
    cJSON *answer = nullptr;
    EXPECT_EQ(para_get_af_opt("af", item.get(), &answer, "af"), 0);
    const json owned(answer);
    EXPECT_EQ(compact(answer), "{'zoom_value':100}");
}

TEST_F(AfQuery, AnotherKeyIsNotAnswered)
{
    init();
    for (const char *key : {"afx", "f", "AF", "isp0"})
        EXPECT_EQ(query("['zoom_value']", key), "none") << key;
    EXPECT_THAT(traces_of("para_get_af_opt"),
                ElementsAre("inter\n", "leave\n", "inter\n", "leave\n", "inter\n", "leave\n",
                            "inter\n", "leave\n"));
}

TEST_F(AfQuery, IsServedOverUdp)
{
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'get','msg_name':'n','msg_id':5,'af':['zoom_value']}"),
              "{'msg_name':'n','msg_id':5,'af':{'zoom_value':100}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','afx':['all']}"), "{}") << "the module refuses the key";
}

TEST_F(AfQuery, CannotBeChangedByASetRequest)
{
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_id':5,'af':{'zoom_value':200}}"), "{'msg_id':5}");
    EXPECT_EQ(para_get_af_zoom_value_cur(), 100);
}
