// System calls that fail while the store starts and saves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "calls/lives.h"
#include "camparam/camparam.h"

using testing::AnyOf;
using testing::Each;

namespace {

constexpr int old_number = 7, new_number = 9;

// Exit statuses of children.
enum { fine = 0, done_but_not_told = 3, told_but_not_retried = 4 };

bool all_saved()
{
    for (int i = 0; i < module_para_handle_num; i++) {
        para_module_status status = {};
        const para_module &row = module_para_handle[i];
        if (row.save == nullptr || platformparam_get_status(row.name, &status) != 0)
            continue;
        if ((status.flags & PARA_STATUS_NOT_SAVED) == 0 &&
            (status.saved != status.changes || status.error != 0))
            return false;
    }
    return true;
}

} // namespace

class FailingCall : public Lives {
protected:
    // Tries every call, and of each every error that it may have; `last` is how many there are.
    template <typename trial> void for_each_error(const std::vector<int> &numbers, const trial &run)
    {
        for (size_t i = 0; i < numbers.size() && !HasFailure();
             i += static_cast<size_t>(stride())) {
            for (const int error : errors_of(numbers[i]).errors) {
                if (error == 0)
                    break;
                SCOPED_TRACE("call " + std::to_string(i + 1) + ", number " +
                             std::to_string(numbers[i]) + ", errno " + std::to_string(error));
                run(static_cast<long>(i + 1), error);
            }
        }
    }

    // A life in which everything is saved, by the second save if not by the first. Returns 1 when
    // the status told that the first failed.
    static int save_twice()
    {
        platformparam_set_guard(1);
        start();
        set_all(new_number);
        begin_counting();
        platformparam_save();
        end_counting();
        const bool told = !all_saved();
        platformparam_save();
        return all_saved() ? (told ? 1 : fine) : told_but_not_retried;
    }

    // It, with an error of one call.
    void save_twice_with(long failing, int error)
    {
        go_back_to(old_number);
        const outcome ended = run_supervised(save_twice, [&](long call, int) {
            return call == failing ? ruling{ruling::fail, error} : ruling{};
        });
        EXPECT_THAT(ended.status, AnyOf(fine, 1));
        EXPECT_THAT(numbers_after_start(), Each(new_number));
    }

    // The numbers of the calls that a child makes between its marks.
    std::vector<int> calls_of(const std::function<int()> &child)
    {
        std::vector<int> numbers;
        go_back_to(old_number);
        EXPECT_EQ(run_supervised(child,
                                 [&](long, int number) {
                                     numbers.push_back(number);
                                     return ruling{};
                                 })
                      .status,
                  fine);
        EXPECT_GT(numbers.size(), 20U);
        return numbers;
    }
};

TEST_F(FailingCall, OfASaveIsToldAndTheNextSaveWrites)
{
    for_each_error(calls_of(save_twice),
                   [&](long failing, int error) { save_twice_with(failing, error); });
}

TEST_F(FailingCall, OfASaveMayBeInterrupted)
{
    const std::vector<int> numbers = calls_of(save_twice);
    int interrupted = 0;
    for (size_t i = 0; i < numbers.size() && !HasFailure(); i++) {
        if (numbers[i] != __NR_write && numbers[i] != __NR_flock)
            continue;
        SCOPED_TRACE("call " + std::to_string(i + 1));
        save_twice_with(static_cast<long>(i + 1), EINTR);
        interrupted++;
    }
    EXPECT_GT(interrupted, 10);
}

// A disk that is full or fails from some call on: what counts as saved is on disk.
TEST_F(FailingCall, WithAllThatFollowIsNeverASaveThatIsDone)
{
    const auto save_and_tell = [] {
        platformparam_set_guard(1);
        start();
        set_all(new_number);
        begin_counting();
        platformparam_save();
        end_counting();
        return all_saved() ? fine : 1;
    };
    for_each_error(calls_of(save_and_tell), [&](long failing, int error) {
        go_back_to(old_number);
        const outcome ended = run_supervised(save_and_tell, [&](long call, int) {
            return call >= failing ? ruling{ruling::fail, error} : ruling{};
        });
        const std::vector<int> numbers = numbers_after_start();
        EXPECT_THAT(numbers, Each(AnyOf(old_number, new_number))) << "nothing is lost";
        EXPECT_THAT(ended.status, AnyOf(fine, 1));
        if (ended.status == fine) {
            EXPECT_THAT(numbers, Each(new_number));
        }
    });
}

TEST_F(FailingCall, OfAStartLosesNothing)
{
    const auto start_and_stop = [] {
        platformparam_set_guard(1);
        begin_counting();
        start();
        end_counting();
        platformparam_stop(1);
        return int{fine};
    };
    for_each_error(calls_of(start_and_stop), [&](long failing, int error) {
        go_back_to(old_number);
        const outcome ended = run_supervised(start_and_stop, [&](long call, int) {
            return call == failing ? ruling{ruling::fail, error} : ruling{};
        });
        EXPECT_EQ(ended.status, fine);
        EXPECT_THAT(numbers_after_start(), Each(old_number));
    });
}
