// Processes that are killed while they save.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <random>
#include <thread>
#include <vector>

#include "calls/lives.h"
#include "camparam/camparam.h"

using testing::Each;

namespace {

constexpr int before = 7, after = 9;

} // namespace

class Kill : public Lives {
protected:
    // Saves `after` in all modules, which had `before`; killed at that call.
    outcome save_until(long last_call)
    {
        go_back_to(before);
        return run_supervised(
            [this] {
                platformparam_set_guard(guarded ? 1 : 0);
                start();
                set_all(after);
                begin_counting();
                platformparam_save();
                end_counting();
                return 0;
            },
            [last_call](long call, int) {
                return call == last_call ? ruling{ruling::end_process, 0} : ruling{};
            });
    }

    // Starts one after a kill at each call in turn. Returns how many of them lost any number.
    int starts_that_lost_something()
    {
        const outcome whole = save_until(0);
        EXPECT_EQ(whole.status, 0);
        EXPECT_GT(whole.calls, 20);
        EXPECT_THAT(numbers_after_start(), Each(after));
        int lost = 0;
        for (long call = 1; call <= whole.calls; call += stride()) {
            EXPECT_TRUE(save_until(call).killed) << call;
            const std::vector<int> numbers = numbers_after_start();
            lost += std::all_of(numbers.begin(), numbers.end(),
                                [](int number) { return number == before || number == after; })
                        ? 0
                        : 1;
        }
        std::cout << lost << " of " << whole.calls << " kills lost a number\n";
        return lost;
    }
};

// A child that saves one number after the other until it is killed, and tells which it has saved.
class RandomKill : public Lives {
protected:
    static int number_of(int turn) { return turn % 90 + 1; }

    // Returns the turn that it told last; -1 when it was killed before the first.
    int turns_until_killed_after(std::chrono::microseconds time)
    {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            platformparam_set_guard(guarded ? 1 : 0);
            start();
            for (int turn = 0;; turn++) {
                set_all(number_of(turn));
                platformparam_save();
                if (write(ends[1], &turn, sizeof turn) != sizeof turn)
                    _exit(1);
            }
        }
        close(ends[1]);
        pollfd told = {ends[0], POLLIN, 0};
        EXPECT_EQ(poll(&told, 1, 20000), 1) << "no save in 20 s";
        const auto end = std::chrono::steady_clock::now() + time;
        while (std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
        kill(child, SIGKILL);
        int last = -1;
        for (int turn = 0; read(ends[0], &turn, sizeof turn) == sizeof turn;)
            last = turn;
        close(ends[0]);
        waitpid(child, nullptr, 0);
        return last;
    }

    // Kills a child at a random time. Returns whether a start then finds each number as the child
    // saved it, or as the save in flight would have.
    bool survives_a_kill()
    {
        const int last = turns_until_killed_after(std::chrono::microseconds(microseconds(random)));
        EXPECT_GE(last, 0);
        const std::vector<int> numbers = numbers_after_start();
        return std::all_of(numbers.begin(), numbers.end(), [=](int number) {
            return number == number_of(last) || number == number_of(last + 1);
        });
    }

    // 100, or as many as the environment variable CAMPARAM_PROOF_KILLS says.
    static int kills()
    {
        const char *const chosen = getenv("CAMPARAM_PROOF_KILLS");
        return chosen != nullptr ? atoi(chosen) : 100;
    }

    static void tell(int lost, int kills)
    {
        std::cout << lost << " of " << kills << " kills at random lost a number\n";
    }

    std::mt19937 random{20240229};
    std::uniform_int_distribution<int> microseconds{0, 20000};
};

TEST_F(RandomKill, LosesNothingButTheSaveInFlight)
{
    ASSERT_GT(kills(), 0);
    int killed = 0;
    for (; killed < kills() && !HasFailure(); killed++)
        EXPECT_TRUE(survives_a_kill()) << "kill " << killed;
    tell(HasFailure() ? 1 : 0, killed);
}

// Goes on until at least one has lost something.
TEST_F(RandomKill, WithoutTheGuardLosesNumbers)
{
    guarded = false;
    int lost = 0;
    int killed = 0;
    for (; (killed < kills() || lost == 0) && killed < 100000 && !HasFailure(); killed++) {
        go_back_to(before);
        lost += survives_a_kill() ? 0 : 1;
    }
    tell(lost, killed);
    EXPECT_GT(lost, 0);
}

TEST_F(Kill, AtEachCallOfASaveLosesNothing)
{
    EXPECT_EQ(starts_that_lost_something(), 0);
}

TEST_F(Kill, WithoutTheGuardLosesWhatIsBeingWritten)
{
    guarded = false;
    EXPECT_GT(starts_that_lost_something(), 0);
}
