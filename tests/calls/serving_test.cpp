// System calls that fail while the server starts and serves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <string>
#include <vector>

#include "calls/lives.h"
#include "camparam/camparam.h"
#include "host/distant_client.h"

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::AllOf;
using testing::Each;
using testing::Ge;
using testing::Le;
using testing::SizeIs;

namespace {

// Exit statuses of children.
enum { answered = 0, silent = 3, not_saved = 4 };

// A client that makes none of the calls that are ruled on.
class unruled_client {
public:
    unruled_client() : descriptor(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0))
    {
        const sockaddr_in server = sender_of("127.0.0.1", PARA_SERVER_PORT);
        connect(descriptor, reinterpret_cast<const sockaddr *>(&server), sizeof server);
    }

    // Whether the store answers within that time; a request may be lost.
    bool is_answered_within(milliseconds time) const
    {
        const auto end = steady_clock::now() + time;
        bool has_answer = false;
        while (!has_answer && steady_clock::now() < end)
            has_answer = ask();
        return has_answer;
    }

private:
    bool ask() const
    {
        const std::string request = "{\"msg_type\":\"get\",\"msg_id\":1}";
        // Fails when nobody has the port, and tells it only then.
        const bool sent = write(descriptor, request.data(), request.size()) > 0;
        pollfd readable = {descriptor, POLLIN, 0};
        char reply[64];
        return sent && poll(&readable, 1, 20) == 1 && read(descriptor, reply, sizeof reply) > 0;
    }

    const int descriptor;
};

unsigned count_of_saved(const char *row)
{
    para_module_status status = {};
    return platformparam_get_status(row, &status) == 0 ? status.saved : 0;
}

bool is_wait(int number)
{
    return errors_of(number).errors[0] == EBADF;
}

bool is_receive(int number)
{
    return number == __NR_recvfrom || number == __NR_recvmsg;
}

bool serves(int number)
{
    return is_wait(number) || is_receive(number) || number == __NR_sendto;
}

bool opens_sockets(int number)
{
    return number == __NR_socket || number == __NR_bind || number == __NR_setsockopt;
}

bool is_first(const std::vector<int> &numbers, size_t position)
{
    const auto here = numbers.begin() + static_cast<long>(position);
    return std::find(numbers.begin(), here, numbers[position]) == here;
}

bool may_be_tried_again(int error)
{
    return error == EAGAIN || error == EINTR;
}

} // namespace

class Serving : public Lives, public testing::WithParamInterface<bool> {
protected:
    Serving() { guarded = GetParam(); }

    int serve() const
    {
        platformparam_set_guard(guarded ? 1 : 0);
        const unruled_client client;
        if (platformparam_init() != 0)
            return silent;
        begin_counting();
        // Twice, as the first request may be waited for already.
        const bool has_answer = client.is_answered_within(milliseconds(20000)) &&
                                client.is_answered_within(milliseconds(20000));
        end_counting();
        platformparam_stop(1);
        return has_answer ? answered : silent;
    }

    // Tries every error of each call, or every n-th.
    template <typename trial> void for_each_error(const std::vector<int> &numbers, const trial &run)
    {
        long tried = 0;
        for (size_t position = 0; position < numbers.size(); position++) {
            for (const int error : errors_of(numbers[position]).errors) {
                if (error == 0 || tried++ % stride() != 0)
                    continue;
                SCOPED_TRACE("call " + std::to_string(position) + ", number " +
                             std::to_string(numbers[position]) + ", errno " +
                             std::to_string(error));
                run(position, numbers[position], error);
            }
        }
    }

    // The calls of a turn that serves, each once.
    std::vector<int> calls_of_a_turn() const
    {
        std::vector<int> numbers;
        const auto collect = [&numbers](long, int number) {
            if (serves(number) &&
                std::find(numbers.begin(), numbers.end(), number) == numbers.end())
                numbers.push_back(number);
            return ruling{};
        };
        EXPECT_EQ(run_supervised([this] { return serve(); }, collect, socket_calls).status,
                  answered);
        return numbers;
    }

    // Has the first three calls of that number fail. Returns when each of them was made.
    std::vector<steady_clock::time_point> fail_three_times(int failing, int error) const
    {
        std::vector<steady_clock::time_point> times;
        const auto fail = [&](long, int number) {
            if (number != failing || times.size() == 3)
                return ruling{};
            times.push_back(steady_clock::now());
            return ruling{ruling::fail, error};
        };
        EXPECT_EQ(run_supervised([this] { return serve(); }, fail, socket_calls).status, answered);
        return times;
    }

    // Sets 9 in all modules, which is saved at the stop.
    int start_and_serve(bool expects_answer) const
    {
        platformparam_set_guard(guarded ? 1 : 0);
        const unruled_client client;
        begin_counting();
        if (platformparam_init() != 0)
            return not_saved;
        end_counting();
        set_all(9);
        const milliseconds time(expects_answer ? 20000 : 100);
        const bool has_answer = client.is_answered_within(time);
        platformparam_stop(1);
        return has_answer ? answered : silent;
    }

    // Returns the exit status when the call at that position of those that open sockets fails.
    int start_with_failure(size_t failing, int error, bool expects_answer) const
    {
        size_t position = 0;
        const auto fail = [&](long, int number) {
            const bool fails = opens_sockets(number) && position++ == failing;
            return fails ? ruling{ruling::fail, error} : ruling{};
        };
        const auto start = [&] { return start_and_serve(expects_answer); };
        return run_supervised(start, fail, socket_calls).status;
    }

    static std::vector<milliseconds> pauses(const std::vector<steady_clock::time_point> &times)
    {
        std::vector<milliseconds> between;
        for (size_t i = 1; i < times.size(); i++)
            between.push_back(std::chrono::duration_cast<milliseconds>(times[i] - times[i - 1]));
        return between;
    }
};
INSTANTIATE_TEST_SUITE_P(, Serving, testing::Bool(), [](const auto &with) {
    return std::string(with.param ? "WithTheGuard" : "WithoutTheGuard");
});

// A failed wait ends the thread without the guard
// (ThreadCalls.AFailedWaitEndsTheThreadWithoutAPass).
TEST_P(Serving, GoesOnAfterEachErrorOfEachCall)
{
    std::vector<int> numbers = calls_of_a_turn();
    ASSERT_THAT(numbers, SizeIs(3)) << "wait, receive, send";
    if (!guarded)
        numbers.erase(std::find_if(numbers.begin(), numbers.end(), is_wait));
    for_each_error(numbers, [this](size_t, int number, int error) {
        const auto times = fail_three_times(number, error);
        EXPECT_THAT(times, SizeIs(3));
        if (number != __NR_sendto && !may_be_tried_again(error)) {
            EXPECT_THAT(pauses(times), Each(Ge(milliseconds(95)))) << "the turn lasts its time";
        }
    });
}

TEST_P(Serving, StartsWithEachErrorOfEachCall)
{
    std::vector<int> numbers;
    const auto collect = [&numbers](long, int number) {
        if (opens_sockets(number))
            numbers.push_back(number);
        return ruling{};
    };
    EXPECT_EQ(
        run_supervised([this] { return start_and_serve(true); }, collect, socket_calls).status,
        answered);
    ASSERT_THAT(numbers, SizeIs(guarded ? 9 : 2));
    for_each_error(numbers, [&](size_t position, int number, int error) {
        // There is no server without a socket of its own, and without its address.
        const bool needed = number != __NR_setsockopt && is_first(numbers, position);
        go_back_to(7);
        EXPECT_EQ(start_with_failure(position, error, !needed), needed ? silent : answered);
        EXPECT_THAT(numbers_after_start(), Each(9)) << "saved at the stop";
    });
}

using ServingWithTheGuard = Lives;

TEST_F(ServingWithTheGuard, SavesAndRestsWhileNoWaitSucceeds)
{
    const auto save_without_waits = [] {
        platformparam_set_guard(1);
        if (platformparam_init() != 0)
            return int{silent};
        const unruled_client client;
        begin_counting();
        for (unsigned number = 5; number <= 9; number++) {
            set_all(static_cast<int>(number));
            move_clock(2000);
            if (!wait_until([number] { return count_of_saved("netport") == number - 4; }))
                return int{not_saved};
        }
        end_counting();
        const bool has_answer = client.is_answered_within(milliseconds(20000));
        platformparam_stop(1);
        return has_answer ? int{answered} : int{silent};
    };
    long waits = 0;
    const auto began = steady_clock::now();
    const auto fail_waits = [&waits](long, int number) {
        if (!is_wait(number))
            return ruling{};
        waits++;
        return ruling{ruling::fail, ENOMEM};
    };
    go_back_to(7);
    EXPECT_EQ(run_supervised(save_without_waits, fail_waits, socket_calls).status, answered);
    const auto turns = (steady_clock::now() - began) / milliseconds(100);
    EXPECT_THAT(waits, AllOf(Ge(4), Le(turns)));
    EXPECT_THAT(numbers_after_start(), Each(9));
}
