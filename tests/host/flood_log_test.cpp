// What floods from this machine, which no rate limits, leave in the log.
#include <chrono>
#include <csignal>
#include <sstream>

#include "host/host_process.h"

namespace {

class FloodLog : public HostProcess {
protected:
    static constexpr int datagrams = 3000;

    FloodLog() { write_home("netport.conf", "http_port = '80'\n"); }

    template <typename function> void flood(const function &send)
    {
        const auto begin = std::chrono::steady_clock::now();
        for (int i = 0; i < datagrams; i++)
            send(i);
        seconds = static_cast<int>(std::chrono::duration_cast<std::chrono::seconds>(
                                       std::chrono::steady_clock::now() - begin)
                                       .count()) +
                  2;
    }

    // The lines with a text, and the sum of the numbers in those that count the rest.
    std::pair<int, int> lines_and_count(const std::string &text, const std::string &counting) const
    {
        int lines = 0;
        int count = 0;
        std::istringstream log(host->errors());
        for (std::string line; std::getline(log, line);) {
            const size_t counted = line.find(counting);
            if (counted != std::string::npos)
                count +=
                    std::stoi(line.substr(line.find_last_not_of("0123456789", counted - 1) + 1));
            else if (line.find(text) != std::string::npos)
                lines++;
        }
        return {lines, count};
    }

    Client client;
    int seconds = 0; // that the flood took at most
};

TEST_F(FloodLog, OfRubbishIsCounted)
{
    start_host();
    flood([this](int i) {
        client.send("rubbish");
        EXPECT_TRUE(i % 50 != 49 || client.stays_silent()); // none finds the queue full
    });
    EXPECT_EQ(end_host(SIGTERM), 0);

    const auto [lines, count] = lines_and_count("cJSON_Parse err,Rec buffer: rubbish",
                                                " more of: [para %s +%-4d]cJSON_Parse err");
    EXPECT_EQ(lines + count, datagrams);
    EXPECT_LE(lines, 50 * seconds);
}

TEST_F(FloodLog, OfChangesIsCounted)
{
    start_host();
    flood([this](int i) {
        EXPECT_EQ(
            client.ask("{'msg_type':'set','netport':{'http_port':'" + std::to_string(i) + "'}}"),
            "{}");
    });
    EXPECT_EQ(client.ask("{'msg_type':'get','netport':['http_port']}"),
              "{'netport':{'http_port':'2999'}}");
    EXPECT_EQ(end_host(SIGTERM), 0);

    const auto [lines, count] = lines_and_count("conf_update: netport", " more changes");
    EXPECT_EQ(lines + count, datagrams);
    EXPECT_LE(lines, 100 * seconds);
}

} // namespace
