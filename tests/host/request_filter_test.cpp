#include "request_filter.h"

#include "host/distant_client.h"
#include "host/host_process.h"

namespace {

std::vector<network> no_interfaces()
{
    return {};
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

class HostFilter : public HostProcess {
protected:
    HostFilter()
    {
        address = distant_address();
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

// Whom it does not serve then, Install.AllowedNetworksAloneAreServed tells by a neighbour.
TEST_F(HostFilter, ServesTheAddressesOfThisMachineWhateverIsAllowed)
{
    start_host({"--allow", "192.0.2.0/24", "198.51.100.1"});
    const distant_client client(address);
    client.send(small_request);
    EXPECT_GT(client.receive(20000), 0U);
    EXPECT_TRUE(is_answered_here());
    EXPECT_FALSE(host_has_logged("datagrams dropped"));
}

TEST_F(HostFilter, HasARateForAddressesOfThisMachineOutsideTheLoopbackNetwork)
{
    start_host({"--allow", "192.0.2.0/24", "--requests-per-second", "1"});
    flood(distant_client(address), small_request, 50);
    EXPECT_TRUE(
        wait_until([&] { return host_has_logged(" over the rate (last " + address + ")"); }));
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
    start_host({"--requests-per-second", "1"});
    const distant_client client(address);
    flood(client, "rubbish", 2000);
    EXPECT_TRUE(is_answered_here());
    EXPECT_TRUE(wait_until([&] { return host_has_logged("datagrams dropped: "); }));

    const std::string log = host->errors();
    size_t lines = 0;
    for (size_t at = 0; (at = log.find("datagrams dropped: ", at)) != std::string::npos; at++)
        lines++;
    EXPECT_LT(lines, 20U) << log;
    size_t parsed = 0;
    for (size_t at = 0; (at = log.find("cJSON_Parse err", at)) != std::string::npos; at++)
        parsed++;
    EXPECT_LT(parsed, 20U) << log;
}

} // namespace
