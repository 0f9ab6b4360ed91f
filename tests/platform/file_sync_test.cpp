#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>

#include "tests/platform/folder.h"

namespace {

std::atomic<int> syncs_begun{0};
std::atomic<int> syncs_done{0};
// What a sync waits for before it ends.
std::atomic<bool (*)()> sync_may_end{nullptr};
sigset_t sync_mask;

} // namespace

extern "C" PARA_API void sync() noexcept
{
    pthread_sigmask(SIG_SETMASK, nullptr, &sync_mask);
    syncs_begun++;
    if (bool (*const may_end)() = sync_may_end)
        eventually(may_end);
    syncs_done++;
}

namespace {

std::atomic<bool> released{false};

void hold_syncs()
{
    sync_may_end = [] { return released.load(); };
}

// Runs the action in a child of this process and returns its exit status.
int status_of_child(void (*action)())
{
    const pid_t child = fork();
    if (child == 0) {
        action();
        _exit(99);
    }
    int status = 0;
    if (!eventually([&] { return waitpid(child, &status, WNOHANG) == child; })) {
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
    }
    EXPECT_TRUE(WIFEXITED(status)) << status;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

TEST(Sync, NeedsNoShell)
{
    EXPECT_EQ(lib_system("sync"), 0);
    EXPECT_TRUE(eventually([] { return syncs_done == 1; }));
}

TEST(Sync, DoesNotHoldUpItsCaller)
{
    hold_syncs();
    in_time([] {
        EXPECT_EQ(lib_system("sync"), 0);
        EXPECT_EQ(lib_system("sync"), 0);
    });
    EXPECT_TRUE(eventually([] { return syncs_begun == 1; }));
    EXPECT_EQ(syncs_done, 0);
    released = true;
}

TEST(Sync, RunsOnceForAllThatAskedBeforeItBegan)
{
    hold_syncs();
    EXPECT_EQ(lib_system("sync"), 0);
    ASSERT_TRUE(eventually([] { return syncs_begun == 1; }));
    for (int i = 0; i < 5; i++)
        EXPECT_EQ(lib_system("sync"), 0);
    released = true;
    ASSERT_TRUE(eventually([] { return syncs_done == 2; })) << "the first was too early for five";

    EXPECT_EQ(lib_system("sync"), 0);
    EXPECT_TRUE(eventually([] { return syncs_done == 3; }));
    EXPECT_EQ(syncs_begun, 3);
}

TEST(Sync, LeavesSignalsToTheHost)
{
    EXPECT_EQ(lib_system("sync"), 0);
    ASSERT_TRUE(eventually([] { return syncs_done == 1; }));
    EXPECT_EQ(sigismember(&sync_mask, SIGTERM), 1);
    EXPECT_EQ(sigismember(&sync_mask, SIGCHLD), 1);
}

namespace {

std::atomic<bool> process_ends{false};

// Exits while one sync runs, which ends once the exiting thread waits, and another is due.
void end_with_syncs_due()
{
    sync_may_end = [] { return process_ends && thread_sleeps(getpid()); };
    std::atexit([] { _exit(syncs_done); });
    lib_system("sync");
    eventually([] { return syncs_begun == 1; });
    lib_system("sync");
    std::atexit([] { process_ends = true; });
    exit(98);
}

void sync_in_the_last_step()
{
    std::atexit([] {
        lib_system("sync");
        _exit(syncs_done);
    });
    lib_system("sync");
    eventually([] { return syncs_done == 1; });
    exit(98);
}

void end_with_a_sync_that_hangs()
{
    sync_may_end = [] { return false; };
    std::atexit([] { _exit(7); });
    lib_system("sync");
    exit(98);
}

} // namespace

TEST(Sync, IsCarriedOutBeforeTheProcessEnds)
{
    EXPECT_EQ(status_of_child(end_with_syncs_due), 2);
}

TEST(Sync, RunsOnTheCallersThreadWhileTheProcessEnds)
{
    EXPECT_EQ(status_of_child(sync_in_the_last_step), 2);
}

TEST(Sync, ThatHangsDoesNotKeepTheProcess)
{
    EXPECT_EQ(status_of_child(end_with_a_sync_that_hangs), 7);
}

// The thread of the parent does not exist in the child.
TEST(Sync, OfTheParentIsNotWaitedForByAChild)
{
    hold_syncs();
    EXPECT_EQ(lib_system("sync"), 0);
    ASSERT_TRUE(eventually([] { return syncs_begun == 1; }));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(status_of_child([] { exit(6); }), 6);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    released = true;
}

// A fork may come at any moment of the parent's thread, also while that holds a lock.
TEST(Sync, IsNotWaitedForByAChildThatIsForkedAtAnyMoment)
{
    std::thread asking([] {
        while (!released)
            lib_system("sync");
    });
    ASSERT_TRUE(eventually([] { return syncs_begun > 0; }));
    int ended_well = 0;
    while (ended_well < 100 && status_of_child([] { exit(lib_system("sync")); }) == 0)
        ended_well++;
    released = true;
    asking.join();
    EXPECT_EQ(ended_well, 100);
}
