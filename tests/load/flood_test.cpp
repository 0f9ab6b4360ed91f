// Floods from another address with an honest client beside, and requests without end.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "host/distant_client.h"
#include "host/host_process.h"

// Not the usual one, which the datagrams that are fed back come from.
constexpr int server_port = 6801;

// What answers a save, which starts the thread that flushes the file systems.
static const char *const saved = "{'msg_name':'save'}";

using clock_type = std::chrono::steady_clock;

struct flood_kind {
    const char *name;
    std::string datagram;
    int from_port = 0;
};

static std::ostream &operator<<(std::ostream &stream, const flood_kind &kind)
{
    return stream << kind.name;
}

namespace {

const std::vector<flood_kind> floods = {
    {"Rubbish", std::string(1400, 'x')},
    {"Nothing", ""},
    {"Get", "{'msg_type':'get','isp0':['all']}"},
    {"Describe", "{'msg_type':'api_get','msg_name':'describe'}"},
    {"Set", "{'msg_type':'set','audio':{'volLeftIn':50}}"},
    {"Save", "{'msg_type':'api_set','msg_name':'save'}"},
    {"Share", std::string(76, '\0')},
    {"Deep", std::string(4000, '[')},
    {"FedBack", "{'msg_type':'get','af':['all']}", PARA_SERVER_PORT},
};

// Sanitizers keep freed memory for a while.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr long most_growth_kb = 400000;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr long most_growth_kb = 400000;
#else
constexpr long most_growth_kb = 2048;
#endif
#else
constexpr long most_growth_kb = 2048;
#endif

// 1 s, or as many as the environment variable CAMPARAM_PROOF_FLOOD_SECONDS says.
std::chrono::seconds flood_duration()
{
    const char *const chosen = getenv("CAMPARAM_PROOF_FLOOD_SECONDS");
    return std::chrono::seconds(chosen != nullptr ? atoi(chosen) : 1);
}

// 20 ms in the proof; a loaded machine takes what it takes.
std::chrono::milliseconds allowed_latency()
{
    const char *const chosen = getenv("CAMPARAM_PROOF_P99_MS");
    return std::chrono::milliseconds(chosen != nullptr ? atoi(chosen) : 5000);
}

// The environment variable CAMPARAM_PROOF_NO_GUARD takes the guard away: what that costs is told,
// and not judged.
bool is_guarded()
{
    return getenv("CAMPARAM_PROOF_NO_GUARD") == nullptr;
}

std::vector<std::string> host_options()
{
    std::vector<std::string> options = {"--trace", "0", "--port", std::to_string(server_port)};
    if (!is_guarded())
        options.emplace_back("--no-guard");
    return options;
}

} // namespace

class HostUnderLoad : public HostProcess {
protected:
    HostUnderLoad() { home = SAMPLE_HOME; }

    // A line of /proc/<pid>/status, in its own unit.
    long from_status(const std::string &key) const
    {
        std::ifstream status("/proc/" + std::to_string(host->pid()) + "/status");
        for (std::string line; std::getline(status, line);) {
            if (line.rfind(key + ":", 0) == 0)
                return strtol(line.c_str() + key.size() + 1, nullptr, 10);
        }
        ADD_FAILURE() << key;
        return -1;
    }
    long open_files() const
    {
        const std::filesystem::directory_iterator files("/proc/" + std::to_string(host->pid()) +
                                                        "/fd");
        return std::distance(begin(files), end(files));
    }

    struct honest_answers {
        std::vector<clock_type::duration> times; // sorted
        int missing = 0;
    };

    // Asks until the time is over.
    static honest_answers ask_for(std::chrono::seconds duration)
    {
        const int timeout_ms = is_guarded() ? 20000 : 100;
        const std::string request = "{\"msg_type\":\"get\",\"af\":[\"zoom_value\"]}";
        honest_answers result;
        Client honest(server_port);
        const auto end = clock_type::now() + duration;
        while (clock_type::now() < end) {
            const auto asked = clock_type::now();
            honest.send(request);
            const auto answer = honest.receive(timeout_ms);
            if (!answer) {
                result.missing++;
                continue;
            }
            EXPECT_NE(answer->find("zoom_value"), std::string::npos) << *answer;
            result.times.push_back(clock_type::now() - asked);
        }
        std::sort(result.times.begin(), result.times.end());
        return result;
    }
};

class HostInAFlood : public HostUnderLoad, public testing::WithParamInterface<flood_kind> {};
INSTANTIATE_TEST_SUITE_P(, HostInAFlood, testing::ValuesIn(floods),
                         [](const auto &flood) { return std::string(flood.param.name); });

TEST_P(HostInAFlood, AnswersAnHonestClientAndKeepsItsSize)
{
    const std::string address = distant_address();
    ASSERT_NE(address, "");
    start_host(host_options());
    EXPECT_EQ(Client(server_port).ask("{'msg_type':'api_set','msg_name':'save'}"), saved);
    ask_for(std::chrono::seconds(1));
    const long memory = from_status("VmRSS"), threads = from_status("Threads");

    std::atomic<bool> over{false};
    std::atomic<long> sent{0};
    std::thread flooder([&] {
        const distant_client source(address, GetParam().from_port);
        for (; !over; sent++) {
            source.send_to(address, server_port, GetParam().datagram);
            source.receive(0);
        }
    });
    const auto [times, missing] = ask_for(flood_duration());
    over = true;
    flooder.join();

    ASSERT_FALSE(times.empty());
    const auto late = times[times.size() * 99 / 100];
    std::cout << sent << " datagrams; honest answers " << times.size() << ", missing " << missing
              << ", 99 % within " << std::chrono::duration<double, std::milli>(late).count()
              << " ms; memory +" << from_status("VmRSS") - memory << " kB\n";
    EXPECT_GT(sent, 100);
    if (is_guarded()) {
        EXPECT_EQ(missing, 0);
        EXPECT_LT(late, allowed_latency());
    }
    EXPECT_LT(from_status("VmRSS"), memory + most_growth_kb) << "kB";
    EXPECT_EQ(from_status("Threads"), threads);
    EXPECT_EQ(end_host(SIGTERM), 0);
}

// 20,000 requests, or as many as the environment variable CAMPARAM_PROOF_REQUESTS says.
static long request_count()
{
    const char *const chosen = getenv("CAMPARAM_PROOF_REQUESTS");
    return chosen != nullptr ? atol(chosen) : 20000;
}

TEST_F(HostUnderLoad, KeepsItsSizeOverManyMixedRequests)
{
    start_host(host_options());
    Client client(server_port);
    const auto ask_all = [&client](long turn) {
        const std::string number = std::to_string(turn % 100);
        client.ask("{'msg_type':'set','audio':{'volLeftIn':" + number + "}}");
        client.ask("{'msg_type':'get','isp0':['all'],'video0':['all'],'misc':['all']}");
        client.ask("{'msg_type':'get','isp0_def':['hue'],'netport':['all']}");
        client.ask("{'msg_type':'set','netport':{'http_port':'" + number + "'}}");
        client.ask("{'msg_type':'api_get','msg_name':'style'}");
        client.ask("{'msg_type':'api_get','msg_name':'nonsense'}");
        client.ask("{'msg_type':'get','msg_from':'www','image':['hue']}");
        client.send("rubbish");
    };
    for (long turn = 0; turn < 200; turn++)
        ask_all(turn);
    const long memory = from_status("VmRSS"), threads = from_status("Threads"),
               files = open_files();
    for (long turn = 0; turn < request_count() / 8; turn++)
        ask_all(turn);
    std::cout << request_count() << " requests; memory +" << from_status("VmRSS") - memory
              << " kB\n";
    EXPECT_LT(from_status("VmRSS"), memory + most_growth_kb) << "kB";
    EXPECT_EQ(from_status("Threads"), threads);
    EXPECT_EQ(open_files(), files);
    EXPECT_EQ(end_host(SIGTERM), 0);
}
