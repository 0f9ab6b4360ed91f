// What the thread Para_Process asks of the system, call by call.
#include <arpa/inet.h>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <pthread.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "camparam/guard.h"
#include "runtime/module_row.h"
#include "support/store.h"

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::atomic<bool> waits_fail{false};
std::atomic<int> receive_error{0};       // errno of each receive; 0: they are made
std::atomic<bool> loopback_fails{false}; // each receive of the socket of this machine's own
std::atomic<bool> flooded{false};        // each receive gets a datagram
std::atomic<bool> options_fail{false};
std::atomic<pid_t> stopping_thread{0};
std::atomic<pid_t> waiting_thread{0};
std::atomic<int> waits{0}, passes{0};

struct record {
    std::mutex lock;
    std::vector<std::pair<long, long>> timeouts; // seconds and microseconds of each wait
    std::vector<int> receive_flags, send_flags;
    std::vector<size_t> receive_sizes;
    std::string order; // w a wait, r a receive, p a pass
};

record &seen()
{
    static record *const all = new record;
    return *all;
}

void note(char event)
{
    const std::lock_guard<std::mutex> guard(seen().lock);
    seen().order += event;
}

template <typename function> function *next(const char *name)
{
    return reinterpret_cast<function *>(dlsym(RTLD_NEXT, name));
}

int count_pass(const char *)
{
    note('p');
    passes++;
    return 0;
}

// Whether the thread that stops the store sleeps: it does where it joins Para_Process, and so has
// asked it to stop.
bool is_joining()
{
    if (stopping_thread == 0)
        return false;
    const std::string task = "/proc/self/task/" + std::to_string(stopping_thread);
    const std::string state = read_file(task + "/stat").value_or("");
    const size_t name_end = state.rfind(')');
    return name_end != std::string::npos && state.compare(name_end, 3, ") S") == 0;
}

bool is_loopback(int socket)
{
    sockaddr_in own = {};
    socklen_t size = sizeof own;
    getsockname(socket, reinterpret_cast<sockaddr *>(&own), &size);
    return own.sin_addr.s_addr == htonl(INADDR_LOOPBACK);
}

int drop_each(const sockaddr_in *, const char *, int)
{
    return 0;
}

int wait_for_the_stop(const char *, const cJSON *, cJSON **answer, const char *)
{
    wait_until(is_joining);
    *answer = cJSON_CreateNumber(passes);
    return 0;
}

} // namespace

extern "C" {

PARA_API int select(int count, fd_set *read, fd_set *write, fd_set *except, timeval *timeout)
{
    {
        const std::lock_guard<std::mutex> guard(seen().lock);
        seen().timeouts.emplace_back(timeout->tv_sec, timeout->tv_usec);
    }
    note('w');
    waiting_thread = gettid();
    waits++;
    if (waits_fail) {
        errno = EINTR;
        return -1;
    }
    return next<decltype(select)>("select")(count, read, write, except, timeout);
}

PARA_API ssize_t recvfrom(int socket, void *bytes, size_t size, int flags, sockaddr *sender,
                          socklen_t *sender_size)
{
    {
        const std::lock_guard<std::mutex> guard(seen().lock);
        seen().receive_flags.push_back(flags);
        seen().receive_sizes.push_back(size);
    }
    note('r');
    if (receive_error != 0) {
        errno = receive_error;
        return -1;
    }
    if (flooded) {
        *static_cast<char *>(bytes) = 'x';
        return 1;
    }
    return next<decltype(recvfrom)>("recvfrom")(socket, bytes, size, flags, sender, sender_size);
}

PARA_API ssize_t recvmsg(int socket, msghdr *message, int flags)
{
    {
        const std::lock_guard<std::mutex> guard(seen().lock);
        seen().receive_flags.push_back(flags);
        seen().receive_sizes.push_back(message->msg_iov->iov_len);
    }
    note('r');
    if (loopback_fails && is_loopback(socket)) {
        errno = ENOMEM;
        return -1;
    }
    return next<decltype(recvmsg)>("recvmsg")(socket, message, flags);
}

PARA_API int setsockopt(int socket, int level, int name, const void *value, socklen_t size)
{
    if (options_fail) {
        errno = ENOPROTOOPT;
        return -1;
    }
    return next<decltype(setsockopt)>("setsockopt")(socket, level, name, value, size);
}

PARA_API ssize_t sendto(int socket, const void *bytes, size_t size, int flags,
                        const sockaddr *receiver, socklen_t receiver_size)
{
    {
        const std::lock_guard<std::mutex> guard(seen().lock);
        seen().send_flags.push_back(flags);
    }
    return next<decltype(sendto)>("sendto")(socket, bytes, size, flags, receiver, receiver_size);
}

} // extern "C"

class ThreadCalls : public Store {
protected:
    ThreadCalls() { row_named("msg_type").need_save = count_pass; }

    static bool is_answered(const char *address)
    {
        const std::string request = "{\"msg_type\":\"get\",\"msg_id\":1}";
        sockaddr_in server = {};
        server.sin_family = AF_INET;
        server.sin_port = htons(PARA_SERVER_PORT);
        server.sin_addr.s_addr = inet_addr(address);
        const int client = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        sendto(client, request.data(), request.size(), 0,
               reinterpret_cast<const sockaddr *>(&server), sizeof server);
        pollfd readable = {client, POLLIN, 0};
        const bool answered = poll(&readable, 1, 20000) == 1;
        close(client);
        return answered;
    }
    static size_t receives()
    {
        const std::lock_guard<std::mutex> guard(seen().lock);
        return seen().receive_flags.size();
    }
};

TEST_F(ThreadCalls, EveryWaitLastsAHundredMillisecondsAtMost)
{
    start_store();
    Client client;
    client.ask("{'msg_type':'get'}"); // a wait cut short must not shorten the next one
    ASSERT_TRUE(wait_until([] { return waits >= 5; }));
    stop_store();
    EXPECT_THAT(seen().timeouts, Each(std::pair<long, long>(0, 100000)));
}

TEST_F(ThreadCalls, NothingBlocks)
{
    start_store();
    Client client;
    client.ask("{'msg_type':'get'}");
    stop_store();
    EXPECT_THAT(seen().receive_flags, ElementsAre(MSG_DONTWAIT));
    EXPECT_THAT(seen().receive_sizes, ElementsAre(size_t{PARA_MESSAGE_MAX}));
    EXPECT_THAT(seen().send_flags, ElementsAre(MSG_DONTWAIT));
}

TEST_F(ThreadCalls, NothingBlocksWithTheGuardOn)
{
    platformparam_set_guard(1);
    start_store();
    Client client;
    client.ask("{'msg_type':'get'}");
    stop_store();
    EXPECT_THAT(seen().receive_flags, ElementsAre(MSG_DONTWAIT));
    EXPECT_THAT(seen().receive_sizes, ElementsAre(size_t{PARA_MESSAGE_MAX}));
    EXPECT_THAT(seen().send_flags, ElementsAre(MSG_DONTWAIT));
}

TEST_F(ThreadCalls, TheGuardServesASocketThatTellsNoDestinations)
{
    platformparam_set_guard(1);
    options_fail = true;
    start_store();
    EXPECT_THAT(levels_of("cannot tell broadcasts, errno " + std::to_string(ENOPROTOOPT),
                          "para_server_init"),
                ElementsAre(3));
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'get','msg_id':1}"), "{'msg_id':1}");
}

TEST_F(ThreadCalls, ATurnServesOneDatagramAndRunsOnePass)
{
    start_store();
    Client client;
    for (int i = 0; i < 20; i++)
        client.send("{\"msg_type\":\"get\"}");
    for (int i = 0; i < 20; i++)
        ASSERT_TRUE(client.receive());
    stop_store();
    const std::string &order = seen().order;
    for (size_t at = 0; at + 2 < order.size(); at++) {
        if (order[at] == 'r') {
            EXPECT_EQ(order[at - 1], 'w') << order;
            EXPECT_EQ(order[at + 1], 'p') << order;
        }
    }
    EXPECT_NE(order.find("wrpwrpwrp"), std::string::npos) << order;
    EXPECT_EQ(order.find("rr"), std::string::npos) << order;
    EXPECT_EQ(order.find("pp"), std::string::npos) << order;
}

TEST_F(ThreadCalls, AStopEndsTheTurnWithoutADuePass)
{
    const para_module row = {"host",  nullptr, nullptr, nullptr, wait_for_the_stop,
                             nullptr, nullptr};
    register_para_handle_extern(&row);
    start_store();
    Client client;
    client.send("{\"msg_type\":\"get\",\"host\":1}");
    stopping_thread = gettid();
    stop_store();
    const std::string reply = client.receive().value_or("none");
    EXPECT_EQ(reply, "{\n\t\"host\":\t" + std::to_string(passes) + "\n}")
        << "the request is answered, and no pass asked after it";
}

TEST_F(ThreadCalls, AStopBeforeStartUpEndsTheThreadInItsFirstTurn)
{
    EXPECT_EQ(platformparam_stop(1), 0);
    start_store();
    ASSERT_TRUE(wait_until([] { return waits >= 1; }));
    const std::string task = "/proc/self/task/" + std::to_string(waiting_thread);
    EXPECT_TRUE(wait_until([&task] { return access(task.c_str(), F_OK) != 0; }));
    EXPECT_EQ(passes, 0);
}

TEST_F(ThreadCalls, AFailedWaitEndsTheThreadWithoutAPass)
{
    start_store();
    ASSERT_TRUE(wait_until([] { return passes >= 1; }));
    waits_fail = true;
    const int failed_before = waits;
    ASSERT_TRUE(wait_until([failed_before] { return waits > failed_before; }));
    stop_store();
    EXPECT_EQ(seen().order.back(), 'w') << "neither served nor passed";
    EXPECT_EQ(count_traces("platformparam_stop ok", "platformparam_stop"), 1);
    EXPECT_EQ(count_traces("af save...", "save_param"), 1) << "a forced pass still works";
}

TEST_F(ThreadCalls, ATurnWhoseReceiveFailsLastsItsTime)
{
    receive_error = ENETDOWN;
    start_store();
    Client client;
    const auto start = std::chrono::steady_clock::now();
    client.send("{\"msg_type\":\"get\",\"msg_id\":1}"); // stays readable
    ASSERT_TRUE(wait_until([] { return receives() >= 5; }));
    const auto passed = std::chrono::steady_clock::now() - start;
    EXPECT_GE(passed, std::chrono::milliseconds(3 * 99)) << "the first turn may have begun before";

    receive_error = 0;
    EXPECT_EQ(client.receive().value_or("none"), "{\n\t\"msg_id\":\t1\n}") << "served later";
    stop_store();
    EXPECT_NE(seen().order.find("wrpwrp"), std::string::npos)
        << "each turn ends with a pass: " << seen().order;
}

TEST_F(ThreadCalls, ASocketThatFailsDoesNotKeepTheOtherFromBeingServed)
{
    platformparam_set_guard(1);
    loopback_fails = true;
    start_store();
    Client client;
    client.send("{\"msg_type\":\"get\"}"); // stays readable
    ASSERT_TRUE(wait_until([] { return receives() >= 2; }));
    EXPECT_TRUE(is_answered("127.0.0.2")) << "which is not that socket's address";
}

TEST_F(ThreadCalls, DatagramsThatAreDroppedWithoutEndDoNotHoldUpThePasses)
{
    register_request_filter(drop_each);
    flooded = true;
    start_store();
    Client().send("x"); // stays readable
    ASSERT_TRUE(wait_until([] { return receives() > 0; }));
    const int before = passes;
    EXPECT_TRUE(wait_until([before] { return passes >= before + 2; }));
    flooded = false;
}

TEST_F(ThreadCalls, AStopIsSeenWhileReceivesFail)
{
    receive_error = EIO;
    start_store();
    Client client;
    client.send("{\"msg_type\":\"get\"}");
    ASSERT_TRUE(wait_until([] { return receives() >= 2; }));
    stop_store();
    EXPECT_EQ(count_traces("platformparam_stop ok", "platformparam_stop"), 1);
}

TEST_F(ThreadCalls, AReceiveThatMayBeTriedAgainEndsItsTurnAtOnce)
{
    start_store();
    Client client;
    for (const int error : {EAGAIN, EWOULDBLOCK, EINTR}) {
        receive_error = error;
        const size_t before = receives();
        const auto start = std::chrono::steady_clock::now();
        client.send("{\"msg_type\":\"get\",\"msg_id\":1}");
        ASSERT_TRUE(wait_until([before] { return receives() >= before + 100; }));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5))
            << "on a machine with other work, and not 100 turns of 100 ms";
        receive_error = 0;
        EXPECT_NE(client.receive().value_or("none"), "none") << error;
    }
    stop_store();
    EXPECT_EQ(seen().order.find("rw"), std::string::npos) << seen().order;
}

TEST_F(ThreadCalls, AThreadThatCannotBeStartedIsNotStopped)
{
    // No thread gets a stack as large as the address space.
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, SIZE_MAX / 2 & ~size_t{0xffff});
    ASSERT_EQ(pthread_setattr_default_np(&attributes), 0);
    EXPECT_NE(platformparam_init(), 0);
    forget_traces();
    EXPECT_EQ(platformparam_stop(1), 0);
    EXPECT_THAT(traces(), IsEmpty());
}
