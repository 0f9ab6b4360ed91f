#include "host/host_process.h"

namespace {

class LensCommand : public HostProcess {
protected:
    // Returns the reply to a request with this "data".
    std::string set(const std::string &lens_data)
    {
        return client.ask("{'msg_type':'api_set','msg_name':'lens','msg_id':1,'data':" + lens_data +
                          "}");
    }

    std::string values() { return client.ask("{'msg_type':'get','af':['all']}"); }

    Client client;
};

const char *const untouched = "{'af':{'focus_mode':1,'zoom_value':0}}";

std::string reply_with(const std::string &accepted, const std::string &refused)
{
    return "{'msg_name':'lens','msg_id':1,'accepted':[" + accepted + "],'refused':{" + refused +
           "}}";
}

TEST_F(LensCommand, SetsMembers)
{
    start_host();

    EXPECT_EQ(set("{'zoom_value':1000,'focus_mode':0}"),
              reply_with("'zoom_value','focus_mode'", ""));
    EXPECT_EQ(values(), "{'af':{'focus_mode':0,'zoom_value':1000}}");
}

TEST_F(LensCommand, AcceptsTheValueThatAMemberHas)
{
    start_host();

    EXPECT_EQ(set("{'focus_mode':1}"), reply_with("'focus_mode'", ""));
    EXPECT_FALSE(host_has_logged("af_set_notify"));
}

TEST_F(LensCommand, RefusesValuesOutsideTheRange)
{
    start_host();

    EXPECT_EQ(set("{'zoom_value':1001}"),
              reply_with("", "'zoom_value':'out of range, -100 to 1000'"));
    EXPECT_EQ(set("{'zoom_value':-101}"),
              reply_with("", "'zoom_value':'out of range, -100 to 1000'"));
    EXPECT_EQ(set("{'focus_mode':4,'zoom_value':-100}"),
              reply_with("'zoom_value'", "'focus_mode':'out of range, 0 to 3'"));
}

TEST_F(LensCommand, RefusesWhatIsNoInteger)
{
    start_host();

    for (const char *value : {"'2'", "null", "true", "[2]", "{'a':2}", "2.5", "1e300", "-1e300",
                              "2147483648", "-2147483649", "99999999999999999999"})
        EXPECT_EQ(set("{'focus_mode':" + std::string(value) + "}"),
                  reply_with("", "'focus_mode':'not a 32-bit integer'"))
            << value;
    EXPECT_EQ(values(), untouched);
}

TEST_F(LensCommand, RefusesMembersThatTheDeviceLacks)
{
    start_host();

    EXPECT_EQ(set("{'iris':1,'':1,'Focus_Mode':2,'focus_lock':0}"),
              reply_with("", "'iris':'no such member','':'no such member',"
                             "'Focus_Mode':'no such member','focus_lock':'no such member'"));
    EXPECT_EQ(values(), untouched);
}

TEST_F(LensCommand, RefusesRequestsWithoutAnObject)
{
    start_host();

    for (const char *wrong : {"5", "'zoom_value'", "[1,2]", "null"})
        EXPECT_EQ(set(wrong), invalid_command) << wrong;
    EXPECT_EQ(client.ask("{'msg_type':'api_set','msg_name':'lens'}"), invalid_command);
    EXPECT_EQ(client.ask("{'msg_type':'api_get','msg_name':'lens','data':{'zoom_value':5}}"),
              invalid_command);
    EXPECT_EQ(values(), untouched);
}

TEST_F(LensCommand, ServesTheFullestRequest)
{
    start_host();

    const std::string unknown = ",'':1", end = "}}";
    std::string request = "{'msg_type':'api_set','msg_name':'lens','data':{'zoom_value':9";
    while (request.size() + unknown.size() + end.size() <= PARA_MESSAGE_MAX)
        request += unknown;

    const std::string reply = client.ask(request + end);

    EXPECT_EQ(reply.find("{'msg_name':'lens','accepted':['zoom_value'],'refused':{'':"), 0u)
        << reply.substr(0, 200);
}

TEST_F(LensCommand, LogsEachChange)
{
    start_host();

    set("{'zoom_value':5,'focus_mode':9}");

    EXPECT_TRUE(host_has_logged("camparamd: af_set_notify: para_set_af_zoom_value_cur(5)\n"));
    EXPECT_FALSE(host_has_logged("focus_mode"));
}

} // namespace
