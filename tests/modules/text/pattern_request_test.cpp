// Requests to pattern modules.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "modules/text/pattern_fixture.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

using JsonSetRequest = JsonModule;
using JsonQuery = JsonModule;

TEST_F(JsonSetRequest, AppliesTextsAndNumbers)
{
    init();
    forget_traces();
    change("{'brightness':7,'mode':'auto','offset':-5000}");
    EXPECT_EQ(value("brightness") + " " + value("mode") + " " + value("offset"), "7 auto -5000");
    EXPECT_THAT(traces_of("para_set_misc_opt"), ElementsAre("need_to_notify\n"));
    EXPECT_TRUE(change_pending());
}

TEST_F(JsonSetRequest, TheOtherTypeIsTracedAndSkipped)
{
    init();
    forget_traces();
    change("{'brightness':'7','mode':1,'nothing':1,'flags':true,'plain':7,'offset':true,"
           "'single':null,'empty':[],'unset':{}}");
    EXPECT_THAT(traces_of("para_set_misc_opt"),
                ElementsAre("brightness type wrong,set:16,def:8\n",
                            "mode type wrong,set:8,def:16\n", "nothing type wrong,set:8,def:0\n",
                            "flags type wrong,set:2,def:0\n", "plain type wrong,set:8,def:0\n",
                            "offset type wrong,set:2,def:8\n", "single type wrong,set:4,def:16\n",
                            "empty type wrong,set:32,def:0\n", "unset type wrong,set:64,def:8\n"));
    EXPECT_THAT(levels_of("mode type wrong,set:8,def:16", "para_set_misc_opt"), ElementsAre(3));
    EXPECT_EQ(object(0), object(1));
    EXPECT_THAT(requests, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(JsonSetRequest, TheOtherMembersAreStillApplied)
{
    init();
    change("{'mode':1,'brightness':8,'nothing':'x','single':'none'}");
    EXPECT_EQ(value("brightness") + value("mode"), "8on");
    EXPECT_THAT(requests, SizeIs(1));
}

TEST_F(JsonSetRequest, OneChangedMemberIsEnoughWhereverItStands)
{
    init();
    change("{'brightness':8,'mode':'on'}");
    EXPECT_THAT(requests, SizeIs(1));
    change("{'mode':'auto','brightness':8,'single':'none','nothing':1}");
    EXPECT_THAT(requests, SizeIs(2));
}

TEST_F(JsonSetRequest, TellsTheHookOnceWithRowAndItem)
{
    init();
    const json tree = parse("{'panel_of_the_client':{'brightness':7,'mode':'auto','offset':1}}");
    EXPECT_EQ(para_set_misc_opt("panel_of_the_client", tree->child, "panel"), 0);
    ASSERT_THAT(requests, SizeIs(1));
    EXPECT_EQ(requests[0].module, "panel");
    EXPECT_EQ(requests[0].item, tree->child);
}

TEST_F(JsonSetRequest, TellsNothingWhenNothingChanged)
{
    init();
    forget_traces();
    change("{'brightness':50,'mode':'on','single':'only'}");
    change("{'mode':'never'}");
    change("{'unset':1}");
    for (const char *item : {"{}", "[]", "'text'", "5", "null", "true"})
        change(item);
    EXPECT_THAT(requests, IsEmpty());
    EXPECT_EQ(count_traces("need_to_notify"), 0);
    EXPECT_FALSE(change_pending());
}

TEST_F(JsonSetRequest, ChildrenWithoutAKeyAreRefused)
{
    init();
    change("[5,'auto',null,[1]]");
    EXPECT_EQ(object(0), object(1));
    EXPECT_THAT(requests, IsEmpty());
}

TEST_F(JsonSetRequest, NumbersAreTakenAsIntegers)
{
    init();
    change("{'brightness':3.9}");
    EXPECT_EQ(value("brightness"), "3");
    change("{'brightness':1e20}");
    EXPECT_EQ(value("brightness"), "2147483647");
    change("{'brightness':-99999999999}");
    EXPECT_EQ(value("brightness"), "-2147483648");
}

TEST_F(JsonSetRequest, AnUnknownRowIsRefused)
{
    init();
    forget_traces();
    const json tree = parse("{'brightness':7}");
    EXPECT_EQ(para_set_misc_opt("panel", tree.get(), "panels"), 0);
    EXPECT_EQ(value("brightness"), "50");
    EXPECT_THAT(requests, IsEmpty());
    EXPECT_THAT(traces_of("para_set_misc_opt"),
                ElementsAre("brightness type wrong,set:8,def:-1\n"));
}

TEST_F(JsonQuery, AnswersTheListedMembersInTheirForm)
{
    init();
    para_set_json_cur("panel", "brightness", 60);
    EXPECT_EQ(query("['mode','brightness','single','offset']"),
              "{'mode':'on','brightness':60,'single':'only','offset':-3}");
    EXPECT_EQ(query("['brightness']"), "{'brightness':60}");
}

TEST_F(JsonQuery, LeavesOutWhatHasNoKindOrNoValue)
{
    init();
    EXPECT_EQ(query("['flags','extra','plain','empty','unset','unset_mode','nothing','',5,null,[],"
                    "{},'mode']"),
              "{'mode':'on'}");
    EXPECT_EQ(query("[]"), "{}");
}

TEST_F(JsonQuery, AnItemThatIsNoListIsAnsweredEmpty)
{
    init();
    for (const char *item : {"'all'", "5", "null", "{}", "[[]]", "[null]", "[5]"})
        EXPECT_EQ(query(item), "{}") << item;
}

TEST_F(JsonQuery, AllAnswersEveryEntryAndUnknownOnesAsNumbers)
{
    init();
    para_set_json_cur("panel", "mode", 0);
    EXPECT_EQ(query("['all']"), "{'brightness':50,'offset':-3,'mode':'off','single':'only',"
                                "'flags':1,'extra':12}");
    EXPECT_EQ(query("['all']"), object(0));
}

TEST_F(JsonQuery, OneNameThatBeginsWithAllMeansAll)
{
    init();
    for (const char *item : {"['allegro']", "['all ']", "['all members']"})
        EXPECT_EQ(query(item), object(0)) << item;
    EXPECT_EQ(query("['al']"), "{}");
    EXPECT_EQ(query("['ALL']"), "{}");
    EXPECT_EQ(query("['all','mode']"), "{'mode':'on'}");
    EXPECT_EQ(query("['mode','all']"), "{'mode':'on'}");
}

TEST_F(JsonQuery, AKeyWithDefAsksForDefaults)
{
    init();
    para_set_json_cur("panel", "brightness", 60);
    para_set_json_cur_str("panel", "mode", "auto");
    for (const char *key : {"panel_def", "paneldef", "undefined", "def"}) {
        EXPECT_EQ(query("['mode','brightness']", key), "{'mode':'on','brightness':50}") << key;
        EXPECT_EQ(query("['all']", key), object(1)) << key;
    }
    for (const char *key : {"panel_de", "panel_DEF", "panel_d_ef"})
        EXPECT_EQ(query("['mode']", key), "{'mode':'auto'}") << key;
    EXPECT_NE(object(0), object(1));
}

TEST_F(JsonQuery, TracesItsBeginningAndItsEnd)
{
    init();
    forget_traces();
    query("['mode']", "panel_def");
    EXPECT_THAT(traces_of("para_get_misc_opt"), ElementsAre("inter panel_def def:1\n", "leave\n"));
    EXPECT_THAT(levels_of("inter panel_def def:1", "para_get_misc_opt"), ElementsAre(7));
    EXPECT_THAT(levels_of("leave", "para_get_misc_opt"), ElementsAre(7));

    forget_traces();
    query("['all']");
    EXPECT_THAT(traces_of("para_get_misc_opt"), ElementsAre("inter panel def:0\n"));
}

TEST_F(JsonQuery, ObjectsAreFilledFromEitherSet)
{
    init();
    para_set_json_cur("panel", "brightness", 60);
    const json tree = parse("{'before':1}");
    EXPECT_EQ(Create_Json_Misc_Object("panel", tree.get(), 7), 0);
    EXPECT_EQ(compact(tree.get()), "{'before':1,'brightness':50,'offset':-3,'mode':'on',"
                                   "'single':'only','flags':1,'extra':12}");
    EXPECT_THAT(object(0), HasSubstr("'brightness':60"));
}

TEST_F(JsonQuery, IsServedOverUdp)
{
    write_home("www2json.json", "{'json_pattern_list':['panel']}");
    write_module("panel");
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_id':1,'panel':{'mode':'auto','brightness':300,"
                         "'offset':'1'}}"),
              "{'msg_id':1}");
    EXPECT_EQ(client.ask("{'msg_type':'get','panel':['mode','brightness','offset']}"),
              "{'panel':{'mode':'auto','brightness':300,'offset':-3}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','panel_def':['all']}"),
              "{'panel_def':{'brightness':50,'offset':-3,'mode':'on','single':'only','flags':1,"
              "'extra':12}}");
    ASSERT_THAT(requests, SizeIs(1));
    EXPECT_EQ(requests[0].module, "panel");
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(JsonQuery, LongTextsTravelOverUdp)
{
    const std::string fits(255, 'f'), longer(256, 'l');
    write_home("www2json.json", "{'json_pattern_list':['panel']}");
    write_module("panel", "{'e':['a','" + fits + "','" + longer + "']}", "e = 'a'\n");
    start_store();
    Client client;
    client.ask("{'msg_type':'set','panel':{'e':'" + fits + "'}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','panel':['e']}"), "{'panel':{'e':'" + fits + "'}}");
    client.ask("{'msg_type':'set','panel':{'e':'" + longer + "'}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','panel':['e']}"), "{'panel':{}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','panel':['all']}"), "{'panel':{'e':'" + longer + "'}}");
}
