// Requests to conf modules.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "modules/text/conf_answers.h"
#include "modules/text/conf_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

using ConfSetRequest = ConfModule;
using ConfQuery = ConfModule;

TEST_F(ConfSetRequest, AppliesTexts)
{
    init();
    forget_traces();
    change("{'port':'8080','new':'1','rtsp':'554','name':''}");
    EXPECT_EQ(value("port") + value("new") + value("rtsp") + value("name"), "80801554");
    EXPECT_THAT(traces_of("para_set_conf_opt"), ElementsAre("need_to_notify\n"));
    EXPECT_TRUE(change_pending());
}

TEST_F(ConfSetRequest, TellsTheUpdateHookOnceWithTheRow)
{
    init();
    change("{'port':'8080','rtsp':'1','name':'x'}");
    EXPECT_THAT(updates_told, ElementsAre("netport"));
    EXPECT_THAT(members_told, IsEmpty());
}

TEST_F(ConfSetRequest, OneChangedMemberIsEnoughWhereverItStands)
{
    init();
    change("{'port':'8080','rtsp':'554'}");
    EXPECT_THAT(updates_told, ElementsAre("netport"));
    change("{'rtsp':'1','port':'8080','name':5}");
    EXPECT_THAT(updates_told, ElementsAre("netport", "netport"));
}

TEST_F(ConfSetRequest, OtherTypesAreSkippedWithoutATrace)
{
    init();
    forget_traces();
    change("{'port':8080,'rtsp':true,'name':null,'empty':['x'],'new':{'a':'b'}}");
    EXPECT_EQ(query("['all']"), query("['all']", "netport_def"));
    EXPECT_THAT(traces_of("para_set_conf_opt"), IsEmpty());
    EXPECT_THAT(updates_told, IsEmpty());
    EXPECT_FALSE(change_pending());

    change("{'port':8080,'rtsp':'555'}");
    EXPECT_EQ(value("port") + " " + value("rtsp"), "80 555");
}

TEST_F(ConfSetRequest, TellsNothingWhenNothingChanged)
{
    init();
    forget_traces();
    change("{'port':'80','rtsp':'554'}");
    for (const char *item : {"{}", "[]", "['a']", "'text'", "5", "null"})
        change(item);
    EXPECT_THAT(traces(), IsEmpty());
    EXPECT_THAT(updates_told, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(ConfSetRequest, TellsOfAChangeThatIsAnsweredByOneAlone)
{
    init();
    let_changes_answer(2);
    change("{'port':'8080'}");
    EXPECT_EQ(value("port"), "8080");
    EXPECT_THAT(updates_told, IsEmpty());
    EXPECT_TRUE(change_pending());
}

TEST_F(ConfSetRequest, WorksWithoutAHook)
{
    para_profile.conf_update_hook = nullptr;
    init();
    change("{'port':'1'}");
    EXPECT_EQ(value("port"), "1");
}

TEST_F(ConfQuery, AnswersTextsInTheOrderAsked)
{
    init(port_defaults, "port = '8080'\n");
    EXPECT_EQ(query("['rtsp','port','nothing','empty',5,null,[]]"),
              "{'rtsp':'554','port':'8080','empty':''}");
    EXPECT_EQ(query("['port']"), "{'port':'8080'}");
}

TEST_F(ConfQuery, AnItemThatIsNoListIsAnsweredEmpty)
{
    init();
    for (const char *item : {"'all'", "5", "null", "[]", "{}", "[[]]", "[null]", "['al']"})
        EXPECT_EQ(query(item), "{}") << item;
}

TEST_F(ConfQuery, AllAnswersEveryEntry)
{
    init(port_defaults, "port = '8080'\nmore = 'm'\n");
    const char *const current =
        "{'port':'8080','rtsp':'554','name':'front door','empty':'','more':'m'}";
    const char *const defaults = "{'port':'80','rtsp':'554','name':'front door','empty':''}";
    for (const char *item : {"['all']", "['allegro']"}) {
        EXPECT_EQ(query(item), current) << item;
        EXPECT_EQ(query(item, "netport_def"), defaults) << item;
        EXPECT_EQ(query(item, "undefined"), defaults) << item;
    }
    EXPECT_EQ(query("['all','port']"), "{'port':'8080'}");
}

TEST_F(ConfQuery, OnlyAllGivesDefaults)
{
    init(port_defaults, "port = '8080'\nrtsp = '555'\n");
    EXPECT_EQ(query("['port','rtsp']", "netport_def"), "{'port':'8080','rtsp':'555'}");
    EXPECT_EQ(query("['port']", "netport_def"), "{'port':'8080'}");
}

TEST_F(ConfQuery, AnUnknownRowIsAnsweredEmpty)
{
    init();
    EXPECT_EQ(query("['port']", "x", "netports"), "{}");
    EXPECT_EQ(query("['all']", "x", "netports"), "{}");
}

TEST_F(ConfQuery, TracesItsBeginningAndItsEnd)
{
    init();
    forget_traces();
    query("['port']");
    EXPECT_THAT(traces_of("para_get_conf_opt"), ElementsAre("inter\n", "leave\n"));
    EXPECT_THAT(levels_of("inter", "para_get_conf_opt"), ElementsAre(7));
    EXPECT_THAT(levels_of("leave", "para_get_conf_opt"), ElementsAre(7));
    forget_traces();
    query("['all']");
    EXPECT_THAT(traces_of("para_get_conf_opt"), ElementsAre("inter\n"));
}

TEST_F(ConfQuery, IsServedOverUdp)
{
    write_home("netport.conf", port_defaults);
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_id':1,'netport':{'port':'8080','rtsp':555}}"),
              "{'msg_id':1}");
    EXPECT_EQ(client.ask("{'msg_type':'get','netport':['port','rtsp'],'overlay':['all']}"),
              "{'netport':{'port':'8080','rtsp':'554'},'overlay':{}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','netport_def':['all']}"),
              "{'netport_def':{'port':'80','rtsp':'554','name':'front door','empty':''}}");
    EXPECT_THAT(updates_told, ElementsAre("netport"));
    EXPECT_THAT(members_told, IsEmpty());
}

TEST_F(ConfQuery, LongTextsTravelOverUdp)
{
    const std::string fits(255, 'f'), longer(256, 'l'), huge(3000, 'h');
    write_home("netport.conf", port_defaults);
    start_store();
    Client client;
    client.ask("{'msg_type':'set','netport':{'port':'" + fits + "'}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','netport':['port']}"),
              "{'netport':{'port':'" + fits + "'}}");
    for (const std::string &text : {longer, huge}) {
        client.ask("{'msg_type':'set','netport':{'port':'" + text + "'}}");
        EXPECT_EQ(client.ask("{'msg_type':'get','netport':['port']}"), "{'netport':{}}");
        EXPECT_THAT(client.ask("{'msg_type':'get','netport':['all']}"),
                    StartsWith("{'netport':{'port':'" + text + "'"));
    }
}
