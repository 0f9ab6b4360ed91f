// Writing and reloading conf files.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

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

std::string failed(const std::string &module, const std::string &reason)
{
    return "{'msg_name':'reload','msg_id':2,'failed':{'" + module + "':'" + reason + "'}}";
}

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

TEST_F(ConfFiles, AreNotReloadedWhileAChangeIsToBeSaved)
{
    start_host();
    std::filesystem::create_directory(data + "/netport.conf"); // keeps it from being saved
    EXPECT_EQ(set_port("8080"), "{}");

    EXPECT_EQ(reload(""), failed("netport", "changes are still to be saved"));
    EXPECT_EQ(reload(""), failed("netport", "changes are still to be saved"));
    EXPECT_EQ(values("netport"), "{'netport':{'http_port':'8080'}}");

    std::filesystem::remove(data + "/netport.conf");
    EXPECT_EQ(client.ask("{'msg_type':'api_set','msg_name':'save'}"), "{'msg_name':'save'}");
    EXPECT_EQ(reload(""), done);
    EXPECT_EQ(values("netport"), "{'netport':{'http_port':'8080'}}");
}

TEST_F(ConfFiles, AreTakenByAReloadWhereWritingIsOff)
{
    start_host({"--no-write-conf"});
    EXPECT_EQ(set_port("8080"), "{}");

    EXPECT_EQ(reload(""), done);
    EXPECT_EQ(values("netport"), "{'netport':{'http_port':'80'}}");
}

TEST_F(ConfFiles, ThatCannotBeReadAreNamedByAReload)
{
    start_host();
    ASSERT_EQ(mkfifo((data + "/netport.conf").c_str(), 0600), 0);
    const json reply(cJSON_Parse(
        client.request("{'msg_type':'api_set','msg_name':'reload'}").value_or("").c_str()));
    const cJSON *const reason =
        cJSON_GetObjectItem(cJSON_GetObjectItem(reply.get(), "failed"), "netport");
    ASSERT_TRUE(cJSON_IsString(reason));
    EXPECT_EQ(reason->valuestring,
              "cannot reread \"" + data + "/netport.conf\": not a regular file");

    std::filesystem::remove(home + "/overlay.conf");
    EXPECT_NE(reload(",'data':{'module':'overlay'}").find("No such file or directory"),
              std::string::npos);
    EXPECT_EQ(values("overlay"), "{'overlay':{'title':'Hall'}}");
}

TEST_F(ConfFiles, AReloadHoldsUpNoClientWhileAFileIsLocked)
{
    start_host();
    write_data("overlay.conf", "title = 'Yard'\n");
    const int file = open((data + "/overlay.conf").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(file, LOCK_EX), 0);
    Client waiting;
    waiting.send(swap_quotes(
        "{'msg_type':'api_set','msg_name':'reload','data':{'module':'overlay'}}", '\'', '"'));

    EXPECT_EQ(client.ask("{'msg_type':'get','af':['zoom_value']}"), "{'af':{'zoom_value':0}}");
    EXPECT_EQ(waiting.receive(0), std::nullopt);
    close(file);
    EXPECT_NE(waiting.receive(), std::nullopt);
    EXPECT_EQ(values("overlay"), "{'overlay':{'title':'Yard'}}");
}

TEST_F(ConfFiles, AReloadAnswersAllThatWaitForIt)
{
    start_host();
    Client others[3];
    for (Client &other : others)
        other.send(swap_quotes("{'msg_type':'api_set','msg_name':'reload'}", '\'', '"'));
    for (Client &other : others)
        EXPECT_NE(other.receive(), std::nullopt);
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
