// The signals that camparamd handles.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>

#include "host/host_process.h"

namespace {

class HostSignals : public HostProcess {
protected:
    HostSignals()
    {
        write_home("netport.conf", "http_port = '80'\nrtsp_port = '554'\n");
        write_home("overlay.conf", "title = 'Hall'\n");
    }

    std::string set_port(const std::string &port)
    {
        return client.ask("{'msg_type':'set','netport':{'http_port':'" + port + "'}}");
    }

    std::string port() { return client.ask("{'msg_type':'get','netport':['http_port']}"); }

    std::string title() { return client.ask("{'msg_type':'get','overlay':['title']}"); }

    // An empty file that every save has to wait for.
    int lock_saved_file() const
    {
        const int file = open((data + "/netport.conf").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        EXPECT_EQ(flock(file, LOCK_EX), 0);
        return file;
    }
    std::string saved_file() { return read_data("netport.conf").value_or(""); }
    int failed_saves() const
    {
        const std::string told = "netport.conf is not written";
        int found = 0;
        const std::string log = host->errors();
        for (size_t at = log.find(told); at != log.npos; at = log.find(told, at + 1))
            found++;
        return found;
    }

    Client client;
};

TEST_F(HostSignals, UsrOneSavesEverything)
{
    start_host();
    ASSERT_EQ(read_data("af_cur.json"), std::nullopt);

    host->send_signal(SIGUSR1);

    EXPECT_TRUE(saves("af_cur.json", "{\n\t'focus_mode':\t1,\n\t'zoom_value':\t0\n}"));
    EXPECT_EQ(port(), "{'netport':{'http_port':'80'}}") << "it goes on";
}

TEST_F(HostSignals, HupRereadsEachConfModule)
{
    start_host();
    write_data("netport.conf", "http_port = '81'\n");
    write_data("overlay.conf", "title = 'Yard'\n");

    host->send_signal(SIGHUP);

    EXPECT_TRUE(wait_until([&] { return port() == "{'netport':{'http_port':'81'}}"; }));
    EXPECT_TRUE(wait_until([&] { return title() == "{'overlay':{'title':'Yard'}}"; }));
    EXPECT_TRUE(wait_until([&] { return host_has_logged("conf_update: overlay"); }));
}

TEST_F(HostSignals, HupHoldsUpNoClientWhileAFileIsLocked)
{
    start_host();
    write_data("netport.conf", "http_port = '81'\n");
    const int file = open((data + "/netport.conf").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(file, LOCK_EX), 0);

    host->send_signal(SIGHUP);
    ASSERT_TRUE(wait_until([&] { return host_has_logged("SIGHUP: rereading conf files"); }));

    EXPECT_EQ(client.ask("{'msg_type':'get','af':['zoom_value']}"), "{'af':{'zoom_value':0}}");
    EXPECT_FALSE(host_has_logged("conf_update: netport"));
    close(file);
    EXPECT_TRUE(wait_until([&] { return port() == "{'netport':{'http_port':'81'}}"; }));
}

TEST_F(HostSignals, HupLosesNoChangeThatIsStillToBeSaved)
{
    start_host();
    write_data("netport.conf", "http_port = '81'\n");
    EXPECT_EQ(set_port("8080"), "{}");
    const size_t told = host->errors().size();

    host->send_signal(SIGHUP);

    EXPECT_TRUE(wait_until(
        [&] { return host->errors().find("conf_update: netport", told) != std::string::npos; }));
    EXPECT_EQ(port(), "{'netport':{'http_port':'8080'}}");
    EXPECT_EQ(read_data("netport.conf"), "http_port = \"8080\"\nrtsp_port = \"554\"\n");
}

// The host rests when nothing has come for 2 s, for 10 s at the most.
TEST_F(HostSignals, HupThatWaitsForASaveIsServedWithoutARest)
{
    start_host();
    EXPECT_EQ(set_port("8080"), "{}");
    const int file = lock_saved_file();
    ASSERT_TRUE(wait_until([&] { return failed_saves() == 2; })) << host->errors();
    const size_t told = host->errors().size();
    host->send_signal(SIGHUP);
    close(file);
    ASSERT_TRUE(wait_until([&] { return !saved_file().empty(); })); // 4 s after the failed one

    const auto saved_at = std::chrono::steady_clock::now();
    EXPECT_TRUE(wait_until(
        [&] { return host->errors().find("conf_update: netport", told) != std::string::npos; }));
    EXPECT_LT(std::chrono::steady_clock::now() - saved_at, std::chrono::seconds(4));
    EXPECT_EQ(port(), "{'netport':{'http_port':'8080'}}");
}

TEST_F(HostSignals, HupLosesNoChangeThatComesWhileItWaitsForAFile)
{
    start_host();
    write_data("netport.conf", "http_port = '81'\n");
    write_data("overlay.conf", "title = 'Yard'\n");
    const int file = open((data + "/netport.conf").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(file, LOCK_EX), 0);
    host->send_signal(SIGHUP);
    ASSERT_TRUE(wait_until([&] { return host_has_open(data + "/netport.conf"); }));

    EXPECT_EQ(client.ask("{'msg_type':'set','overlay':{'title':'Gate'}}"), "{}");
    const size_t told = host->errors().size();
    close(file);

    EXPECT_TRUE(wait_until(
        [&] { return host->errors().find("conf_update: overlay", told) != std::string::npos; }));
    EXPECT_EQ(title(), "{'overlay':{'title':'Gate'}}");
    EXPECT_EQ(read_data("overlay.conf"), "title = \"Gate\"\n");
}

TEST_F(HostSignals, HupTakesTheFilesWhereWritingIsOff)
{
    start_host({"--no-write-conf"});
    write_data("netport.conf", "http_port = '81'\n");
    EXPECT_EQ(set_port("8080"), "{}");

    host->send_signal(SIGHUP);

    EXPECT_TRUE(wait_until([&] { return port() == "{'netport':{'http_port':'81'}}"; }));
}

TEST_F(HostSignals, HupKeepsTheValuesOfAFileThatCannotBeRead)
{
    start_host();
    EXPECT_EQ(set_port("8080"), "{}");
    EXPECT_TRUE(wait_until([&] { return read_data("netport.conf").has_value(); }));
    std::filesystem::remove(data + "/netport.conf");
    ASSERT_EQ(mkfifo((data + "/netport.conf").c_str(), 0600), 0);
    std::filesystem::remove(home + "/overlay.conf");

    host->send_signal(SIGHUP);

    EXPECT_TRUE(wait_until([&] {
        return host_has_logged("cannot reread \"" + data +
                               "/netport.conf\": not a regular file\n") &&
               host_has_logged("cannot reread \"" + home +
                               "/overlay.conf\": No such file or directory\n");
    })) << host->errors();
    EXPECT_EQ(port(), "{'netport':{'http_port':'8080'}}");
    EXPECT_EQ(title(), "{'overlay':{'title':'Hall'}}");
}

TEST_F(HostSignals, SignalsThatArePendingTogetherAreAllServed)
{
    start_host();
    write_data("overlay.conf", "title = 'Yard'\n");
    EXPECT_EQ(set_port("8080"), "{}");
    host->send_signal(SIGSTOP);
    for (const int number : {SIGTERM, SIGUSR1, SIGHUP, SIGUSR1})
        host->send_signal(number);
    host->send_signal(SIGCONT);

    EXPECT_EQ(host->wait_for_end(), 0);

    for (const char *message :
         {"SIGHUP: rereading", "conf_update: overlay", "SIGUSR1: saving", "SIGTERM: saving"})
        EXPECT_TRUE(host_has_logged(message)) << message;
    EXPECT_EQ(read_data("overlay.conf"), "title = \"Yard\"\n");
    EXPECT_EQ(read_data("netport.conf"), "http_port = \"8080\"\nrtsp_port = \"554\"\n");
}

TEST_F(HostSignals, TheEndTellsWhatIsNotSaved)
{
    start_host();
    EXPECT_EQ(client.ask("{'msg_type':'api_set','msg_name':'lens','data':{'zoom_value':7}}"),
              "{'msg_name':'lens','accepted':['zoom_value'],'refused':{}}");
    std::filesystem::create_directory(data + "/af_cur.json");
    ASSERT_TRUE(std::filesystem::is_directory(data + "/af_cur.json"));

    EXPECT_EQ(end_host(SIGTERM), 1);

    EXPECT_TRUE(host_has_logged("camparamd: af is not saved: Is a directory\n")) << host->errors();
}

TEST_F(HostSignals, TheEndIsGoodWhereOnlyUnchangedValuesAreNotSaved)
{
    std::filesystem::create_directory(data + "/af_cur.json");
    start_host();

    EXPECT_EQ(end_host(SIGTERM), 0);
}

} // namespace
