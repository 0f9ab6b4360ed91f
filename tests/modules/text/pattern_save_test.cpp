// Saving pattern modules, and their text dump.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "modules/text/file_lock.h"
#include "modules/text/pattern_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

using JsonSave = JsonModule;
using JsonDump = JsonModule;

TEST_F(JsonSave, IsDueTwoSecondsAfterTheLastChange)
{
    init();
    stop_clock();
    EXPECT_EQ(para_need_save_misc("panel"), 0);
    para_set_json_cur_number("panel", "brightness", 1);
    move_clock(1999);
    EXPECT_EQ(para_need_save_misc("panel"), 0);
    para_set_json_cur_str("panel", "mode", "off");
    move_clock(1999);
    EXPECT_EQ(para_need_save_misc("panel"), 0) << "every change restarts the delay";
    move_clock(1);
    EXPECT_EQ(para_need_save_misc("panel"), 1);
    saved();
    EXPECT_EQ(para_need_save_misc("panel"), 0);
}

TEST_F(JsonSave, WritesTheCurrentValuesAlone)
{
    init();
    const std::optional<std::string> defaults = read_file(home + "/panel.conf");
    para_set_json_cur("panel", "brightness", 60);
    EXPECT_EQ(saved(), "brightness = \"60\"\noffset = \"-3\"\nmode = \"on\"\nsingle = \"only\"\n"
                       "flags = \"1\"\nextra = \"12 apples\"\n");
    EXPECT_EQ(read_file(home + "/panel.conf"), defaults);
}

TEST_F(JsonSave, ReplacesALongerFile)
{
    write_data("panel.conf", "# a comment\na = '1'\n" + std::string(5000, '#') + "\n");
    init("{'a':[0,9]}", "a = '2'\n");
    EXPECT_EQ(saved(), "a = \"1\"\n");
}

TEST_F(JsonSave, WhatIsSavedReadsBackEqual)
{
    const std::vector<std::string> texts = {"",
                                            " ",
                                            "two words",
                                            " blanks around ",
                                            "gr\xc3\xbc\xc3\x9f "
                                            "dich",
                                            "a=b",
                                            "#x",
                                            "x;y",
                                            "\t",
                                            std::string(255, 'f')};
    std::string list = "'start'";
    for (const std::string &text : texts)
        list += ",'" + (text == "\t" ? "\\t" : text) + "'";
    init("{'e':[" + list + "],'last':[0,1]}", "e = 'start'\nlast = '1'\n");
    for (const std::string &text : texts) {
        ASSERT_EQ(para_set_json_cur_str("panel", "e", text.c_str()), 1) << text;
        saved();
        configure *const cur = configure_init();
        EXPECT_EQ(configure_parse(cur, 0, (data + "/panel.conf").c_str()), 0);
        char read[300];
        EXPECT_EQ(cur->conf_get(cur, "e", read, sizeof read), 0) << text;
        EXPECT_EQ(read, text);
        EXPECT_EQ(cur->conf_get(cur, "last", read, sizeof read), 0) << text;
        configure_free(cur);
    }
}

TEST_F(JsonSave, AModuleThatFailedToLoadIsSavedLikeAnyOther)
{
    write_home("panel_range.json", panel_range); // without the defaults file
    para_init_misc("json");
    for (const char *what : {"no defaults", "no range either"}) {
        write_data("panel.conf", "light = '3'\n");
        para_init_misc("panel");
        EXPECT_EQ(para_save_misc("panel"), 0) << what;
        EXPECT_EQ(read_data("panel.conf"), "") << what << ": it has no values";
        unlink((home + "/panel_range.json").c_str());
    }
}

TEST_F(JsonSave, AFileThatDoesNotOpenIsNoErrorAndNotRetried)
{
    init();
    para_set_json_cur("panel", "brightness", 1);
    mkdir((data + "/panel.conf").c_str(), 0755);
    EXPECT_EQ(para_save_misc("panel"), 0);
    EXPECT_FALSE(change_pending());
    rmdir((data + "/panel.conf").c_str());
    para_set_json_cur("panel", "brightness", 2);
    EXPECT_TRUE(change_pending());
    EXPECT_THAT(saved(), StartsWith("brightness = \"2\"\n"));
}

TEST_F(JsonSave, AFullDiskIsReported)
{
    init();
    para_set_json_cur("panel", "brightness", 1);
    ASSERT_EQ(symlink("/dev/full", (data + "/panel.conf").c_str()), 0);
    EXPECT_NE(para_save_misc("panel"), 0);
    EXPECT_FALSE(change_pending()) << "the change is cleared first";
}

TEST_F(JsonSave, APathThatDoesNotFitIsNoFile)
{
    init();
    const std::string long_data = data + "/" + std::string(120 - data.size(), 'd');
    ASSERT_EQ(mkdir(long_data.c_str(), 0755), 0);
    para_profile.data_dir = long_data.c_str();
    EXPECT_EQ(para_save_misc("panel"), 0);
    EXPECT_EQ(rmdir(long_data.c_str()), 0) << "it is empty";
}

TEST_F(JsonSave, WaitsForAnotherProcessThatHasTheFileLocked)
{
    const std::string path = data + "/panel.conf";
    init();
    para_set_json_cur("panel", "brightness", 60);
    lock_holder other(path);
    write_file(path, "what the other one writes\n");

    int result = -1;
    std::atomic<bool> done{false};
    std::thread saver([&] {
        result = para_save_misc("panel");
        done = true;
    });
    EXPECT_TRUE(wait_until([] { return lock_attempts() == 1; }));
    EXPECT_EQ(read_file(path), "what the other one writes\n");
    EXPECT_FALSE(done);
    EXPECT_EQ(para_set_json_cur("panel", "offset", 4), 1) << "setters do not wait";

    other.release();
    saver.join();
    EXPECT_EQ(result, 0);
    EXPECT_THAT(read_file(path).value_or(""), StartsWith("brightness = \"60\"\noffset = "));
    EXPECT_TRUE(change_pending()) << "the change meanwhile";
    EXPECT_THAT(saved(), StartsWith("brightness = \"60\"\noffset = \"4\"\n"));
}

TEST_F(JsonSave, ASignalDoesNotMakeTheFileOurs)
{
    const std::string path = data + "/panel.conf";
    init();
    para_set_json_cur("panel", "brightness", 7);
    lock_holder other(path);
    write_file(path, "what the other one writes\n");
    interrupt_locks(3);
    std::thread saver([] { EXPECT_EQ(para_save_misc("panel"), 0); });
    EXPECT_TRUE(wait_until([] { return lock_attempts() == 4; }));
    EXPECT_EQ(read_file(path), "what the other one writes\n");
    other.release();
    saver.join();
    EXPECT_NE(read_file(path), "what the other one writes\n");
}

TEST_F(JsonSave, GivesUpTheLockOnAWholeFile)
{
    init();
    para_set_json_cur("panel", "brightness", 7);
    const std::string bytes = saved();
    EXPECT_EQ(bytes_at_unlock(), bytes);
    EXPECT_TRUE(last_lock_closes_on_exec()) << "the host starts programs meanwhile";
}

TEST_F(JsonSave, ReleasesTheLock)
{
    init();
    saved();
    lock_holder other(data + "/panel.conf");
    EXPECT_EQ(lock_attempts(), 1);
}

TEST_F(JsonSave, TheThreadSavesARequestedChange)
{
    write_home("www2json.json", "{'json_pattern_list':['misc','panel']}");
    write_module("panel");
    start_store();
    Client client;
    client.ask("{'msg_type':'set','panel':{'mode':'auto'}}");
    EXPECT_FALSE(read_data("panel.conf"));
    move_clock(2000);
    EXPECT_TRUE(wait_until([this] {
        return read_data("panel.conf").value_or("").find("mode = \"auto\"\n") != std::string::npos;
    }));
    EXPECT_TRUE(wait_until([] { return !shell_commands().empty(); }));
}

TEST_F(JsonDump, WritesTheCurrentValues)
{
    init("{'a':[0,9],'b':['x','y z']}", "a = '1'\nb = 'x'\n");
    para_set_json_cur_str("panel", "b", "y z");
    const std::string lines = "a = \"1\"\nb = \"y z\"\n";
    char buffer[64];
    memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(para_save_misc_conf_2_buf("panel", buffer, sizeof buffer),
              static_cast<int>(lines.size()) + 1);
    EXPECT_EQ(buffer, lines);
    for (size_t i = lines.size(); i < sizeof buffer; i++)
        EXPECT_EQ(buffer[i], '\0') << "the whole buffer is cleared";
}

TEST_F(JsonDump, NeedsRoomForTheFinalZero)
{
    init("{'a':[0,9],'b':[0,9]}", "a = '1'\nb = '2'\n");
    const int needed = 17; // two lines of eight
    forget_traces();
    std::vector<char> buffer(needed);
    EXPECT_EQ(para_save_misc_conf_2_buf("panel", buffer.data(), needed), needed);
    EXPECT_THAT(traces(), IsEmpty());

    for (const int size : {needed - 1, 9, 8, 1, 0}) {
        forget_traces();
        std::vector<char> small(static_cast<size_t>(size) + 1, 'x');
        EXPECT_EQ(para_save_misc_conf_2_buf("panel", small.data(), size), 0) << size;
        EXPECT_EQ(small.back(), 'x') << "never overrun";
        EXPECT_THAT(traces_of("para_save_misc_conf_2_buf"),
                    ElementsAre("panel buf is not enough\n"));
        EXPECT_THAT(levels_of("panel buf is not enough", "para_save_misc_conf_2_buf"),
                    ElementsAre(3));
    }
}
