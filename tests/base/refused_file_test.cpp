// Files that the system refuses to lock, to restore or to reach.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "camparam/camparam.h"
#include "support/every_kind.h"
#include "support/refused_call.h"

using testing::Contains;
using testing::EndsWith;

class RefusedFile : public EveryKind {
protected:
    RefusedFile() { platformparam_set_guard(1); }

    // What an interrupted save leaves.
    void tear_af()
    {
        write_data("af_cur.json", "");
        write_data("af_cur.json.bak", "{'zoom_value':7}");
    }

    // More than an object of the reference platform takes.
    void write_too_many_keys()
    {
        std::string lines;
        for (int i = 0; i < 5000; i++)
            lines += "key" + std::to_string(i) + " = '1'\n";
        for (const char *file : {"netport.conf", "panel.conf"})
            write_data(file, lines);
    }

    void expect_written_without_locks()
    {
        start_store();
        refuse_call(SYS_flock, ENOLCK);
        para_conf_set_member("netport", "port", "9");
        platformparam_save();
        EXPECT_EQ(status_of("netport").error, 0);
        EXPECT_EQ(read_data("netport.conf"), "port = \"9\"\n");

        write_data("other.conf", "port = '80'\n");
        EXPECT_EQ(update_line("81"), 0);
        EXPECT_EQ(read_data("other.conf"), "port=81\n");
    }

    // Rewrites a line of a file of its own, as programs other than the store's host do.
    int update_line(const char *value)
    {
        const std::string path = data + "/other.conf";
        return update_line_conf_str(path.c_str(), "port", value, "%s=%s");
    }

    static void refuse_to_shorten(int error)
    {
        refuse_call(SYS_ftruncate, error);
#ifdef SYS_ftruncate64
        refuse_call(SYS_ftruncate64, error);
#endif
    }
};

TEST_F(RefusedFile, ATornOneThatCannotBeRestoredLeavesTheBackupInForce)
{
    tear_af();
    refuse_to_shorten(EIO);
    start_store();

    EXPECT_EQ(para_get_af_zoom_value_cur(), 7);
    EXPECT_EQ(status_of("af").flags, unsigned{PARA_STATUS_RESTORED});
    EXPECT_THAT(traces_of("restore"),
                Contains(EndsWith("af_cur.json cannot be restored, errno:5\n")));
    EXPECT_EQ(read_data("af_cur.json"), "");
}

TEST_F(RefusedFile, AFolderWithATooLongPathIsAFailedSave)
{
    start_store();
    stop_store();
    const std::string too_long = data + "/" + std::string(PARA_PATH_SIZE, 'd');
    para_profile.data_dir = too_long.c_str();
    para_set_af_zoom_value_cur(9);
    EXPECT_EQ(para_save_af("af"), EOF);
    EXPECT_EQ(status_of("af").error, ENAMETOOLONG);
    para_profile.data_dir = data.c_str();
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_EQ(status_of("af").error, 0);
}

// Too many entries for the reference platform's objects; the guard, which looks for torn files,
// sees nothing wrong.
TEST_F(RefusedFile, AConfFileThatOnlyThePlatformRefusesIsNotOverwritten)
{
    write_too_many_keys();
    const std::optional<std::string> before = read_data("netport.conf");
    start_store();
    para_conf_need_update("netport");

    EXPECT_EQ(para_conf_set_member("netport", "port", "9"), 1);
    para_set_json_cur("panel", "brightness", 9);
    platformparam_save();
    for (const std::string module : {"netport", "panel"}) {
        EXPECT_EQ(status_of(module).flags,
                  unsigned{PARA_STATUS_LOAD_FAILED | PARA_STATUS_NOT_SAVED})
            << module;
        EXPECT_TRUE(read_data(module + ".conf") == before) << module;
    }
}

TEST_F(RefusedFile, TheBackupOfAConfFileThatOnlyThePlatformRefusesIsUsed)
{
    write_too_many_keys();
    write_data("netport.conf.bak", "port = '7'\n");
    write_data("panel.conf.bak", "brightness = '7'\n");
    const std::optional<std::string> before = read_data("netport.conf");
    start_store();

    EXPECT_EQ(kind_named("Conf").get(), 7);
    EXPECT_EQ(kind_named("Pattern").get(), 7);
    EXPECT_THAT(traces_of("load_backup"),
                Contains(EndsWith("netport.conf is refused, errno:27\n")));
    EXPECT_THAT(traces_of("load_backup"),
                Contains(EndsWith("panel.conf.bak is used in its place\n")));
    for (const std::string module : {"netport", "panel"}) {
        EXPECT_EQ(status_of(module).flags,
                  unsigned{PARA_STATUS_LOAD_FAILED | PARA_STATUS_RESTORED | PARA_STATUS_NOT_SAVED})
            << module;
        EXPECT_TRUE(read_data(module + ".conf") == before) << module;
    }
}

TEST_F(RefusedFile, WithoutLocksAConfFileIsWritten)
{
    expect_written_without_locks();
}

TEST_F(RefusedFile, WithoutLocksAndGuardAConfFileIsWrittenAllTheSame)
{
    platformparam_set_guard(0);
    expect_written_without_locks();
}
