// Saving conf modules, and their text dump.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "modules/text/conf_fixture.h"
#include "modules/text/file_lock.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

using ConfSave = ConfModule;
using ConfDump = ConfModule;

TEST_F(ConfSave, NothingIsWrittenWhileTheSwitchIsOff)
{
    para_profile.conf_save_hook = nullptr;
    init();
    para_conf_set_member("netport", "port", "8080");
    move_clock(2000);
    EXPECT_EQ(para_save_conf("netport"), 0);
    EXPECT_EQ(para_save_conf("never heard of"), 0);
    EXPECT_FALSE(read_data("netport.conf"));
    EXPECT_EQ(para_need_save_conf("netport"), 1) << "it stays due";

    para_profile.conf_save_hook = save_switch;
    EXPECT_THAT(saved(), StartsWith("port = \"8080\"\n"));
    EXPECT_EQ(para_need_save_conf("netport"), 0);
}

TEST_F(ConfSave, TheSwitchIsNeverCalled)
{
    init();
    para_conf_set_member("netport", "port", "8080");
    saved();
    EXPECT_EQ(switch_calls, 0);
}

TEST_F(ConfSave, WritesTheCurrentValuesAlone)
{
    init(port_defaults, "# a comment\nrtsp=555\n" + std::string(5000, '#') + "\n");
    const std::optional<std::string> defaults = read_file(home + "/netport.conf");
    para_conf_set_member("netport", "new", "a=b");
    EXPECT_EQ(saved(), "port = \"80\"\nrtsp = \"555\"\nname = \"front door\"\nempty = \"\"\n"
                       "new = \"a=b\"\n");
    EXPECT_EQ(read_file(home + "/netport.conf"), defaults);
}

TEST_F(ConfSave, WhatIsSavedReadsBackEqual)
{
    const std::vector<std::string> texts = {"",
                                            " ",
                                            "two words",
                                            " blanks around ",
                                            "gr\xc3\xbc\xc3\x9f dich",
                                            "a=b",
                                            "= ",
                                            "#x",
                                            "tab\there",
                                            "\xff\xfe",
                                            "100%s",
                                            "\\n",
                                            std::string(255, 'f'),
                                            std::string(5000, 'l')};
    init();
    for (size_t i = 0; i < texts.size(); i++)
        para_conf_set_member("netport", ("key" + std::to_string(i)).c_str(), texts[i].c_str());
    saved();

    write_home("copy.conf", "a = 1\n");
    std::filesystem::copy(data + "/netport.conf", data + "/copy.conf");
    para_init_conf("copy");
    for (size_t i = 0; i < texts.size(); i++) {
        const std::string key = "key" + std::to_string(i);
        EXPECT_EQ(text_or_none(para_conf_get_member("copy", key.c_str())), texts[i]) << key;
    }
    EXPECT_STREQ(para_conf_get_member("copy", "empty"), "");
}

TEST_F(ConfSave, AFileThatDoesNotOpenIsNoErrorAndNotRetried)
{
    init();
    para_conf_set_member("netport", "port", "1");
    mkdir((data + "/netport.conf").c_str(), 0755);
    EXPECT_EQ(para_save_conf("netport"), 0);
    EXPECT_FALSE(change_pending());
}

TEST_F(ConfSave, AFullDiskIsNotReported)
{
    init();
    ASSERT_EQ(symlink("/dev/full", (data + "/netport.conf").c_str()), 0);
    EXPECT_EQ(para_save_conf("netport"), 0);
}

TEST_F(ConfSave, APathThatDoesNotFitIsNoFile)
{
    init();
    const std::string long_data = data + "/" + std::string(115 - data.size(), 'd');
    ASSERT_EQ(mkdir(long_data.c_str(), 0755), 0);
    para_profile.data_dir = long_data.c_str();
    EXPECT_EQ(para_save_conf("netport"), 0);
    EXPECT_EQ(rmdir(long_data.c_str()), 0) << "it is empty";
    para_profile.data_dir = data.c_str();
}

TEST_F(ConfSave, WaitsForAnotherProcessThatHasTheFileLocked)
{
    const std::string path = data + "/netport.conf";
    init();
    para_conf_set_member("netport", "port", "8080");
    lock_holder other(path);
    write_file(path, "what the other one writes\n");

    std::atomic<bool> done{false};
    std::thread saver([&] {
        EXPECT_EQ(para_save_conf("netport"), 0);
        done = true;
    });
    EXPECT_TRUE(wait_until([] { return lock_attempts() == 1; }));
    EXPECT_EQ(read_file(path), "what the other one writes\n");
    EXPECT_FALSE(done);
    EXPECT_EQ(value("port"), "8080") << "getters do not wait";
    EXPECT_EQ(para_conf_set_member("netport", "rtsp", "555"), 1) << "nor do setters";

    other.release();
    saver.join();
    EXPECT_THAT(read_file(path).value_or(""), StartsWith("port = \"8080\"\nrtsp = "));
    EXPECT_TRUE(change_pending()) << "the change meanwhile";
    EXPECT_THAT(saved(), StartsWith("port = \"8080\"\nrtsp = \"555\"\n"));
}

TEST_F(ConfSave, HoldsUpNoReloadOfAnotherModuleWhileItWaits)
{
    init();
    write_home("overlay.conf", "title = 'front'\n");
    para_init_conf("overlay");
    lock_holder other(data + "/netport.conf");
    std::thread saver([] { EXPECT_EQ(para_save_conf("netport"), 0); });
    EXPECT_TRUE(wait_until([] { return lock_attempts() == 1; }));

    write_home("overlay.conf", "title = 'back'\n");
    std::atomic<bool> reloaded{false};
    std::thread reloader([&reloaded] {
        EXPECT_EQ(para_init_single_conf("overlay"), 0);
        reloaded = true;
    });
    EXPECT_TRUE(wait_until([&reloaded] { return reloaded.load(); }));
    other.release();
    saver.join();
    reloader.join();
    EXPECT_STREQ(para_conf_get_member("overlay", "title"), "back");
}

TEST_F(ConfSave, ASignalDoesNotMakeTheFileOurs)
{
    const std::string path = data + "/netport.conf";
    init();
    para_conf_set_member("netport", "port", "8080");
    lock_holder other(path);
    write_file(path, "what the other one writes\n");
    interrupt_locks(3);
    std::thread saver([] { EXPECT_EQ(para_save_conf("netport"), 0); });
    EXPECT_TRUE(wait_until([] { return lock_attempts() == 4; }));
    EXPECT_EQ(read_file(path), "what the other one writes\n");
    other.release();
    saver.join();
    EXPECT_NE(read_file(path), "what the other one writes\n");
}

TEST_F(ConfSave, GivesUpTheLockOnAWholeFile)
{
    init();
    para_conf_set_member("netport", "port", "8080");
    const std::string bytes = saved();
    EXPECT_EQ(bytes_at_unlock(), bytes);
    EXPECT_TRUE(last_lock_closes_on_exec()) << "the host starts programs meanwhile";
}

TEST_F(ConfSave, ReleasesTheLock)
{
    init();
    saved();
    lock_holder other(data + "/netport.conf");
    EXPECT_EQ(lock_attempts(), 1);
}

TEST_F(ConfSave, AReloadWaitsForTheWriterOfTheFile)
{
    const std::string path = data + "/netport.conf";
    init();
    lock_holder other(path);
    write_file(path, "port = \"half writ");
    std::thread reloader([] { para_conf_need_update("netport"); });
    EXPECT_TRUE(wait_until([] { return count_traces("enter", "para_conf_need_update") == 1; }));
    write_file(path, "port = \"8080\"\n");
    other.release();
    reloader.join();
    EXPECT_EQ(value("port"), "8080");
}

TEST_F(ConfSave, AReloadThatWaitsHoldsUpNoOtherModule)
{
    init();
    write_home("overlay.conf", "show = '1'\n");
    para_init_conf("overlay");
    write_data("overlay.conf", "show = '2'\n");
    lock_holder other(data + "/overlay.conf");
    std::atomic<bool> reloaded{false};
    std::thread reloader([&reloaded] {
        para_conf_need_update("overlay");
        reloaded = true;
    });
    EXPECT_TRUE(wait_until([] { return count_traces("enter", "para_conf_need_update") == 1; }));
    EXPECT_EQ(value("port"), "80");
    EXPECT_EQ(para_conf_set_member("netport", "port", "81"), 1);
    EXPECT_EQ(query("['port']"), "{'port':'81'}");
    EXPECT_FALSE(reloaded);
    other.release();
    reloader.join();
    EXPECT_STREQ(para_conf_get_member("overlay", "show"), "2");
}

TEST_F(ConfSave, NobodyMeetsADefaultDuringAReload)
{
    write_data("netport.conf", "port = '8080'\n");
    init();
    lock_holder other(data + "/netport.conf"); // the reload has read the defaults, and waits here
    std::thread reloader([] { para_conf_need_update("netport"); });
    EXPECT_TRUE(wait_until([] { return count_traces("enter", "para_conf_need_update") == 1; }));
    std::atomic<int> met{0}, begun{0};
    std::vector<std::thread> readers;
    for (int i = 0; i < 4; i++) {
        readers.emplace_back([this, &met, &begun] {
            begun++;
            for (int reading = 0; reading < 200; reading++) {
                char text[32] = "";
                para_conf_get_member_safe("netport", "port", text, sizeof text);
                met += std::string(text) != "8080" ? 1 : 0;
                met += query("['port']") != "{'port':'8080'}" ? 1 : 0;
            }
        });
    }
    EXPECT_TRUE(wait_until([&begun] { return begun == 4; }));
    other.release();
    reloader.join();
    for (std::thread &reader : readers)
        reader.join();
    EXPECT_EQ(met, 0) << "readings of something else";
}

TEST_F(ConfSave, TheThreadSavesARequestedChange)
{
    write_home("netport.conf", port_defaults);
    start_store();
    Client client;
    client.ask("{'msg_type':'set','netport':{'port':'8080'}}");
    EXPECT_FALSE(read_data("netport.conf"));
    move_clock(2000);
    EXPECT_TRUE(wait_until([this] {
        return read_data("netport.conf").value_or("").find("empty = \"\"\n") != std::string::npos;
    }));
    EXPECT_THAT(read_data("netport.conf").value_or(""), StartsWith("port = \"8080\"\n"));
}

TEST_F(ConfSave, WithTheSwitchOffEveryPassAsksAgainAndWritesNothing)
{
    para_profile.conf_save_hook = nullptr;
    write_home("netport.conf", port_defaults);
    start_store();
    para_conf_set_member("netport", "port", "8080");
    move_clock(2000);
    EXPECT_TRUE(wait_until([] { return count_traces("netport save...", "save_param") >= 2; }));
    EXPECT_FALSE(read_data("netport.conf"));
    stop_store();
    EXPECT_FALSE(read_data("netport.conf"));
}

TEST_F(ConfDump, WritesTheCurrentValues)
{
    init("port = '80'\nname = 'front'\n", "port = '81'\n");
    const std::string lines = "port = \"81\"\nname = \"front\"\n";
    char buffer[64];
    memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(para_save_conf_2_buf("netport", buffer, sizeof buffer),
              static_cast<int>(lines.size()) + 1);
    EXPECT_EQ(buffer, lines);
    for (size_t i = lines.size(); i < sizeof buffer; i++)
        EXPECT_EQ(buffer[i], '\0') << "the whole buffer is cleared";
}

TEST_F(ConfDump, NeedsRoomForTheFinalZero)
{
    init("a = '1'\nb = '2'\n");
    const int needed = 17; // two lines of eight
    std::vector<char> buffer(needed);
    EXPECT_EQ(para_save_conf_2_buf("netport", buffer.data(), needed), needed);
    EXPECT_THAT(traces_of("para_save_conf_2_buf"), IsEmpty());
    for (const int size : {needed - 1, 8, 1, 0}) {
        forget_traces();
        std::vector<char> small(static_cast<size_t>(size) + 1, 'x');
        EXPECT_EQ(para_save_conf_2_buf("netport", small.data(), size), 0) << size;
        EXPECT_EQ(small.back(), 'x') << "never overrun";
        EXPECT_THAT(traces_of("para_save_conf_2_buf"), ElementsAre("netport buf is not enough\n"));
        EXPECT_THAT(levels_of("netport buf is not enough", "para_save_conf_2_buf"), ElementsAre(3));
    }
}
