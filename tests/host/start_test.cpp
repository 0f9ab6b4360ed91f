// What camparamd makes sure of before it starts.
#include <fcntl.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <csignal>
#include <filesystem>

#include "camparam/platform.h"
#include "host/host_process.h"
#include "support/refused_call.h"

namespace {

// Of processes that are started from now on: root may otherwise open every file.
void take_roots_rights_away()
{
    prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE);
    prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH);
}

class HostStart : public HostProcess {
protected:
    // Starts camparamd, which must refuse with this message alone.
    void refuses(const std::string &message, const std::vector<std::string> &options = {})
    {
        std::vector<std::string> arguments = {"--home", home, "--data", data, "--no-share"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(run_host(arguments), 1) << message;
        EXPECT_EQ(host->errors(), "camparamd: " + message + "\n");
    }

    void refuses_home_file(const std::string &name, const std::string &reason)
    {
        refuses("cannot use the home file \"" + home + "/" + name + "\": " + reason);
    }

    static unsigned mode_of(const std::string &path)
    {
        struct stat about = {};
        EXPECT_EQ(stat(path.c_str(), &about), 0) << path;
        return about.st_mode & 07777U;
    }

    // The files of an image processor with two styles.
    void write_isp_home()
    {
        write_home("isp_range.json", "{'isp0':{'style':[0,1],'hue':[0,100]}}");
        write_home("isp_def.json", "{'isp0_style_def':0,'isp0_style_list':['plain','vivid'],"
                                   "'plain':{'hue':50},'vivid':{'hue':50}}");
    }

    // Makes the path of the data folder so long that names of this length just fit.
    void lengthen_data_folder(size_t longest_name)
    {
        data += '/';
        data.append(PARA_PATH_SIZE - 1 - 1 - longest_name - data.size(), 'd');
    }
};

TEST_F(HostStart, RefusesAHomeFolderWithoutSettingsFiles)
{
    home += "/empty";
    std::filesystem::create_directory(home);
    refuses("cannot use the home folder \"" + home + "\": no settings files in it");

    write_file(home + "/www2json.json", "{}");
    refuses("cannot use the home folder \"" + home + "\": no settings files in it");
    EXPECT_FALSE(read_data("af_cur.json"));
}

TEST_F(HostStart, NamesThePlaceInABrokenHomeFile)
{
    write_home("video_range.json", "{\n\t'gop': [1, 2],\n\t'bitRate' [1]\n}");
    refuses_home_file("video_range.json", "no JSON at line 3, column 12");

    write_home("video_range.json", "{}");
    write_home("af_def.json", "");
    refuses_home_file("af_def.json", "no JSON at line 1, column 1");

    write_home("af_def.json", "[1]");
    refuses_home_file("af_def.json", "holds no JSON object");
    write_home("af_def.json", "{}");

    write_home("descriptions.json", "[]");
    refuses_home_file("descriptions.json", "holds no JSON object");
}

TEST_F(HostStart, ChecksTheFilesOfEachListedModule)
{
    write_home("misc_def.json", "{");
    refuses_home_file("misc_def.json", "no JSON at line 1, column 2");

    write_home("www2json.json", "{'json_pattern_list':['lamp']}");
    write_home("lamp_range.json", "{'a':}");
    refuses_home_file("lamp_range.json", "no JSON at line 1, column 6");

    write_home("www2json.json", "{'json_pattern_list':[}");
    refuses_home_file("www2json.json", "no JSON at line 1, column 23");
}

TEST_F(HostStart, RefusesAHomeWhoseDefaultStyleHasNoValues)
{
    write_isp_home();
    write_home("isp_def.json", "{'isp0_style_list':['plain','vivid'],'vivid':{'hue':50}}");
    refuses_home_file("isp_def.json", "the default style, number 0 of its list, has no values");

    write_home("isp_def.json", "{'isp0_style_def':2,'isp0_style_list':['plain','vivid'],"
                               "'plain':{'hue':50},'vivid':{'hue':50}}");
    refuses_home_file("isp_def.json", "the default style, number 2 of its list, has no values");

    write_home("isp_def.json", "{'isp0_style_def':-1,'isp0_style_list':['plain'],'plain':{}}");
    refuses_home_file("isp_def.json", "the default style, number -1 of its list, has no values");

    write_home("isp_def.json", "{'plain':{'hue':50}}");
    refuses_home_file("isp_def.json", "the default style, number 0 of its list, has no values");
}

TEST_F(HostStart, RefusesAHomeWithoutTheStyleThatWasMadeTheDefault)
{
    write_isp_home();
    std::filesystem::create_directory(data + "/persist");
    write_data("persist/odm.json", "{'version':1,'isp0_style_def':2}");
    refuses_home_file("isp_def.json", "the default style, number 2 of its list, has no values");

    write_data("persist/odm.json", "{'version':1,'isp0_style_def':1}");
    start_host();
    EXPECT_EQ(
        Client().ask("{'msg_type':'api_get','msg_name':'style'}"),
        "{'msg_name':'style','styles':['plain','vivid'],'default':'vivid','current':'vivid'}");
}

TEST_F(HostStart, RefusesHomeFilesThatCannotBeRead)
{
    ASSERT_EQ(mkfifo((home + "/netport.conf").c_str(), 0600), 0);
    refuses_home_file("netport.conf", "not a regular file");

    std::filesystem::remove(home + "/netport.conf");
    std::filesystem::create_directory(home + "/isp_range.json");
    refuses_home_file("isp_range.json", "Is a directory");

    std::filesystem::remove(home + "/isp_range.json");
    std::filesystem::create_symlink("isp_range.json", home + "/isp_range.json");
    refuses_home_file("isp_range.json", "Too many levels of symbolic links");

    std::filesystem::remove(home + "/isp_range.json");
    write_home("isp_range.json", "{}");
    std::filesystem::resize_file(home + "/isp_range.json", 5 << 20);
    refuses_home_file("isp_range.json", "File too large");
}

TEST_F(HostStart, RefusesAHomeFolderWhoseFilesHaveTooLongPaths)
{
    home += "/" + std::string(PARA_PATH_SIZE, 'h');
    std::filesystem::create_directory(home);
    refuses_home_file("www2json.json", "the path is too long");
}

TEST_F(HostStart, LeavesAloneWhatTheStoreDoesNotRead)
{
    write_home("lamp_range.json", "broken");
    write_home("af_range.json.orig", "broken");
    start_host();

    EXPECT_EQ(Client().ask("{'msg_type':'get','af':['zoom_value']}"), "{'af':{'zoom_value':0}}");
}

TEST_F(HostStart, RefusesADataFolderWhoseFilesHaveTooLongPaths)
{
    const std::string longest = "/persist/odm.json";
    lengthen_data_folder(longest.size() - 1);
    refuses("the path of the data folder is too long: \"" + data + "/" + longest +
            "\" has more than 127 characters");
    EXPECT_FALSE(std::filesystem::exists(data));
}

TEST_F(HostStart, TakesADataFolderWhosePathsJustFit)
{
    lengthen_data_folder(std::string("/persist/odm.json").size());
    write_isp_home();
    start_host();
    EXPECT_EQ(Client().ask("{'msg_type':'api_set','msg_name':'style','data':"
                           "{'style':'vivid','default':1}}"),
              "{'msg_name':'style','accepted':['style','hue','default'],'refused':{}}");

    EXPECT_EQ(end_host(SIGTERM), 0) << host->errors();
    EXPECT_NE(read_data("af_cur.json"), std::nullopt);
    EXPECT_NE(read_data("persist/odm.json"), std::nullopt);
}

TEST_F(HostStart, CountsThePathsOfListedModulesToo)
{
    const std::string module(30, 'm');
    write_home("www2json.json", "{'conf_pattern_list':['" + module + "']}");
    lengthen_data_folder(module.size() + 4);
    refuses("the path of the data folder is too long: \"" + data + "/" + module +
            ".conf\" has more than 127 characters");
}

TEST_F(HostStart, RefusesTheDataFolderOfAnotherHost)
{
    start_host();
    const std::unique_ptr<process> first = std::move(host);

    const std::string message =
        "cannot lock the data folder \"" + data + "\": another host process uses it";
    refuses(message);
    refuses(message, {"--port", "6801"});
    refuses(message, {"--port", "6801", "--read-only-data"});

    first->send_signal(SIGKILL);
    EXPECT_EQ(first->wait_for_end(), -1);
    start_host();
}

TEST_F(HostStart, LocksADataFolderThatItMade)
{
    data += "/new";
    start_host();
    const std::unique_ptr<process> first = std::move(host);

    refuses("cannot lock the data folder \"" + data + "\": another host process uses it",
            {"--port", "6801"});
}

// What a command left running would keep the next host from starting.
TEST_F(HostStart, KeepsTheLockFromTheCommandsThatItRuns)
{
    start_host();
    const std::string process = "/proc/" + std::to_string(host->pid());
    int locks = 0;
    for (const auto &each : std::filesystem::directory_iterator(process + "/fd")) {
        std::error_code error;
        if (std::filesystem::read_symlink(each.path(), error) != data)
            continue;
        const std::string about =
            read_file(process + "/fdinfo/" + each.path().filename().string()).value_or("");
        const size_t flags = about.find("flags:\t");
        ASSERT_NE(flags, about.npos) << about;
        EXPECT_NE(std::stoul(about.substr(flags + 7), nullptr, 8) & O_CLOEXEC, 0U) << about;
        locks++;
    }
    EXPECT_EQ(locks, 1);
}

// No file can be made in /proc, whoever runs the test.
TEST_F(HostStart, RefusesADataFolderThatCannotBeWritten)
{
    data = "/proc";
    refuses("cannot write to the data folder \"/proc\": No such file or directory");

    data = "/proc/new";
    refuses("cannot make the data folder \"/proc/new\": No such file or directory");
}

// Other folders than those that are refused, as a host that runs locks its own.
TEST_F(HostStart, StartsOnSuchAFolderWhenTold)
{
    for (const char *unwritable : {"/proc/self", "/proc/self/new"}) {
        data = unwritable;
        start_host({"--read-only-data"});

        EXPECT_TRUE(host_has_logged("No such file or directory; changes will be lost\n"))
            << host->errors();
        EXPECT_EQ(Client().ask("{'msg_type':'get','af':['zoom_value']}"),
                  "{'af':{'zoom_value':0}}");
        EXPECT_EQ(Client().ask("{'msg_type':'api_set','msg_name':'lens','data':{'zoom_value':7}}"),
                  "{'msg_name':'lens','accepted':['zoom_value'],'refused':{}}");
        EXPECT_EQ(end_host(SIGTERM), 0) << "that the change is lost was said";
        EXPECT_TRUE(host_has_logged("af is not saved: No such file or directory"));
    }
}

TEST_F(HostStart, RefusesADataFolderThatIsLockedAsSoonAsItIsMade)
{
    refuse_call(SYS_flock, EWOULDBLOCK);
    data += "/new";
    refuses("cannot lock the data folder \"" + data + "\": another host process uses it");
}

TEST_F(HostStart, TellsWhyThePortCannotBeBound)
{
    refuse_call(SYS_bind, EACCES);
    refuses("cannot bind UDP port 6800: Permission denied");
    refuse_call(SYS_socket, EMFILE);
    refuses("cannot bind UDP port 6800: Too many open files");
}

TEST_F(HostStart, TellsWhyTheStoreCannotBeStarted)
{
    refuse_threads();
    refuses("cannot start the store: Resource temporarily unavailable", {"--trace", "0"});
}

const char *const not_locked = "; a second host process would not be refused\n";

TEST_F(HostStart, TakesAFolderThatItCannotOpenWhenTold)
{
    take_roots_rights_away();
    ASSERT_EQ(chmod(data.c_str(), 0311), 0);
    const std::string message = "cannot lock the data folder \"" + data + "\": Permission denied";
    refuses(message);

    start_host({"--read-only-data"});
    const std::string log = host->errors();
    EXPECT_EQ(log.rfind("camparamd: " + message + not_locked, 0), 0U) << log;
    EXPECT_EQ(log.find("cannot", message.size()), std::string::npos) << log;
    EXPECT_EQ(end_host(SIGTERM), 0);
    chmod(data.c_str(), 0755);
}

TEST_F(HostStart, WarnsOfAFolderThatHasNoLocks)
{
    refuse_call(SYS_flock, ENOLCK);
    for (const char *below : {"", "/new"}) {
        data += below;
        start_host();

        EXPECT_TRUE(host_has_logged("camparamd: cannot lock the data folder \"" + data +
                                    "\": No locks available" + not_locked))
            << host->errors();
        EXPECT_EQ(Client().ask("{'msg_type':'get','af':['zoom_value']}"),
                  "{'af':{'zoom_value':0}}");
        EXPECT_EQ(end_host(SIGTERM), 0) << host->errors();
        EXPECT_NE(read_data("af_cur.json"), std::nullopt);
    }
}

TEST_F(HostStart, LeavesNothingInTheDataFolder)
{
    start_host();

    EXPECT_TRUE(std::filesystem::is_empty(data)) << "the file that was tried";
}

TEST_F(HostStart, WritesForItsUserAndGroupAlone)
{
    data += "/new";
    start_host();
    EXPECT_EQ(end_host(SIGTERM), 0);

    EXPECT_EQ(mode_of(data), 0750U);
    EXPECT_EQ(mode_of(data + "/af_cur.json"), 0640U);
}

TEST_F(HostStart, KeepsBackupsUnlessToldOtherwise)
{
    start_host();
    EXPECT_EQ(end_host(SIGTERM), 0);
    EXPECT_EQ(read_data("af_cur.json.bak"), read_data("af_cur.json"));

    std::filesystem::remove(data + "/af_cur.json.bak");
    start_host({"--no-guard"});
    EXPECT_EQ(end_host(SIGTERM), 0);
    EXPECT_EQ(read_data("af_cur.json.bak"), std::nullopt);
}

TEST_F(HostStart, SeveralHostsServeOnPortsOfTheirOwn)
{
    start_host();
    const std::unique_ptr<process> first = std::move(host);
    data += "/second";
    start_host({"--port", "6801"});

    EXPECT_TRUE(host_has_logged("ready on UDP port 6801, "));
    const std::string request = "{'msg_type':'api_set','msg_name':'lens','data':{'zoom_value':";
    EXPECT_EQ(Client(6801).ask(request + "7}}"),
              "{'msg_name':'lens','accepted':['zoom_value'],'refused':{}}");
    EXPECT_EQ(Client(6801).ask("{'msg_type':'get','af':['zoom_value']}"),
              "{'af':{'zoom_value':7}}");
    EXPECT_EQ(Client().ask("{'msg_type':'get','af':['zoom_value']}"), "{'af':{'zoom_value':0}}");
}

} // namespace
