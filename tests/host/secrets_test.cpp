// Values of secrets stand in no trace, no list and no log.
#include "host/host_process.h"

namespace {

class HostSecrets : public HostProcess {
protected:
    HostSecrets()
    {
        write_home("descriptions.json",
                   "{'netport':{'stream_key':{'secret':true}},'misc':{'pin':{'secret':true}},"
                   "'audio':5,'af':{'zoom_value':{'label':'Zoom'}}}");
        write_home("www2json.json", "{'access':['netport','misc'],"
                                    "'netport':{'stream_key':['skey','S']},"
                                    "'misc':{'pin':['code','N']},'other':{'pin':'x'}}");
        write_home("netport.conf", "http_port = '80'\nstream_key = 'hush-default'\n");
        write_home("misc_range.json", "{'version':2,'pin':[0,9999999]}");
        write_home("misc.conf", "pin = '7654321'\n");
    }

    bool tells_a_secret(const std::string &text) const
    {
        return text.find("hush") != std::string::npos || text.find("7654") != std::string::npos;
    }

    Client client;
};

TEST_F(HostSecrets, AreHiddenAtEveryTraceLevel)
{
    write_data("netport.conf", "stream_key = 'hush-saved'\n");
    start_host({"--trace", "7"});
    EXPECT_EQ(client.ask("{'msg_type':'set','netport':{'stream_key':'hush-set'},"
                         "'misc':{'pin':7654000}}"),
              "{}");
    EXPECT_EQ(client.ask("{'msg_type':'get','netport':['all'],'misc':['pin']}"),
              "{'netport':{'http_port':'80','stream_key':'hush-set'},'misc':{'pin':7654000}}")
        << "who asks gets them";
    EXPECT_EQ(client.request("{'msg_from':'www','msg_type':'set','msg_name':'access',"
                             "'data':'skey=hush-web&code=7654001'}"),
              "result=success");
    EXPECT_EQ(client.ask("{'msg_type':'get','misc':['pin']}"), "{'misc':{'pin':7654001}}");
    client.send("\"stream_key\": \"hush-broken");
    EXPECT_EQ(client.ask("{'msg_type':'set','netport':{'STREAM_KEY':'hush-other'}}"), "{}");
    EXPECT_EQ(client.ask("{'msg_type':'api_set','msg_name':'save'}"), "{'msg_name':'save'}");
    EXPECT_EQ(end_host(SIGTERM), 0);
    const std::string traces = host->errors();
    EXPECT_NE(traces.find("stream_key..."), std::string::npos) << traces;
    EXPECT_FALSE(tells_a_secret(traces)) << traces;
}

TEST_F(HostSecrets, AreInNoDescriptionAndNoLog)
{
    start_host();
    client.ask("{'msg_type':'set','netport':{'stream_key':'hush-set'},'misc':{'pin':7654000}}");
    const std::string log = client.ask("{'msg_type':'api_get','msg_name':'log'}");
    EXPECT_NE(log.find("'member':'stream_key','secret':true"), std::string::npos) << log;
    EXPECT_FALSE(tells_a_secret(log)) << log;
    EXPECT_FALSE(tells_a_secret(client.ask("{'msg_type':'api_get','msg_name':'describe'}")));
    EXPECT_TRUE(tells_a_secret(
        client.ask("{'msg_type':'api_get','msg_name':'describe','data':{'secrets':1}}")));
}

} // namespace
