// What this machine sends itself does not wait behind a flood from elsewhere.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "camparam/camparam.h"
#include "host/distant_client.h"
#include "support/store.h"

namespace {

std::atomic<bool> handler_entered{false}, handler_may_end{false};

int wait_in_handler(int, para_message *, cJSON **)
{
    handler_entered = true;
    wait_until([] { return handler_may_end.load(); });
    return -1;
}
const param_command waiting = {"wait", wait_in_handler, nullptr};

} // namespace

class LoopbackServer : public Store {
protected:
    // With a queue of the server's socket that holds no more datagrams.
    void start_with_full_queue()
    {
        ASSERT_EQ(register_param_command("test", &waiting, 1), 0);
        const std::string address = distant_address();
        ASSERT_NE(address, "");
        start_store();
        held.send("{\"msg_type\":\"api_get\",\"msg_name\":\"wait\"}");
        ASSERT_TRUE(wait_until([] { return handler_entered.load(); }));
        const distant_client flooder(address);
        for (int i = 0; i < 5000; i++)
            flooder.send_to(address, PARA_SERVER_PORT, "rubbish");
    }

    Client held;
};

TEST_F(LoopbackServer, AnswersAlthoughTheOtherQueueIsFull)
{
    platformparam_set_guard(1);
    start_with_full_queue();
    Client client;
    client.send("{\"msg_type\":\"set\",\"msg_id\":5}");
    handler_may_end = true;
    EXPECT_TRUE(client.receive().has_value());
}

TEST_F(LoopbackServer, IsTheGuards)
{
    start_with_full_queue();
    Client client;
    client.send("{\"msg_type\":\"set\",\"msg_id\":5}");
    handler_may_end = true;
    ASSERT_TRUE(held.receive().has_value());
    Client other; // is answered when what stood in the queue has been served
    std::optional<std::string> reply;
    ASSERT_TRUE(wait_until([&] {
        other.send("{\"msg_type\":\"set\",\"msg_id\":6}");
        return (reply = other.receive(10)).has_value();
    }));
    EXPECT_FALSE(client.receive(0).has_value()) << "the queue had no room for it";
}

TEST_F(LoopbackServer, LeavesThePortTaken)
{
    platformparam_set_guard(1);
    start_store();
    const int other = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    ASSERT_EQ(setsockopt(other, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on), 0);
    for (const char *address : {"127.0.0.1", "0.0.0.0", "127.0.0.2"}) {
        const sockaddr_in own = sender_of(address, PARA_SERVER_PORT);
        EXPECT_EQ(bind(other, reinterpret_cast<const sockaddr *>(&own), sizeof own), -1) << address;
        EXPECT_EQ(errno, EADDRINUSE) << address;
    }
    close(other);
}

static bool has_server_port(int descriptor)
{
    sockaddr_in own = {};
    socklen_t size = sizeof own;
    return getsockname(descriptor, reinterpret_cast<sockaddr *>(&own), &size) == 0 &&
           own.sin_family == AF_INET && own.sin_port == htons(PARA_SERVER_PORT);
}

TEST_F(LoopbackServer, IsClosedInProgramsThatTheHostStarts)
{
    platformparam_set_guard(1);
    start_store();
    int sockets = 0;
    for (int descriptor = 0; descriptor < 1024; descriptor++) {
        if (!has_server_port(descriptor))
            continue;
        EXPECT_EQ(fcntl(descriptor, F_GETFD), FD_CLOEXEC);
        sockets++;
    }
    EXPECT_EQ(sockets, 2);
}

// The server's is the last one that select() can watch.
TEST_F(LoopbackServer, IsNoneThatCannotBeWaitedOn)
{
    const rlimit many = {4096, 4096};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &many), 0);
    while (dup(0) < 1022) {
    }
    platformparam_set_guard(1);
    start_store();
    ASSERT_TRUE(has_server_port(1023));
    EXPECT_THAT(
        traces_of("open_loopback_socket"),
        testing::ElementsAre(testing::StartsWith("no socket of its own for this machine, errno:")));
    EXPECT_EQ(fcntl(1024, F_GETFD), -1) << "given back";
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'get','msg_id':1}"), "{'msg_id':1}");
}
