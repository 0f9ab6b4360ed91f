// Writing and reloading conf files.
#include "host/host_process.h"

namespace {

class ConfFiles : public HostProcess {
protected:
    ConfFiles()
    {
        write_home("netport.conf", "http_port = '80'\n");
        write_home("overlay.conf", "title = 'Hall'\n");
    }

    std::string set_port(const std::string &port)
    {
        return client.ask("{'msg_type':'set','netport':{'http_port':'" + port + "'}}");
    }

    std::string values(const std::string &module)
    {
        return client.ask("{'msg_type':'get','" + module + "':['all']}");
    }

    std::string reload(const std::string &reload_data)
    {
        return client.ask("{'msg_type':'api_set','msg_name':'reload','msg_id':2" + reload_data +
                          "}");
    }

    Client client;
};

const char *const done = "{'msg_name':'reload','msg_id':2}";

TEST_F(ConfFiles, AreNotWrittenWhenSwitchedOff)
{
    start_host({"--no-write-conf"});

    EXPECT_EQ(set_port("8080"), "{}");
    EXPECT_EQ(values("netport"), "{'netport':{'http_port':'8080'}}");
    EXPECT_EQ(end_host(SIGTERM), 0);

    EXPECT_EQ(read_data("netport.conf"), std::nullopt);
}

TEST_F(ConfFiles, AreWrittenByDefault)
{
    start_host();

    EXPECT_EQ(set_port("8080"), "{}");
    EXPECT_TRUE(wait_until([&] { return read_data("netport.conf") == "http_port = \"8080\"\n"; }));
    EXPECT_EQ(read_data("overlay.conf"), std::nullopt) << "it did not change";
    EXPECT_EQ(end_host(SIGTERM), 0);

    start_host();
    EXPECT_EQ(values("netport"), "{'netport':{'http_port':'8080'}}");
}

TEST_F(ConfFiles, NetportIsReloadedUnlessToldOtherwise)
{
    start_host();
    write_data("netport.conf", "http_port = '81'\n");

    EXPECT_EQ(reload(""), done);
    EXPECT_TRUE(wait_until([&] { return values("netport") == "{'netport':{'http_port':'81'}}"; }));
    EXPECT_TRUE(wait_until([&] { return host_has_logged("conf_update: netport"); }));

    write_data("netport.conf", "http_port = '82'\n");
    EXPECT_EQ(reload(",'data':{'module':'netport'}"), done);
    EXPECT_TRUE(wait_until([&] { return values("netport") == "{'netport':{'http_port':'82'}}"; }));
}

TEST_F(ConfFiles, OtherModulesAreReloadedByName)
{
    start_host();
    write_data("overlay.conf", "title = 'Yard'\n");

    EXPECT_EQ(reload(",'data':{'module':'overlay'}"), done);

    EXPECT_EQ(values("overlay"), "{'overlay':{'title':'Yard'}}");
    EXPECT_TRUE(host_has_logged("conf_update: overlay"));
}

TEST_F(ConfFiles, ReloadRefusesEveryOtherModule)
{
    start_host();

    for (const char *module : {"'misc'", "'conf'", "'net'", "'netport2'", "''", "5", "null", "[]"})
        EXPECT_EQ(reload(",'data':{'module':" + std::string(module) + "}"), invalid_command)
            << module;
    EXPECT_EQ(client.ask("{'msg_type':'api_get','msg_name':'reload'}"), invalid_command);
    EXPECT_FALSE(host_has_logged("conf_update"));
}

TEST_F(ConfFiles, AModuleThatTheListLeavesOutIsNotReloaded)
{
    write_home("www2json.json", "{'conf_pattern_list':['overlay']}");
    start_host();

    EXPECT_EQ(reload(""), invalid_command);
    EXPECT_EQ(reload(",'data':{'module':'overlay'}"), done);
}

} // namespace
