// With the guard on: folders that cannot be synced, as of file systems that have no such call, or
// that may be written but not read.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>

#include <cerrno>

#include "calls/lives.h"
#include "camparam/camparam.h"

namespace {

constexpr int port = 9;

bool renames(int call)
{
#ifdef __NR_rename
    if (call == __NR_rename)
        return true;
#endif
#ifdef __NR_renameat
    if (call == __NR_renameat)
        return true;
#endif
    return call == __NR_renameat2;
}

bool opens(int call)
{
#ifdef __NR_open
    if (call == __NR_open)
        return true;
#endif
    return call == __NR_openat;
}

} // namespace

class FolderSync : public Lives {
protected:
    // Saves while the first call that `concerns` tells of behind each renaming of a backup fails.
    int error_of_save(bool (*concerns)(int), int error)
    {
        bool renamed = false;
        return run_supervised(save,
                              [&](long, int call) {
                                  if (renamed && concerns(call)) {
                                      renamed = false;
                                      return ruling{ruling::fail, error};
                                  }
                                  renamed = renamed || renames(call);
                                  return ruling{};
                              })
            .status;
    }

    static int save()
    {
        platformparam_set_guard(1);
        start();
        kind_named("Conf").set(port);
        begin_counting();
        platformparam_save();
        end_counting();
        para_module_status status = {};
        platformparam_get_status(kind_named("Conf").row, &status);
        return status.error;
    }

    static bool syncs(int call) { return call == __NR_fsync; }
    std::string saved() { return read_data("netport.conf").value_or("none"); }
};

TEST_F(FolderSync, ThatDoesNotExistIsNoFailure)
{
    EXPECT_EQ(error_of_save(syncs, EINVAL), 0);
    EXPECT_THAT(saved(), testing::HasSubstr("9"));
}

TEST_F(FolderSync, OfAFolderThatMayNotBeReadIsNoFailure)
{
    EXPECT_EQ(error_of_save(opens, EACCES), 0);
    EXPECT_THAT(saved(), testing::HasSubstr("9"));
}

TEST_F(FolderSync, ThatFailsIsAFailure)
{
    EXPECT_EQ(error_of_save(syncs, EIO), EIO);
    EXPECT_EQ(saved(), "none");
    EXPECT_EQ(error_of_save(opens, EMFILE), EMFILE);
    EXPECT_EQ(saved(), "none");
}
