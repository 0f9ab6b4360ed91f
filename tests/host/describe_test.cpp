#include <csignal>
#include <regex>

#include "host/host_process.h"

namespace {

class DescribeCommand : public HostProcess {
protected:
    // The answer without its revision.
    std::string ask(const std::string &request)
    {
        return std::regex_replace(client.ask(request), std::regex(",'revision':[0-9]+"), "");
    }

    int revision()
    {
        const json answer(cJSON_Parse(
            client.request("{'msg_type':'api_get','msg_name':'describe'}").value_or("").c_str()));
        const cJSON *const item = cJSON_GetObjectItem(answer.get(), "revision");
        EXPECT_TRUE(cJSON_IsNumber(item));
        return item != nullptr ? item->valueint : 0;
    }

    Client client;
};

const char *const af =
    "'af':{'set':'lens','members':{"
    "'focus_mode':{'kind':'number','min':0,'max':3,'default':1,'start':1,'current':1},"
    "'zoom_value':{'kind':'number','min':-100,'max':1000,'default':0,"
    "'start':0,'current':0}}}";

// The fixture writes files for the lens only: no other module has members, and there is no stream.
const std::string every_module =
    "'isp0':{'members':{}}," + std::string(af) +
    ",'audio':{'members':{}},'misc':{'members':{}},'netport':{'members':{}},"
    "'overlay':{'members':{}},'ndi_config':{'members':{}}";

std::string reply_with(const std::string &modules)
{
    return "{'msg_name':'describe','msg_id':7,'modules':{" + modules + "}}";
}

TEST_F(DescribeCommand, ListsEveryPresentMember)
{
    start_host();

    EXPECT_EQ(ask("{'msg_type':'api_get','msg_name':'describe','msg_id':7}"),
              reply_with(every_module));
}

TEST_F(DescribeCommand, TellsCurrentAndDefaultApart)
{
    write_data("af_cur.json", "{'zoom_value':640}");
    start_host();

    const std::string reply = ask("{'msg_type':'api_get','msg_name':'describe','msg_id':7}");

    EXPECT_NE(reply.find("'default':0,'start':640,'current':640}"), std::string::npos) << reply;
}

TEST_F(DescribeCommand, ListLimitsTheAnswer)
{
    start_host();

    const std::string request =
        "{'msg_type':'api_get','msg_name':'describe','msg_id':7,'data':{'modules':";
    EXPECT_EQ(ask(request + "['af']}}"), reply_with(af));
    EXPECT_EQ(ask(request + "['nosuch',3,null,'af']}}"), reply_with(af));
    EXPECT_EQ(ask(request + "['nosuch']}}"), reply_with(""));
    EXPECT_EQ(ask(request + "['a','AF','af_']}}"), reply_with(""));
    EXPECT_EQ(ask(request + "[]}}"), reply_with(""));
}

TEST_F(DescribeCommand, OneMemberCanBeAskedFor)
{
    start_host();

    EXPECT_EQ(ask("{'msg_type':'api_get','msg_name':'describe','msg_id':7,"
                  "'data':{'modules':['af'],'member':'focus_mode'}}"),
              reply_with("'af':{'set':'lens','members':{'focus_mode':{'kind':'number','min':0,"
                         "'max':3,'default':1,'start':1,'current':1}}}"));
    EXPECT_EQ(ask("{'msg_type':'api_get','msg_name':'describe','msg_id':7,"
                  "'data':{'modules':['af'],'member':'none'}}"),
              reply_with("'af':{'set':'lens','members':{}}"));
}

// But not when a value changes.
TEST_F(DescribeCommand, HasAnotherRevisionWhenTheSettingsAreOthers)
{
    write_home("netport.conf", "http_port = '80'\n");
    start_host();
    const int before = revision();

    ask("{'msg_type':'set','netport':{'http_port':'81'}}");
    EXPECT_EQ(revision(), before);
    EXPECT_EQ(ask("{'msg_type':'api_set','msg_name':'save'}"), "{'msg_name':'save'}");
    write_data("netport.conf", "http_port = '81'\nrtsp_port = '554'\n");
    EXPECT_EQ(ask("{'msg_type':'api_set','msg_name':'reload'}"), "{'msg_name':'reload'}");
    const int with_another_key = revision();
    EXPECT_NE(with_another_key, before);
    end_host(SIGTERM);

    write_home("af_range.json", "{'focus_mode':[0,4],'zoom_value':[-100,1000]}");
    start_host();
    EXPECT_NE(revision(), with_another_key) << "of another range";
}

TEST_F(DescribeCommand, RefusesACursorOfAnotherForm)
{
    start_host();

    for (const char *cursor :
         {"5", "'5'", "'a.b'", "'1.2x'", "''", "null", "'1.'", "'-1.0'", "'1.-2'", "' 1.2'",
          "'1. 2'", "'2147483648.0'", "'99999999999999999999.0'"})
        EXPECT_EQ(ask("{'msg_type':'api_get','msg_name':'describe','data':{'cursor':" +
                      std::string(cursor) + "}}"),
                  invalid_command)
            << cursor;
}

TEST_F(DescribeCommand, BehindTheLastPageIsNothing)
{
    start_host();

    for (const char *cursor : {"99.0", "63.1", "2147483647.0"})
        EXPECT_EQ(ask("{'msg_type':'api_get','msg_name':'describe','msg_id':7,'data':{'cursor':'" +
                      std::string(cursor) + "'}}"),
                  reply_with(""))
            << cursor;
}

TEST_F(DescribeCommand, RefusesAListOfAnotherType)
{
    start_host();

    for (const char *list : {"'af'", "{'af':1}", "5", "null"})
        EXPECT_EQ(ask("{'msg_type':'api_get','msg_name':'describe','data':{'modules':" +
                      std::string(list) + "}}"),
                  invalid_command)
            << list;
}

TEST_F(DescribeCommand, IgnoresDataThatIsNoObject)
{
    start_host();

    for (const char *ignored : {"5", "'af'", "['af']", "null"})
        EXPECT_EQ(ask("{'msg_type':'api_get','msg_name':'describe','msg_id':7,'data':" +
                      std::string(ignored) + "}"),
                  reply_with(every_module))
            << ignored;
}

TEST_F(DescribeCommand, CannotBeSet)
{
    start_host();

    EXPECT_EQ(ask("{'msg_type':'api_set','msg_name':'describe'}"), invalid_command);
}

TEST_F(DescribeCommand, RunsByItsExactNameAlone)
{
    start_host();

    for (const char *name : {"desc", "", "d", "Describe", "describe "})
        EXPECT_EQ(ask("{'msg_type':'api_get','msg_name':'" + std::string(name) + "'}"),
                  invalid_command)
            << name;
}

TEST_F(DescribeCommand, EchoesNoIdentifierOfAnotherType)
{
    start_host();

    const std::string reply = ask("{'msg_type':'api_get','msg_name':'describe','msg_id':'x'}");

    EXPECT_EQ(reply.find("{'msg_name':'describe','modules':"), 0u) << reply;
}

TEST_F(DescribeCommand, FindsIdentifiersInAnyCase)
{
    start_host();

    EXPECT_EQ(ask("{'msg_type':'api_get','MSG_NAME':'save','Msg_Id':3}"),
              "{'msg_name':'save','msg_id':3}");
}

} // namespace
