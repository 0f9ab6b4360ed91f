#include "host/fake_server.h"
#include "host/host_process.h"

namespace {

class HostOptions : public HostProcess {};

TEST_F(HostOptions, HelpNamesEachOptionAndTheDefaultFolders)
{
    EXPECT_EQ(run_host({"--help"}), 0);

    for (const char *text :
         {"--home DIR=/home ", "--data DIR=/data ", "--trace LEVEL",
          "--www2json NAME=www2json.json", "--port PORT", "=6800", "--allow NETWORK",
          "--requests-per-second N", "=500", "--reply-bytes-per-second N", "=131072", "--client",
          "--no-guard", "--no-write-conf", "--read-only-data", "--no-share", "--version"})
        EXPECT_NE(host->output().find(text), std::string::npos) << text;
    EXPECT_EQ(host->output().find("{false}"), std::string::npos) << host->output();
}

TEST_F(HostOptions, HelpTellsWhenNotToWriteConfFiles)
{
    EXPECT_EQ(run_host({"--help"}), 0);

    EXPECT_NE(host->output().find("where other programs own these files"), std::string::npos)
        << host->output();
}

TEST_F(HostOptions, VersionIsPrinted)
{
    EXPECT_EQ(run_host({"--version"}), 0);
    EXPECT_EQ(host->output(), "camparamd 1.0.0\n");
}

TEST_F(HostOptions, MistakesAreUsageErrors)
{
    for (const std::vector<std::string> &options :
         std::vector<std::vector<std::string>>{{"--nosuch"},
                                               {"--trace", "8"},
                                               {"--trace", "-1"},
                                               {"--trace", "loud"},
                                               {"--port", "0"},
                                               {"--port", "65536"},
                                               {"--write-conf"},
                                               {"--allow"},
                                               {"--allow", "10.0.0.0/8", "camera"},
                                               {"--requests-per-second", "0"},
                                               {"--reply-bytes-per-second", "1000000001"},
                                               {"--home"},
                                               {"word"}}) {
        EXPECT_EQ(run_host(options), 2) << options.front();
        EXPECT_FALSE(host->errors().empty());
    }
}

TEST_F(HostOptions, AHomeFolderThatCannotBeReadStartsNothing)
{
    const std::string absent = home + "/absent";
    EXPECT_EQ(run_host({"--home", absent, "--data", data}), 1);
    EXPECT_EQ(host->errors(), "camparamd: cannot read the home folder \"" + absent +
                                  "\": No such file or directory\n");
    EXPECT_FALSE(read_data("af_cur.json"));
}

TEST_F(HostOptions, TraceLevelDecidesWhatIsTraced)
{
    start_host({"--trace", "0"});
    EXPECT_EQ(host->errors().find("[para "), std::string::npos) << host->errors();
    end_host(SIGTERM);

    start_host({"--trace", "6"});
    EXPECT_TRUE(host_has_logged("AF PARAM")) << host->errors();
    end_host(SIGTERM);
}

TEST_F(HostOptions, TraceLevelIsErrorsUnlessGiven)
{
    start_host();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'api_get','msg_name':'nosuch'}"),
              "{'err':'Invalid API command'}");

    EXPECT_TRUE(wait_until([&] { return host_has_logged("not found api command: nosuch"); }));
    EXPECT_FALSE(host_has_logged("AF PARAM")) << host->errors();
}

TEST_F(HostOptions, WebNameFileIsReadFromTheHomeFolder)
{
    write_home("names.json", "{'conf_pattern_list':['weather']}");
    start_host({"--www2json", "names.json", "--trace", "6"});

    EXPECT_TRUE(host_has_logged("add conf_pattern:weather")) << host->errors();
    EXPECT_FALSE(host_has_logged("add conf_pattern:netport"));
}

TEST_F(HostOptions, WebNameFileHasADefaultName)
{
    write_home("www2json.json", "{'conf_pattern_list':['weather']}");
    start_host({"--trace", "6"});

    EXPECT_TRUE(host_has_logged("add conf_pattern:weather")) << host->errors();
}

TEST_F(HostOptions, ClientRoleServesAndSavesNothing)
{
    start_host({"--client"});

    // The port is closed, so the request fails at once, and another process can bind the port.
    EXPECT_EQ(Client().ask("{'msg_type':'get','msg_id':1}"), "none");
    const fake_server other([](const std::string &) { return std::vector<std::string>(); });
    EXPECT_EQ(end_host(SIGTERM), 0);
    EXPECT_EQ(read_data("af_cur.json"), std::nullopt);
}

TEST_F(HostOptions, ClientRoleRunsBesideAServer)
{
    start_host();
    const std::unique_ptr<process> server = std::move(host);

    start_host({"--client"});

    EXPECT_FALSE(server->has_ended());
    EXPECT_EQ(end_host(SIGINT), 0);
}

} // namespace
