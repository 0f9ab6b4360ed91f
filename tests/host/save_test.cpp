#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "camparam/commands.h"
#include "camparam/guard.h"
#include "host/host_process.h"
#include "unsaved.h"

namespace {

class SaveCommand : public HostProcess {
protected:
    std::string save() { return client.ask("{'msg_type':'api_set','msg_name':'save'}"); }

    std::string set_zoom(int value)
    {
        return client.ask("{'msg_type':'api_set','msg_name':'lens','data':{'zoom_value':" +
                          std::to_string(value) + "}}");
    }

    // A folder in place of the file.
    void obstruct(const std::string &name)
    {
        std::filesystem::remove(data + "/" + name);
        std::filesystem::create_directory(data + "/" + name);
    }

    Client client;
};

const char *const lens_taken = "{'msg_name':'lens','accepted':['zoom_value'],'refused':{}}";
const char *const all_saved = "{'msg_name':'save'}";

TEST_F(SaveCommand, WritesTheFilesBeforeItAnswers)
{
    for (const char *type : {"api_set", "api_get"}) {
        start_host();
        ASSERT_EQ(read_data("af_cur.json"), std::nullopt);

        const std::string request = "{'msg_type':'" + std::string(type) + "',";
        EXPECT_EQ(client.ask(request + "'msg_name':'save','msg_id':3}"),
                  "{'msg_name':'save','msg_id':3}");

        const std::optional<std::string> saved = read_data("af_cur.json");
        ASSERT_TRUE(saved.has_value());
        const json tree(cJSON_Parse(saved->c_str()));
        EXPECT_EQ(compact(tree.get()), "{'focus_mode':1,'zoom_value':0}");
        end_host(SIGKILL);
        remove((data + "/af_cur.json").c_str());
    }
}

TEST_F(SaveCommand, TellsWhichModulesCannotBeSaved)
{
    write_home("netport.conf", "http_port = '80'\n");
    write_home("overlay.conf", "title = 'Hall'\n");
    start_host({"--trace", "0"});
    obstruct("af_cur.json");
    obstruct("overlay.conf");

    EXPECT_EQ(client.ask("{'msg_type':'api_set','msg_name':'save','msg_id':4}"),
              "{'msg_name':'save','msg_id':4,'failed':"
              "{'af':'Is a directory','overlay':'Is a directory'}}");

    std::filesystem::remove(data + "/af_cur.json");
    std::filesystem::remove(data + "/overlay.conf");
    EXPECT_EQ(save(), all_saved) << "when they can be again";
}

TEST_F(SaveCommand, TellsOfChangesThatAreNotWrittenOnPurpose)
{
    write_home("netport.conf", "http_port = '80'\n");
    start_host({"--no-write-conf"});
    EXPECT_EQ(save(), all_saved);

    client.ask("{'msg_type':'set','netport':{'http_port':'81'}}");
    EXPECT_EQ(save(), "{'msg_name':'save','failed':{'netport':'writing is off'}}");
}

// Requests do not change it, but the host may.
TEST_F(SaveCommand, TellsOfChangesToWhatCouldNotBeLoaded)
{
    std::filesystem::remove(home + "/af_def.json");
    write_home("netport.conf", "http_port = '80'\n");
    para_profile.conf_save_hook = [] {};
    platformparam_set_guard(1);
    start_store();
    para_set_af_zoom_value_cur(7);
    ASSERT_EQ(para_get_af_zoom_value_cur(), 7);
    ASSERT_EQ(para_conf_set_member("netport", "http_port", "81"), 1); // about to be saved

    std::string told;
    const auto tell = [](void *to, const char *module, const char *reason, int loses) {
        *static_cast<std::string *>(to) +=
            std::string(module) + ": " + reason + (loses == 1 ? ", loses" : "");
    };
    EXPECT_EQ(para_commands_unsaved(tell, &told), 1);
    EXPECT_EQ(told, "af: not loaded, loses");
    EXPECT_EQ(para_commands_unsaved(nullptr, nullptr), 1);
    EXPECT_TRUE(tell_unsaved());
    EXPECT_EQ(count_traces("camparamd: af is not saved: not loaded"), 1);
}

// Without a place to keep it the file is not overwritten, though its backup is used.
TEST_F(SaveCommand, TellsOfAFileThatCannotBeSetAside)
{
    write_data("af_cur.json", "broken");
    write_data("af_cur.json.bak", "{'focus_mode':1,'zoom_value':5}");
    for (const char *end : {"", ".1", ".2", ".3", ".4", ".5", ".6", ".7", ".8", ".9"})
        std::filesystem::create_directories(data + "/af_cur.json.bad" + end);
    start_host();
    EXPECT_EQ(save(), all_saved) << "nothing is lost yet";
    EXPECT_EQ(set_zoom(7), lens_taken);

    EXPECT_TRUE(wait_until([&] {
        return save() == "{'msg_name':'save','failed':{'af':'its file is bad and stays as it is'}}";
    })) << save();
    EXPECT_EQ(end_host(SIGTERM), 1);
    EXPECT_TRUE(host_has_logged("camparamd: af is not saved: its file is bad and stays as it is\n"))
        << host->errors();
    EXPECT_EQ(read_data("af_cur.json"), "broken");
}

TEST_F(SaveCommand, WritesNothingAgainWithinASecond)
{
    start_host();
    EXPECT_EQ(save(), all_saved);
    std::filesystem::remove(data + "/af_cur.json");

    EXPECT_EQ(save(), all_saved);
    EXPECT_EQ(read_data("af_cur.json"), std::nullopt) << "nothing had changed";

    EXPECT_TRUE(wait_until([&] {
        EXPECT_EQ(save(), all_saved);
        return read_data("af_cur.json").has_value();
    })) << "a second later it is written";
}

TEST_F(SaveCommand, OfAChangeWithinASecondIsAnsweredWhenItIsWritten)
{
    start_host();
    EXPECT_EQ(save(), all_saved);
    EXPECT_EQ(set_zoom(7), lens_taken);

    client.send(swap_quotes("{'msg_type':'api_set','msg_name':'save','msg_id':5}", '\'', '"'));
    EXPECT_EQ(Client().ask("{'msg_type':'get','af':['zoom_value']}"), "{'af':{'zoom_value':7}}")
        << "others are served meanwhile";

    const json answer(cJSON_Parse(client.receive().value_or("").c_str()));
    EXPECT_EQ(compact(answer.get()), "{'msg_name':'save','msg_id':5}");
    EXPECT_TRUE(saves("af_cur.json", "{\n\t'focus_mode':\t1,\n\t'zoom_value':\t7\n}"));
}

TEST_F(SaveCommand, ThatTakesLongIsNotFollowedByAnotherAtOnce)
{
    write_home("netport.conf", "http_port = '80'\n");
    start_host();
    EXPECT_EQ(client.ask("{'msg_type':'set','netport':{'http_port':'81'}}"), "{}");
    const int file = open((data + "/netport.conf").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(file, LOCK_EX), 0);
    EXPECT_NE(save(), all_saved) << "the file was locked for too long";
    const auto answered = std::chrono::steady_clock::now();
    close(file);

    EXPECT_EQ(save(), all_saved);
    EXPECT_GE(std::chrono::steady_clock::now() - answered, std::chrono::milliseconds(500))
        << "its second begins when it ends";
}

TEST_F(SaveCommand, WritesOnceForAllThatWait)
{
    start_host();
    EXPECT_EQ(save(), all_saved);
    EXPECT_EQ(set_zoom(7), lens_taken);

    Client others[3];
    for (Client &other : others)
        other.send(swap_quotes("{'msg_type':'api_set','msg_name':'save'}", '\'', '"'));
    for (Client &other : others)
        EXPECT_NE(other.receive(), std::nullopt);

    EXPECT_EQ(set_zoom(8), lens_taken);
    client.send(swap_quotes("{'msg_type':'api_set','msg_name':'save'}", '\'', '"'));
    EXPECT_EQ(client.receive(100), std::nullopt) << "they saved less than a second ago";
}

TEST_F(SaveCommand, LetsNoMoreThanThirtyTwoRequestsWait)
{
    write_home("netport.conf", "http_port = '80'\n");
    write_data("netport.conf", "http_port = '81'\n");
    start_host();
    EXPECT_EQ(client.ask("{'msg_type':'set','netport':{'http_port':'82'}}"), "{}");
    const int file = open((data + "/netport.conf").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(file, LOCK_EX), 0);
    client.send(swap_quotes("{'msg_type':'api_set','msg_name':'save'}", '\'', '"'));
    ASSERT_TRUE(wait_until([&] { return host_has_open(data + "/netport.conf"); }));

    for (int i = 0; i < 40; i++)
        client.send(swap_quotes("{'msg_type':'api_set','msg_name':'save'}", '\'', '"'));
    EXPECT_EQ(Client().ask("{'msg_type':'get','af':['zoom_value']}"), "{'af':{'zoom_value':0}}");
    close(file);
    for (int i = 0; i < 33; i++)
        ASSERT_NE(client.receive(), std::nullopt) << i;
    EXPECT_EQ(client.receive(100), std::nullopt) << "the other clients ask again";
}

} // namespace
