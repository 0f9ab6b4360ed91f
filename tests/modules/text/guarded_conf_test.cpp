// With the guard on: conf files whose writing fails half-way, and file systems that lack something.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>

#include "camparam/guard.h"
#include "modules/text/conf_fixture.h"
#include "modules/text/file_lock.h"

using testing::ElementsAre;
using testing::EndsWith;

namespace {

rlim_t size_behind_backup = 0; // of any file, once the backup is on disk; 0: no limit

void limit_sizes(rlim_t bytes)
{
    signal(SIGXFSZ, SIG_IGN);
    rlimit limit = {};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
}

bool is_folder(int descriptor)
{
    struct stat about = {};
    return fstat(descriptor, &about) == 0 && S_ISDIR(about.st_mode);
}

} // namespace

// The last step of a backup is to sync its folder.
extern "C" PARA_API int fsync(int descriptor)
{
    if (size_behind_backup != 0 && is_folder(descriptor))
        limit_sizes(size_behind_backup);
    return static_cast<int>(syscall(SYS_fsync, descriptor));
}

class GuardedConfFile : public ConfModule {
protected:
    GuardedConfFile() { platformparam_set_guard(1); }

    std::string path() const { return data + "/netport.conf"; }

    // The file keeps as many bytes as fit.
    void save_torn(rlim_t bytes)
    {
        size_behind_backup = bytes;
        para_save_conf("netport");
        size_behind_backup = 0;
        limit_sizes(RLIM_INFINITY);
    }

    // Runs in a process that ends without a stop.
    template <typename work> void in_a_life(const work &steps)
    {
        const pid_t child = fork();
        if (child == 0) {
            steps();
            _exit(HasFailure() ? 1 : 0);
        }
        int ended = 0;
        waitpid(child, &ended, 0);
        EXPECT_EQ(ended, 0);
    }
};

TEST_F(GuardedConfFile, TornInAnOlderSaveIsRestored)
{
    in_a_life([&] {
        init("port = '80'\n");
        para_conf_set_member("netport", "port", "8081");
        save_torn(sizeof "port = \"8081" - 1);
        ASSERT_EQ(read_data("netport.conf"), "port = \"8081");
        para_conf_set_member("netport", "port", "9090");
        const lock_holder other(path());
        EXPECT_EQ(para_save_conf("netport"), EOF);
    });
    init("port = '80'\n");
    EXPECT_THAT(value("port"), testing::AnyOf("8081", "9090"));
}

TEST_F(GuardedConfFile, TornInAnOlderSaveIsWrittenByTheNext)
{
    init("port = '80'\n");
    para_conf_set_member("netport", "port", "8081");
    save_torn(5);
    para_conf_set_member("netport", "port", "9090");
    EXPECT_EQ(para_save_conf("netport"), 0);
    EXPECT_EQ(read_data("netport.conf"), "port = \"9090\"\n");
}

// A file that cannot be opened is not torn, and its backup goes on being the latest.
TEST_F(GuardedConfFile, ThatCannotBeOpenedHasTheLatestBackup)
{
    init("port = '80'\n");
    std::filesystem::create_directory(path());
    for (const char *port : {"81", "82"}) {
        para_conf_set_member("netport", "port", port);
        EXPECT_EQ(para_save_conf("netport"), EOF);
        EXPECT_EQ(read_data("netport.conf.bak"), "port = \"" + std::string(port) + "\"\n");
    }
}

TEST_F(GuardedConfFile, TornByTheStoreIsNotReadAgain)
{
    init("port = '80'\n");
    para_conf_set_member("netport", "port", "8081");
    save_torn(5);
    EXPECT_EQ(para_init_single_conf("netport"), -1);
    EXPECT_EQ(value("port"), "8081");
}

TEST_F(GuardedConfFile, OfAFileSystemWithoutLocksIsWritten)
{
    init("port = '80'\n");
    for (const int error : {ENOLCK, EOPNOTSUPP, ENOSYS, EINVAL}) {
        fail_locks(error);
        const std::string text = std::to_string(error);
        para_conf_set_member("netport", "port", text.c_str());
        EXPECT_EQ(para_save_conf("netport"), 0);
        EXPECT_EQ(read_data("netport.conf"), "port = \"" + text + "\"\n");
        EXPECT_EQ(update_conf(path().c_str(), "port", "port = \"1\""), 0);
        EXPECT_EQ(read_data("netport.conf"), "port = \"1\"\n");
    }
    fail_locks(EINTR);
    EXPECT_EQ(para_save_conf("netport"), EOF) << "signals that never end";
}

TEST_F(GuardedConfFile, WhoseLineIsChangedHasABackup)
{
    write_data("other.conf", "a=1\nb=2\n");
    const std::string file = data + "/other.conf";
    EXPECT_EQ(update_conf(file.c_str(), "a", "a=3"), 0);
    EXPECT_EQ(read_data("other.conf"), "a=3\nb=2\n");
    EXPECT_EQ(read_data("other.conf.bak"), "a=3\nb=2\n");

    platformparam_set_guard(0);
    EXPECT_EQ(update_conf(file.c_str(), "a", "a=4"), 0);
    EXPECT_EQ(read_data("other.conf.bak"), "a=3\nb=2\n") << "without the guard there is none";
}

TEST_F(GuardedConfFile, WithoutRoomForALineStaysAsItIs)
{
    write_data("other.conf", "a=1\nb=2\n");
    const std::string file = data + "/other.conf";
    limit_sizes(4);
    EXPECT_EQ(update_conf(file.c_str(), "a", "a=3"), -1);
    EXPECT_EQ(read_data("other.conf"), "a=1\nb=2\n");
    EXPECT_THAT(traces_of("update_conf"),
                ElementsAre(EndsWith("other.conf is not written, errno:27\n")));
}

TEST_F(GuardedConfFile, ThatIsLockedKeepsItsLineWithATrace)
{
    write_data("other.conf", "a=1\n");
    const std::string file = data + "/other.conf";
    const lock_holder other(file);
    EXPECT_EQ(update_conf(file.c_str(), "a", "a=2"), -1);
    EXPECT_THAT(traces_of("update_conf"),
                ElementsAre(EndsWith("other.conf is not written, errno:11\n")));
}
