#include "request_filter.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

#include "host/host_process.h"

namespace {

std::vector<network> no_interfaces()
{
    return {};
}

sockaddr_in sender_of(const char *address, int port)
{
    sockaddr_in sender = {};
    sender.sin_family = AF_INET;
    sender.sin_port = htons(static_cast<in_port_t>(port));
    EXPECT_EQ(inet_pton(AF_INET, address, &sender.sin_addr), 1);
    return sender;
}

class Filter : public testing::Test {
protected:
    static filter_rules rules()
    {
        return {.allowed = {*parse_network("10.0.0.0/8")},
                .per_source = {.requests_per_second = 2, .reply_bytes_per_second = 100},
                .port = 6801};
    }

    request_filter filter{rules(), no_interfaces};
};

TEST_F(Filter, DropsWhatComesFromAServersPort)
{
    EXPECT_EQ(filter.judge(sender_of("127.0.0.1", 6800), 0), verdict::from_server_port);
    EXPECT_EQ(filter.judge(sender_of("10.0.0.1", 6801), 0), verdict::from_server_port);
    EXPECT_EQ(filter.judge(sender_of("10.0.0.1", 6802), 0), verdict::admitted);
}

TEST_F(Filter, DropsWhatComesFromOtherNetworks)
{
    EXPECT_EQ(filter.judge(sender_of("11.0.0.1", 5000), 0), verdict::from_other_network);
    EXPECT_EQ(filter.judge(sender_of("127.0.0.1", 5000), 0), verdict::admitted);
}

TEST_F(Filter, LimitsEachSourceButThisMachine)
{
    const sockaddr_in far = sender_of("10.0.0.1", 5000), near = sender_of("127.0.0.1", 5000);
    for (int i = 0; i < 2; i++)
        EXPECT_EQ(filter.judge(far, 0), verdict::admitted);
    EXPECT_EQ(filter.judge(far, 0), verdict::over_rate);
    EXPECT_EQ(filter.judge(sender_of("10.0.0.1", 5001), 0), verdict::over_rate) << "a source is "
                                                                                   "an address";
    for (int i = 0; i < 100; i++)
        EXPECT_EQ(filter.judge(near, 0), verdict::admitted);

    filter.charge(far, 200, 0);
    filter.charge(near, 2000000, 0);
    EXPECT_EQ(filter.judge(far, 1000), verdict::over_rate);
    EXPECT_EQ(filter.judge(near, 1000), verdict::admitted);
}

TEST_F(Filter, ReportsWhatItDroppedOnceASecond)
{
    EXPECT_EQ(filter.report(0), "");
    for (int i = 0; i < 5; i++)
        filter.judge(sender_of("10.0.0.1", 5000), 0);
    filter.judge(sender_of("11.0.0.1", 5000), 0);
    filter.judge(sender_of("11.0.0.2", 5000), 0);
    EXPECT_EQ(filter.report(0), "datagrams dropped: 2 from other networks (last 11.0.0.2), "
                                "3 over the rate (last 10.0.0.1)");

    filter.judge(sender_of("10.0.0.2", 6800), 0);
    EXPECT_EQ(filter.report(999), "");
    EXPECT_EQ(filter.report(1000), "datagrams dropped: 1 from a server's port (last 10.0.0.2)");
    EXPECT_EQ(filter.report(3000), "");
}

// --- In the host ---

// Gives the loopback interface another address, of no loopback network, where that is allowed.
void add_address(const char *address)
{
    ifreq request = {};
    strncpy(request.ifr_name, "lo:1", sizeof request.ifr_name - 1);
    const sockaddr_in with_address = sender_of(address, 0);
    memcpy(&request.ifr_addr, &with_address, sizeof with_address);
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ioctl(descriptor, SIOCSIFADDR, &request);
    close(descriptor);
}

// An address of this machine outside the loopback network; the empty text when there is none.
std::string other_address()
{
    std::string found;
    ifaddrs *all = nullptr;
    EXPECT_EQ(getifaddrs(&all), 0);
    for (const ifaddrs *each = all; each != nullptr; each = each->ifa_next) {
        if (each->ifa_addr == nullptr || each->ifa_addr->sa_family != AF_INET)
            continue;
        const auto *const address = reinterpret_cast<const sockaddr_in *>(each->ifa_addr);
        if (loopback_network.has(ntohl(address->sin_addr.s_addr)))
            continue;
        char text[INET_ADDRSTRLEN];
        found = inet_ntop(AF_INET, &address->sin_addr, text, sizeof text);
    }
    freeifaddrs(all);
    return found;
}

// A client at an address and port of its own.
class distant_client {
public:
    explicit distant_client(const std::string &address, int port = 0)
        : descriptor(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0))
    {
        const sockaddr_in own = sender_of(address.c_str(), port);
        EXPECT_EQ(bind(descriptor, reinterpret_cast<const sockaddr *>(&own), sizeof own), 0)
            << address;
    }
    ~distant_client() { close(descriptor); }
    distant_client(const distant_client &) = delete;
    distant_client &operator=(const distant_client &) = delete;

    void send(const std::string &text, int port = PARA_SERVER_PORT) const
    {
        const std::string request = swap_quotes(text, '\'', '"');
        const sockaddr_in server = sender_of("127.0.0.1", port);
        EXPECT_EQ(sendto(descriptor, request.data(), request.size(), 0,
                         reinterpret_cast<const sockaddr *>(&server), sizeof server),
                  static_cast<ssize_t>(request.size()));
    }

    // The bytes of the next answer; 0 when none comes in that time.
    size_t receive(int timeout_ms) const
    {
        pollfd readable = {descriptor, POLLIN, 0};
        if (poll(&readable, 1, timeout_ms) != 1)
            return 0;
        std::string answer(65536, '\0');
        const ssize_t length = recv(descriptor, answer.data(), answer.size(), 0);
        return length > 0 ? static_cast<size_t>(length) : 0;
    }

private:
    int descriptor;
};

class HostFilter : public HostProcess {
protected:
    HostFilter()
    {
        if (other_address().empty())
            add_address("10.98.0.1");
        address = other_address();
        EXPECT_NE(address, "");
    }

    // Sends requests as fast as they are taken. Returns answers and their bytes.
    static std::pair<int, size_t> flood(const distant_client &from, const std::string &request,
                                        int count)
    {
        std::pair<int, size_t> result{0, 0};
        const auto take = [&result](size_t bytes) {
            result.first += bytes > 0 ? 1 : 0;
            result.second += bytes;
            return bytes > 0;
        };
        for (int i = 0; i < count; i++) {
            from.send(request);
            take(from.receive(0));
        }
        while (take(from.receive(300)))
            continue;
        return result;
    }

    bool is_answered_here() const
    {
        return Client().ask("{'msg_type':'get','af':['zoom_value']}") == "{'af':{'zoom_value':0}}";
    }

    std::string address;
};

const char *const small_request = "{'msg_type':'get','af':['zoom_value']}";

TEST_F(HostFilter, ServesTheNetworksOfItsInterfaces)
{
    start_host();
    const distant_client client(address);
    client.send(small_request);
    EXPECT_GT(client.receive(20000), 0U);
}

TEST_F(HostFilter, ServesNobodyElseThanToldAndThisMachine)
{
    start_host({"--allow", "192.0.2.0/24", "198.51.100.1"});
    const distant_client client(address);
    client.send(small_request);

    EXPECT_TRUE(wait_until([&] {
        return host_has_logged("camparamd: datagrams dropped: 1 from other networks (last " +
                               address + ")\n");
    })) << host->errors();
    EXPECT_EQ(client.receive(0), 0U);
    EXPECT_TRUE(is_answered_here());
    EXPECT_EQ(end_host(SIGTERM), 0);

    start_host({"--allow", "192.0.2.0/24", address});
    client.send(small_request);
    EXPECT_GT(client.receive(20000), 0U);
}

TEST_F(HostFilter, AnswersAFloodWithinItsRate)
{
    start_host({"--requests-per-second", "20"});
    const distant_client client(address);
    const auto [answers, bytes] = flood(client, small_request, 1000);

    EXPECT_GE(answers, 20);
    EXPECT_LT(answers, 500) << "20, and 20 more for each second";
    EXPECT_TRUE(
        wait_until([&] { return host_has_logged(" over the rate (last " + address + ")"); }));
    EXPECT_TRUE(is_answered_here());
}

TEST_F(HostFilter, SendsASourceSoManyBytes)
{
    write_long_conf_files();
    start_host({"--reply-bytes-per-second", "50000"});
    const distant_client client(address);
    const auto [answers, bytes] = flood(client, "{'msg_type':'get','netport':['all']}", 400);

    EXPECT_GE(bytes, 50000U);
    EXPECT_LT(answers, 100) << bytes;
}

TEST_F(HostFilter, HasNoRateForThisMachine)
{
    start_host({"--requests-per-second", "1", "--reply-bytes-per-second", "1"});
    const distant_client client("127.0.0.1");
    for (int i = 0; i < 100; i++) {
        client.send(small_request);
        EXPECT_GT(client.receive(20000), 0U);
    }
}

TEST_F(HostFilter, DropsWhatComesFromAnotherServer)
{
    start_host({"--port", "6801"});
    const distant_client server("127.0.0.1", PARA_SERVER_PORT);
    server.send(small_request, 6801);

    EXPECT_TRUE(wait_until([&] {
        return host_has_logged("datagrams dropped: 1 from a server's port (last 127.0.0.1)\n");
    })) << host->errors();
    EXPECT_EQ(server.receive(0), 0U);
}

TEST_F(HostFilter, TellsOfAFloodOnceASecondAndNotLineByLine)
{
    start_host({"--allow", "192.0.2.1"});
    const distant_client client(address);
    flood(client, "rubbish", 2000);
    EXPECT_TRUE(is_answered_here());
    EXPECT_TRUE(wait_until([&] { return host_has_logged("datagrams dropped: "); }));

    const std::string log = host->errors();
    size_t lines = 0;
    for (size_t at = 0; (at = log.find("datagrams dropped: ", at)) != std::string::npos; at++)
        lines++;
    EXPECT_LT(lines, 20U) << log;
    EXPECT_FALSE(host_has_logged("cJSON_Parse err"));
}

} // namespace
