// With the guard on: files that a save of this process has left torn.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>

#include "base/guarded_module.h"

using testing::HasSubstr;

namespace {

constexpr long none = -1;
std::atomic<long> torn_length{none};

// The tests' files are short.
int shorten(int descriptor, off_t length)
{
    return static_cast<int>(syscall(SYS_ftruncate, descriptor, static_cast<long>(length)));
}

} // namespace

// As a disk that fails while a file is rewritten.
extern "C" PARA_API int ftruncate(int descriptor, off_t length) noexcept
{
    const long left = torn_length.exchange(none);
    if (left == none)
        return shorten(descriptor, length);
    shorten(descriptor, left);
    errno = EIO;
    return -1;
}

class TornFile : public GuardedModule {
protected:
    void start_and_save(int number)
    {
        start_store();
        kind.set(number);
        platformparam_save();
        ASSERT_EQ(status().error, 0);
    }
    void tear(long length)
    {
        torn_length = length;
        EXPECT_EQ(para_save_conf(kind.row), EOF);
        ASSERT_EQ(status().error, EIO);
        ASSERT_EQ(read()->size(), static_cast<size_t>(length));
    }

    // What keeps a save from its backup.
    void block() { std::filesystem::create_directory(path_of(kind, ".bak.tmp")); }
};
INSTANTIATE_TEST_SUITE_P(, TornFile, testing::Values(kind_named("Conf")), name_of_kind);

// It is the beginning of a text whose backup is about to go.
TEST_P(TornFile, IsEmptiedBeforeTheNextBackup)
{
    start_and_save(71);
    tear(5);
    block();
    kind.set(82);
    platformparam_save();
    EXPECT_EQ(status().error, EEXIST);
    EXPECT_EQ(read(), "");
    EXPECT_THAT(read(".bak").value_or(""), HasSubstr("71"));
}

TEST_P(TornFile, IsLeftAloneOnceItIsWhole)
{
    start_and_save(71);
    tear(5);
    platformparam_save();
    ASSERT_EQ(status().error, 0);
    block();
    kind.set(82);
    platformparam_save();
    EXPECT_EQ(status().error, EEXIST);
    EXPECT_THAT(read().value_or(""), HasSubstr("71"));
}
