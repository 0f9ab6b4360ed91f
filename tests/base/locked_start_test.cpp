// With the guard on: files that cannot be repaired while the store starts.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <string>
#include <vector>

#include "base/guarded_module.h"

using testing::HasSubstr;

namespace {

std::atomic<bool> nothing_is_rewritten{false};
std::atomic<int> refused_locks{0};

int open_file(const char *path, int flags, mode_t mode)
{
    if (nothing_is_rewritten && (flags & O_ACCMODE) == O_RDWR) {
        errno = EROFS;
        return -1;
    }
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

bool is_kind_of_json(const module_kind &kind)
{
    return strchr(kind.text, '{') != nullptr;
}

std::vector<module_kind> json_kinds()
{
    std::vector<module_kind> kinds;
    std::copy_if(all_kinds.begin(), all_kinds.end(), std::back_inserter(kinds), is_kind_of_json);
    return kinds;
}

} // namespace

// As a file system that is mounted for reading alone answers.
extern "C" PARA_API int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return open_file(path, flags, mode);
}

extern "C" PARA_API int flock(int file, int operation)
{
    const int result = static_cast<int>(syscall(SYS_flock, file, operation));
    if (result != 0)
        refused_locks++;
    return result;
}

class LockedStart : public GuardedModule {
protected:
    void TearDown() override
    {
        if (other >= 0)
            close(other);
    }

    // As another program that has the file open.
    void lock(int operation)
    {
        other = open_file(path_of(kind).c_str(), O_RDONLY | O_CLOEXEC, 0);
        ASSERT_GE(other, 0);
        ASSERT_EQ(flock(other, operation), 0);
    }
    void unlock() { EXPECT_EQ(flock(other, LOCK_UN), 0); }

    void write_torn()
    {
        write_file_with(7, ".bak");
        write_file(path_of(kind), "");
    }

    bool has_traced(const std::string &text)
    {
        const std::vector<trace_line> all = traces();
        return std::any_of(all.begin(), all.end(), [&](const trace_line &line) {
            return line.level == 3 && line.text.find(kind.file + text) != std::string::npos;
        });
    }

private:
    int other = -1;
};
INSTANTIATE_TEST_SUITE_P(, LockedStart, testing::ValuesIn(all_kinds), name_of_kind);

class LockedStartOfJson : public LockedStart {};
INSTANTIATE_TEST_SUITE_P(, LockedStartOfJson, testing::ValuesIn(json_kinds()), name_of_kind);

TEST_P(LockedStart, UsesTheBackupOfATornFileThatOthersRead)
{
    write_torn();
    lock(LOCK_SH);
    start_store();
    EXPECT_EQ(kind.get(), 7);
    EXPECT_EQ(read(), "") << "it is not ours";
    EXPECT_FALSE(read(".bad"));
    EXPECT_EQ(status().flags, unsigned{PARA_STATUS_RESTORED});
    EXPECT_TRUE(has_traced(" is torn and stays as it is, errno:11"));

    unlock();
    kind.set(9);
    platformparam_save();
    EXPECT_EQ(status().error, 0);
    EXPECT_THAT(read().value_or(""), HasSubstr("9"));
}

// What its writer leaves is not known yet.
TEST_P(LockedStart, DoesNotSaveOverATornFileThatAnotherWrites)
{
    write_torn();
    lock(LOCK_EX);
    start_store();
    EXPECT_EQ(kind.get(), 7);
    EXPECT_EQ(status().flags, unsigned{PARA_STATUS_RESTORED | PARA_STATUS_NOT_SAVED});

    unlock();
    kind.set(9);
    platformparam_save();
    EXPECT_EQ(read(), "");
    EXPECT_LT(status().saved, status().changes);
}

// A try every 10 ms, for 2 s at the most: the platform, which reads the file, does not wait again.
TEST_P(LockedStart, WaitsOnceForAFileThatAnotherWrites)
{
    write_file_with(7);
    lock(LOCK_EX);
    start_store();
    EXPECT_GT(refused_locks, 0);
    EXPECT_LT(refused_locks, 300);
}

TEST_P(LockedStartOfJson, WithoutABackupSavesNothing)
{
    write_file(path_of(kind), "");
    lock(LOCK_SH);
    start_store();
    EXPECT_EQ(status().flags, unsigned{PARA_STATUS_LOAD_FAILED | PARA_STATUS_NOT_SAVED});
    EXPECT_TRUE(has_traced(" cannot be used and stays as it is, errno:11"));
    unlock();
    platformparam_save();
    EXPECT_EQ(read(), "");
    EXPECT_FALSE(read(".bak"));
}

TEST_P(LockedStartOfJson, LeavesAFileThatIsNoJsonWhereItIs)
{
    write_file_with(7, ".bak");
    write_file(path_of(kind), "#rubbish");
    lock(LOCK_SH);
    start_store();
    EXPECT_EQ(kind.get(), 7);
    EXPECT_FALSE(read(".bad"));
    EXPECT_EQ(status().flags, unsigned{PARA_STATUS_RESTORED | PARA_STATUS_NOT_SAVED});
    unlock();
    platformparam_save();
    EXPECT_EQ(read(), "#rubbish");
}

class ReadOnlyStart : public LockedStart {};
INSTANTIATE_TEST_SUITE_P(, ReadOnlyStart, testing::ValuesIn(all_kinds), name_of_kind);

TEST_P(ReadOnlyStart, TracesATornFileThatCannotBeRestored)
{
    write_torn();
    nothing_is_rewritten = true;
    start_store();
    EXPECT_EQ(kind.get(), 7);
    EXPECT_EQ(status().flags, unsigned{PARA_STATUS_RESTORED});
    EXPECT_TRUE(has_traced(" is torn and stays as it is, errno:30"));
}
