// With the guard on: conf modules that are read again.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "camparam/guard.h"
#include "modules/text/conf_fixture.h"
#include "modules/text/file_lock.h"

using testing::Contains;
using testing::HasSubstr;

class GuardedReload : public ConfModule {
protected:
    GuardedReload() { platformparam_set_guard(1); }

    void start(const std::string &saved = "port = '8081'\n")
    {
        write_home("netport.conf", port_defaults);
        write_data("netport.conf", saved);
        start_store();
        forget_traces();
    }

    std::string path() const { return data + "/netport.conf"; }
    static int reload() { return para_init_single_conf("netport"); }

    static para_module_status status() { return status_of("netport"); }

    void expect_kept(const std::string &port, unsigned flags = 0)
    {
        forget_traces();
        EXPECT_EQ(reload(), -1);
        EXPECT_EQ(value("port"), port);
        EXPECT_EQ(changed({"port", "rtsp", "name"}), 0);
        EXPECT_EQ(
            levels_of("netport is not read again, and keeps its values", "para_init_single_conf"),
            std::vector<int>{3});
        EXPECT_EQ(status().flags, flags);
    }
};

TEST_F(GuardedReload, KeepsTheValuesOfAFileThatAnotherProgramKeepsLocked)
{
    start();
    changed({"port", "rtsp", "name"});
    lock_holder other(path());
    expect_kept("8081");
    other.release();
    para_conf_set_member("netport", "rtsp", "555");
    platformparam_save();
    EXPECT_THAT(read_data("netport.conf").value_or(""), HasSubstr("port = \"8081\"\n"));
}

// It is kept, as at start-up.
TEST_F(GuardedReload, KeepsTheValuesOfAFileThatCannotBeRead)
{
    start();
    changed({"port", "rtsp", "name"});
    const std::string too_long(5 * 1024 * 1024, '#'); // for the platform
    write_file(path(), too_long);
    expect_kept("8081", PARA_STATUS_KEPT_BAD);
    EXPECT_TRUE(read_data("netport.conf.bad") == too_long);
    std::filesystem::remove(data + "/netport.conf.bad");
    std::filesystem::create_directory(path());
    expect_kept("8081", PARA_STATUS_KEPT_BAD);

    write_data("netport.conf", "port = '8082'\n");
    EXPECT_EQ(reload(), 0);
    EXPECT_EQ(value("port"), "8082");
    EXPECT_EQ(changed({"port", "rtsp", "name"}), 1);
}

TEST_F(GuardedReload, RestoresAFileThatIsTornOrOfNoUse)
{
    start();
    platformparam_save();
    const std::string saved = read_data("netport.conf").value_or("none");
    for (const size_t length : {size_t{0}, size_t{5}, saved.size() - 1}) {
        write_file(path(), saved.substr(0, length));
        EXPECT_EQ(reload(), 0);
        EXPECT_EQ(value("port"), "8081");
        EXPECT_EQ(read_data("netport.conf"), saved);
    }
    std::filesystem::remove(path());
    std::filesystem::create_directory(path());
    EXPECT_EQ(reload(), 0);
    EXPECT_EQ(value("port"), "8081");
    EXPECT_EQ(read_data("netport.conf"), saved);
    EXPECT_EQ(status().flags, unsigned{PARA_STATUS_RESTORED | PARA_STATUS_KEPT_BAD});
}

TEST_F(GuardedReload, KeepsTheValuesWithoutAFileOfDefaults)
{
    start();
    changed({"port", "rtsp", "name"});
    std::filesystem::remove(home + "/netport.conf");
    expect_kept("8081");
}

TEST_F(GuardedReload, GivesTheDefaultsForAMissingFile)
{
    start();
    std::filesystem::remove(path());
    EXPECT_EQ(reload(), 0);
    EXPECT_EQ(value("port"), "80");
}

TEST_F(GuardedReload, DoesNotEndTheStateOfAModuleThatIsNotLoaded)
{
    write_home("netport.conf", port_defaults);
    write_data("netport.conf", "port = '8081'\n");
    const std::string before = read_data("netport.conf").value_or("none");
    lock_holder other(path());
    start_store();
    constexpr unsigned not_loaded = PARA_STATUS_LOAD_FAILED | PARA_STATUS_NOT_SAVED;
    EXPECT_EQ(status().flags, not_loaded);
    EXPECT_EQ(reload(), -1);
    EXPECT_EQ(status().flags, not_loaded) << "still locked";
    other.release();
    para_conf_set_member("netport", "port", "81");
    platformparam_save();
    EXPECT_EQ(read_data("netport.conf"), before);

    EXPECT_EQ(reload(), 0) << "what is set cannot be saved, and keeps nobody";
    EXPECT_EQ(value("port"), "8081");
    EXPECT_EQ(status().flags, 0U);
}

TEST_F(GuardedReload, IsRefusedWhileChangesAreNotSaved)
{
    start();
    write_data("netport.conf", "port = '8082'\n");
    para_conf_set_member("netport", "port", "8083");
    EXPECT_EQ(reload(), -1);
    EXPECT_EQ(value("port"), "8083");
    EXPECT_EQ(levels_of("netport is not read again before its changes are saved",
                        "para_init_single_conf"),
              std::vector<int>{3});
    EXPECT_EQ(updates_told, std::vector<std::string>{});
    para_conf_need_update("netport");
    EXPECT_EQ(value("port"), "8083");

    platformparam_save();
    write_data("netport.conf", "port = '8084'\n");
    EXPECT_EQ(reload(), 0);
    EXPECT_EQ(value("port"), "8084");
}

TEST_F(GuardedReload, DropsChangesThatAreNotWritten)
{
    para_profile.conf_save_hook = nullptr;
    start();
    para_conf_set_member("netport", "port", "8083");
    EXPECT_EQ(reload(), 0);
    EXPECT_EQ(value("port"), "8081");
}

TEST_F(GuardedReload, WithoutTheGuardDropsChanges)
{
    platformparam_set_guard(0);
    start();
    para_conf_set_member("netport", "port", "8083");
    EXPECT_EQ(reload(), 0);
    EXPECT_EQ(value("port"), "8081");
}

TEST_F(GuardedReload, WithoutTheGuardAFileThatCannotBeReadLeavesTheDefaults)
{
    platformparam_set_guard(0);
    start();
    std::filesystem::remove(path());
    std::filesystem::create_directory(path());
    EXPECT_EQ(reload(), 0);
    EXPECT_EQ(value("port"), "80");
}
