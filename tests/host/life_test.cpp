#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "host/fake_server.h"
#include "host/host_process.h"

namespace {

class HostLife : public HostProcess {
protected:
    std::string set_zoom(int value)
    {
        return Client().ask("{'msg_type':'api_set','msg_name':'lens','data':{'zoom_value':" +
                            std::to_string(value) + "}}");
    }
};

const char *const taken = "{'msg_name':'lens','accepted':['zoom_value'],'refused':{}}";

TEST_F(HostLife, TellsWhenItIsReady)
{
    start_host();

    EXPECT_TRUE(host_has_logged("camparamd: ready on UDP port 6800, home " + home + ", data " +
                                data + "\n"))
        << host->errors();
    EXPECT_EQ(Client().ask("{'msg_type':'get','msg_id':1,'af':['zoom_value']}"),
              "{'msg_id':1,'af':{'zoom_value':0}}");
}

TEST_F(HostLife, SavesAChangeByItself)
{
    start_host();

    EXPECT_EQ(set_zoom(300), taken);

    EXPECT_TRUE(saves("af_cur.json", "{\n\t'focus_mode':\t1,\n\t'zoom_value':\t300\n}"));
}

TEST_F(HostLife, SavesEverythingAtTheEnd)
{
    const std::pair<int, std::string> signals[] = {
        {SIGTERM, "SIGTERM"}, {SIGINT, "SIGINT"}, {SIGQUIT, "SIGQUIT"}};
    for (const auto &[number, name] : signals) {
        start_host();
        ASSERT_EQ(read_data("af_cur.json"), std::nullopt);

        EXPECT_EQ(end_host(number), 0);

        EXPECT_TRUE(saves("af_cur.json", "{\n\t'focus_mode':\t1,\n\t'zoom_value':\t0\n}"));
        EXPECT_TRUE(host_has_logged("camparamd: " + name + ": saving and stopping\n"));
        remove((data + "/af_cur.json").c_str());
    }
}

TEST_F(HostLife, KeepsASettingOverARestart)
{
    start_host();
    EXPECT_EQ(set_zoom(-42), taken);
    EXPECT_EQ(end_host(SIGTERM), 0);

    start_host();

    EXPECT_EQ(Client().ask("{'msg_type':'get','af':['zoom_value']}"), "{'af':{'zoom_value':-42}}");
}

TEST_F(HostLife, RefusesToStartOnATakenPort)
{
    const fake_server other([](const std::string &) { return std::vector<std::string>(); });

    EXPECT_EQ(run_host({"--home", home, "--data", data, "--no-share"}), 1);
    EXPECT_EQ(host->errors(),
              "camparamd: UDP port 6800 is taken; does another host process run?\n");
}

TEST_F(HostLife, RefusesToStartWhenThePortIsTakenOnOneAddress)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(PARA_SERVER_PORT);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK + 1);
    const int other = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(other, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);

    EXPECT_EQ(run_host({"--home", home, "--data", data, "--no-share"}), 1);
    close(other);
}

TEST_F(HostLife, MakesNoDataFolderWhenThePortIsTaken)
{
    const fake_server other([](const std::string &) { return std::vector<std::string>(); });
    data += "/some/where";

    EXPECT_EQ(run_host({"--home", home, "--data", data, "--no-share"}), 1);
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(data).parent_path()));
}

TEST_F(HostLife, MakesTheDataFolderWithItsParents)
{
    data += "/some/where";
    start_host();

    EXPECT_EQ(end_host(SIGTERM), 0);

    EXPECT_NE(read_data("af_cur.json"), std::nullopt);
}

TEST_F(HostLife, RefusesADataFolderThatCannotBe)
{
    write_data("file", "");
    for (const char *below : {"/file", "/file/below"}) {
        EXPECT_EQ(run_host({"--home", home, "--data", data + below}), 1);
        EXPECT_EQ(host->errors(), "camparamd: cannot make the data folder \"" + data + below +
                                      "\": Not a directory\n");
    }
}

TEST_F(HostLife, StartsWithoutTheFilesOfSomeModules)
{
    start_host();

    EXPECT_TRUE(host_has_logged("audio init err")) << host->errors();
    EXPECT_EQ(Client()
                  .ask("{'msg_type':'api_get','msg_name':'describe','data':"
                       "{'modules':['audio','misc','netport']}}")
                  .find("{'msg_name':'describe','modules':{'audio':{'members':{}},"
                        "'misc':{'members':{}},'netport':{'members':{}}},'revision':"),
              0U);
}

TEST_F(HostLife, GoesOnWhenNobodyReadsItsMessages)
{
    const std::string id_file = data + "/id";
    const process shell({"sh", "-c",
                         "sh -c 'echo $$ >" + id_file + "; exec " CAMPARAMD " --home " + home +
                             " --data " + data + " --no-share --trace 7' 2>&1 | head -n 1"});
    ASSERT_TRUE(wait_until([&] { return set_zoom(1) == taken; }));

    EXPECT_EQ(set_zoom(2), taken);
    kill(std::stoi(*read_file(id_file)), SIGTERM);

    EXPECT_TRUE(saves("af_cur.json", "{\n\t'focus_mode':\t1,\n\t'zoom_value':\t2\n}"));
}

TEST_F(HostLife, GoesOnWhenItsMessagesAreLeftUnread)
{
    const std::string pipe_path = data + "/pipe";
    ASSERT_EQ(mkfifo(pipe_path.c_str(), 0600), 0);
    const int unread = open(pipe_path.c_str(), O_RDWR | O_CLOEXEC);
    host = std::make_unique<process>(
        std::vector<std::string>{"sh", "-c",
                                 "exec " CAMPARAMD " --home " + home + " --data " + data +
                                     " --no-share --trace 7 2>" + pipe_path});
    ASSERT_TRUE(wait_until([&] { return set_zoom(0) == taken; }));

    for (int value = 0; value <= 1000; value++)
        ASSERT_EQ(set_zoom(value), taken) << value;
    EXPECT_EQ(end_host(SIGTERM), 0);

    close(unread);
    EXPECT_TRUE(saves("af_cur.json", "{\n\t'focus_mode':\t1,\n\t'zoom_value':\t1000\n}"));
}

} // namespace
