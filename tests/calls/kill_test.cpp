// Processes that are killed while they save.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include "calls/lives.h"
#include "camparam/camparam.h"

using testing::AnyOf;
using testing::Contains;
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
                return call == last_call ? ruling{ruling::kill, 0} : ruling{};
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
        for (long call = 1; call <= whole.calls; call++) {
            EXPECT_TRUE(save_until(call).killed) << call;
            const std::vector<int> numbers = numbers_after_start();
            lost += std::all_of(numbers.begin(), numbers.end(),
                                [](int number) { return number == before || number == after; })
                        ? 0
                        : 1;
        }
        RecordProperty("kills", static_cast<int>(whole.calls));
        RecordProperty("lost", lost);
        return lost;
    }
};

TEST_F(Kill, AtEachCallOfASaveLosesNothing)
{
    EXPECT_EQ(starts_that_lost_something(), 0);
}

TEST_F(Kill, WithoutTheGuardLosesWhatIsBeingWritten)
{
    guarded = false;
    EXPECT_GT(starts_that_lost_something(), 0);
}
