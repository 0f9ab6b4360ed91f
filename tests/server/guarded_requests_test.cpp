// What the guard refuses of the datagrams that arrive, and what it leaves alone.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "camparam/guard.h"
#include "camparam/share.h"
#include "support/store.h"

using testing::ElementsAre;

namespace {

const std::string whole_request = "{\"msg_type\":\"get\",\"msg_id\":4}";
const std::string whole_answer = "{\n\t\"msg_id\":\t4\n}";
const char not_one_text[] = "cJSON_Parse err,Rec buffer: ";

// An unconnected client, which may send to any address of the loopback interface, and receive what
// is sent to a group there.
class GroupSender {
public:
    GroupSender() : descriptor(socket(AF_INET, SOCK_DGRAM, 0))
    {
        const int on = 1;
        EXPECT_EQ(setsockopt(descriptor, SOL_SOCKET, SO_BROADCAST, &on, sizeof on), 0);
    }

    ~GroupSender() { close(descriptor); }
    GroupSender(const GroupSender &) = delete;
    GroupSender &operator=(const GroupSender &) = delete;

    // A datagram to a group arrives where a socket of the machine has joined it.
    void join(in_addr_t group) const
    {
        ip_mreqn membership = {};
        membership.imr_multiaddr.s_addr = htonl(group);
        membership.imr_ifindex = loopback();
        EXPECT_EQ(
            setsockopt(descriptor, IPPROTO_IP, IP_ADD_MEMBERSHIP, &membership, sizeof membership),
            0)
            << strerror(errno);
    }

    void send_to(in_addr_t address, const std::string &text) const
    {
        sockaddr_in to = {};
        to.sin_family = AF_INET;
        to.sin_port = htons(PARA_SERVER_PORT);
        to.sin_addr.s_addr = htonl(address);
        iovec bytes = {const_cast<char *>(text.data()), text.size()};
        // Names the interface: the test's network may have no route.
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(in_pktinfo))] = {};
        msghdr message = {};
        message.msg_name = &to;
        message.msg_namelen = sizeof to;
        message.msg_iov = &bytes;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        cmsghdr *const option = CMSG_FIRSTHDR(&message);
        option->cmsg_level = IPPROTO_IP;
        option->cmsg_type = IP_PKTINFO;
        option->cmsg_len = CMSG_LEN(sizeof(in_pktinfo));
        in_pktinfo information = {};
        information.ipi_ifindex = loopback();
        memcpy(CMSG_DATA(option), &information, sizeof information);
        EXPECT_EQ(sendmsg(descriptor, &message, 0), static_cast<ssize_t>(text.size()))
            << strerror(errno);
    }

    // The next answer; "none" when none has come.
    std::string answer(int timeout_ms) const
    {
        pollfd readable = {descriptor, POLLIN, 0};
        if (poll(&readable, 1, timeout_ms) != 1)
            return "none";
        char text[4096];
        const ssize_t length = recv(descriptor, text, sizeof text, 0);
        return std::string(text, length > 0 ? static_cast<size_t>(length) : 0);
    }

private:
    static int loopback() { return static_cast<int>(if_nametoindex("lo")); }

    int descriptor;
};

constexpr in_addr_t subnet_broadcast = 0x7fffffff; // 127.255.255.255
constexpr in_addr_t test_group = 0xe900014d;       // 233.0.1.77

std::atomic<int> asked_datagrams{0};

int admit_all(const sockaddr_in *, const char *, int)
{
    asked_datagrams++;
    return 1;
}

std::atomic<int> handled_datagrams{0};

int handle_share_datagram(const para_share_datagram *datagram)
{
    handled_datagrams++;
    return strcmp(datagram->member, "hue");
}

} // namespace

class Guarded : public Store {
protected:
    Guarded() { platformparam_set_guard(1); }

    ~Guarded() override
    {
        stop_store();
        register_share_datagram_handler(nullptr);
        register_request_filter(nullptr);
    }

    void start()
    {
        start_store();
        forget_traces();
    }

    static int refused_texts()
    {
        int count = 0;
        for (const trace_line &line : traces())
            count += line.text.rfind(not_one_text, 0) == 0 && line.level == 3 ? 1 : 0;
        return count;
    }

    Client client;
};

class Unguarded : public Guarded {
protected:
    Unguarded() { platformparam_set_guard(0); }
};

TEST_F(Guarded, TextBehindTheDocumentMakesARequestInvalid)
{
    start();
    int refused = 0;
    for (const char *behind : {"x", "}", " x", "\n{}", ",", "{\"msg_type\":\"set\"}", "\xff"}) {
        client.send(whole_request + behind);
        EXPECT_TRUE(client.stays_silent()) << behind;
        EXPECT_EQ(refused_texts(), ++refused) << behind;
    }
    EXPECT_EQ(count_traces(not_one_text + whole_request + "x", "para_server_message_Process"), 1);
}

TEST_F(Guarded, WhiteSpaceBehindTheDocumentIsNone)
{
    start();
    for (const char *behind : {"", " ", "\n", "\r\n", " \t\r\n "}) {
        EXPECT_EQ(client.request(whole_request + behind), whole_answer);
        EXPECT_EQ(client.request(behind + whole_request), whole_answer);
    }
    EXPECT_EQ(refused_texts(), 0);
}

TEST_F(Guarded, BytesBehindAZeroMakeARequestInvalid)
{
    start();
    int refused = 0;
    for (const std::string &bytes :
         {whole_request + std::string("\0x", 2), whole_request + std::string("\0 ", 2),
          whole_request + std::string(80, '\0') + "x", std::string("\0", 1) + whole_request,
          std::string("{\"msg_type\":\"ge\0t\"}", 19), std::string("x\0\0\1", 4),
          whole_request + std::string("\0", 1) + whole_request}) {
        client.send(bytes);
        EXPECT_TRUE(client.stays_silent()) << bytes;
        EXPECT_EQ(refused_texts(), ++refused) << bytes;
    }
    EXPECT_EQ(count_traces(not_one_text + whole_request), 4);
}

TEST_F(Guarded, AZeroThatEndsTheDatagramIsNoText)
{
    start();
    EXPECT_EQ(client.request(whole_request + std::string(1, '\0')), whole_answer);
    EXPECT_EQ(client.request(whole_request + std::string(99, '\0')), whole_answer);
    const size_t rest = PARA_MESSAGE_MAX - whole_request.size();
    EXPECT_EQ(client.request(whole_request + std::string(rest, '\0')), whole_answer);
    EXPECT_EQ(refused_texts(), 0);
}

TEST_F(Guarded, NothingOfAnEarlierDatagramCounts)
{
    start();
    client.send(std::string(PARA_MESSAGE_MAX, 'x'));
    EXPECT_EQ(client.request(whole_request), whole_answer);
}

TEST_F(Guarded, ShareDatagramsReachTheirHandler)
{
    register_share_datagram_handler(handle_share_datagram);
    start();
    EXPECT_GE(Send_Initial(), 0);
    para_set_share_isp_hue_number(1, 0x01000001);
    para_set_share_isp_hue_string(0, "x");
    EXPECT_TRUE(wait_until([] { return handled_datagrams == 2; }));
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(refused_texts(), 0);
}

TEST_F(Guarded, ShareDatagramsWithoutAHandlerAreNoText)
{
    start();
    EXPECT_GE(Send_Initial(), 0);
    para_set_share_isp_hue_number(1, 5);
    EXPECT_TRUE(wait_until([] { return refused_texts() == 1; }));
}

TEST_F(Guarded, ADatagramThatIsCutIsInvalidWhateverItsBeginning)
{
    start();
    const std::string longest =
        whole_request + std::string(PARA_MESSAGE_MAX - whole_request.size(), ' ');
    EXPECT_EQ(client.request(longest), whole_answer);
    client.send(longest + "{}");
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(refused_texts(), 1);
}

TEST_F(Guarded, DatagramsToABroadcastAddressAreDropped)
{
    start();
    const GroupSender sender;
    for (const in_addr_t address : {subnet_broadcast, INADDR_BROADCAST}) {
        sender.send_to(address, whole_request);
        sender.send_to(address, "rubbish");
    }
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(sender.answer(0), "none");
    EXPECT_EQ(refused_texts(), 0) << "without a trace";
}

TEST_F(Guarded, TheFilterIsAskedBeforeADatagramToABroadcastAddressIsDropped)
{
    register_request_filter(admit_all);
    start();
    const GroupSender sender;
    sender.send_to(subnet_broadcast, whole_request);
    EXPECT_TRUE(wait_until([] { return asked_datagrams == 1; }));
    EXPECT_EQ(client.request(whole_request), whole_answer);
    EXPECT_EQ(asked_datagrams, 2);
    EXPECT_EQ(sender.answer(0), "none");
}

TEST_F(Guarded, DatagramsToAGroupAreDropped)
{
    start();
    const GroupSender sender;
    sender.join(test_group);
    sender.send_to(test_group, whole_request);
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(sender.answer(0), "none");
}

TEST_F(Guarded, DatagramsToAnAddressOfTheMachineAreServed)
{
    start();
    const GroupSender sender;
    for (const in_addr_t address : {INADDR_LOOPBACK, INADDR_LOOPBACK + 41}) {
        sender.send_to(address, whole_request);
        EXPECT_EQ(sender.answer(20000), whole_answer);
    }
}

TEST_F(Guarded, ShareDatagramsToABroadcastAddressAreDropped)
{
    register_share_datagram_handler(handle_share_datagram);
    start();
    const GroupSender sender;
    sender.send_to(subnet_broadcast, std::string(76, '\0'));
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(handled_datagrams, 0);
}

// As many descriptors as the socket for the others takes.
TEST_F(Guarded, ThisMachineIsServedWithoutASocketOfItsOwn)
{
    const int next = dup(STDERR_FILENO);
    close(next);
    rlimit usual = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
    rlimit one_more = usual;
    one_more.rlim_cur = static_cast<rlim_t>(next) + 1;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &one_more), 0);
    // Nothing of the fixture: a sanitizer's look at an object may take descriptors.
    const int started = platformparam_init();
    const int another = dup(STDERR_FILENO);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &usual), 0);

    EXPECT_EQ(started, 0);
    EXPECT_EQ(another, -1) << "there is room for another socket";
    EXPECT_EQ(client.ask("{'msg_type':'get','msg_id':4}"), "{'msg_id':4}");
    platformparam_stop(1);
}

TEST_F(Unguarded, TextBehindTheDocumentIsNotRead)
{
    start();
    EXPECT_EQ(client.request(whole_request + "x"), whole_answer);
    EXPECT_EQ(client.request(whole_request + "{\"msg_type\":\"set\"}"), whole_answer);
    EXPECT_EQ(client.request(whole_request + std::string("\0x", 2)), whole_answer);
    EXPECT_EQ(refused_texts(), 0);
}

TEST_F(Unguarded, TheEndOfADatagramThatIsCutIsNotMissed)
{
    start();
    EXPECT_EQ(client.request(whole_request + std::string(PARA_MESSAGE_MAX, ' ') + "{}"),
              whole_answer);
}

TEST_F(Unguarded, DatagramsToEveryoneAreServed)
{
    start();
    const GroupSender sender;
    sender.join(test_group);
    for (const in_addr_t address : {subnet_broadcast, INADDR_BROADCAST, test_group}) {
        sender.send_to(address, whole_request);
        EXPECT_EQ(sender.answer(20000), whole_answer) << std::hex << address;
    }
}
