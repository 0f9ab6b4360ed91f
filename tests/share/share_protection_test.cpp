// Share maps against other processes: who may write them, and what a changed or shortened one does
// to those that use it.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <string>

#include "camparam/share.h"
#include "share/share_fixture.h"

class ShareProtection : public testing::Test, public OwnSharedMemory {
protected:
    static mode_t mode_of(int module)
    {
        struct stat object = {};
        return stat(object_path(module).c_str(), &object) == 0 ? object.st_mode & 07777 : 07777;
    }

    static int *entry(int module, int number)
    {
        return static_cast<int *>(para_get_share_map(module, number));
    }

    static para_share_map *publish(int module, int count, int size)
    {
        return static_cast<para_share_map *>(para_share_publish(module, count, size));
    }
};

TEST_F(ShareProtection, AMapIsWrittenByItsPublisherAlone)
{
    const struct {
        mode_t umask, mode;
    } cases[] = {{0, 0644}, {022, 0644}, {027, 0640}, {077, 0600}};
    for (const auto &each : cases) {
        umask(each.umask);
        ASSERT_NE(para_share_publish(0, 1, 8), nullptr);
        EXPECT_EQ(mode_of(0), each.mode) << std::oct << each.umask;
    }
}

TEST_F(ShareProtection, AClientThatWritesIsEnded)
{
    ASSERT_NE(publish(1, 1, sizeof(int)), nullptr);
    const std::string before = read_object(1);
    const pid_t child = fork();
    if (child == 0) {
        signal(SIGSEGV, SIG_DFL);
        if (para_share_register(1) != 0)
            _exit(1);
        *static_cast<volatile int *>(entry(1, 1)) = 1;
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status)) << WEXITSTATUS(status);
    EXPECT_EQ(WTERMSIG(status), SIGSEGV);
    EXPECT_EQ(read_object(1), before);
}

TEST_F(ShareProtection, TheSizesAreThoseOfTheRegistration)
{
    para_share_map *const map = publish(2, 3, 20);
    ASSERT_EQ(para_share_register(2), 0);
    const char *const first = reinterpret_cast<char *>(entry(2, 1));
    map->entry_count = 1000000;
    map->entry_size = 0x7fffffff;
    set_trace_level(7);
    forget_traces();
    EXPECT_EQ(reinterpret_cast<char *>(entry(2, 3)) - first, 2 * 20);
    EXPECT_EQ(traces_of("para_get_share_map").size(), 0U);
    entry(2, 4);
    EXPECT_EQ(traces_of("para_get_share_map").size(), 1U) << "the fourth is still none";

    EXPECT_EQ(para_share_register(2), 0) << "the object is the one that was checked";
    EXPECT_EQ(reinterpret_cast<char *>(entry(2, 2)) - first, 20);
}

TEST_F(ShareProtection, AMapThatWasCutShortIsNotRegisteredAgain)
{
    ASSERT_NE(publish(0, 1, 8000), nullptr);
    ASSERT_EQ(para_share_register(0), 0);
    for (const off_t size : {8011, 4096, 12, 11, 0}) {
        ASSERT_EQ(truncate(object_path(0).c_str(), size), 0);
        EXPECT_EQ(para_share_register(0), -1) << size;
        EXPECT_EQ(entry(0, 1), nullptr) << size;
    }
    ASSERT_NE(publish(0, 1, 8000), nullptr);
    EXPECT_EQ(para_share_register(0), 0);
    EXPECT_EQ(*entry(0, 1), 0);
}

TEST_F(ShareProtection, AnObjectThatIsNoMemoryIsNotRegistered)
{
    const std::string path = object_path(3);
    ASSERT_EQ(mkfifo(path.c_str(), 0666), 0);
    EXPECT_EQ(para_share_register(3), -1) << "and nothing waits for a writer";
    ASSERT_EQ(unlink(path.c_str()), 0);
    ASSERT_EQ(mkdir(path.c_str(), 0777), 0);
    EXPECT_EQ(para_share_register(3), -1);
    ASSERT_EQ(rmdir(path.c_str()), 0);
    ASSERT_EQ(symlink("/dev/zero", path.c_str()), 0);
    EXPECT_EQ(para_share_register(3), -1);
}

TEST_F(ShareProtection, AnObjectLargerThanAnyMapIsNotRegistered)
{
    const uint32_t gibibyte = 1U << 30;
    const auto write_sparse = [](uint32_t entry_size) {
        write_object(3, word_bytes(1) + word_bytes(1) + word_bytes(entry_size));
        return truncate(object_path(3).c_str(), static_cast<off_t>(entry_size) + 12);
    };
    ASSERT_EQ(write_sparse(gibibyte - 12), 0);
    EXPECT_EQ(para_share_register(3), 0);
    ASSERT_EQ(write_sparse(gibibyte - 11), 0);
    EXPECT_EQ(para_share_register(3), -1);
}
