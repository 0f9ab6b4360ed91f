// The main thread of camparamd rests when nothing has come for 2 s.
#include <chrono>
#include <csignal>
#include <fstream>

#include "host/host_process.h"

namespace {

class HostRest : public HostProcess {
protected:
    HostRest() { start_host(); }

    // How often the main thread has gone to sleep.
    long turns() const
    {
        std::ifstream status("/proc/" + std::to_string(host->pid()) + "/status");
        const std::string wanted = "voluntary_ctxt_switches:";
        for (std::string line; getline(status, line);) {
            if (line.compare(0, wanted.size(), wanted) == 0)
                return std::stol(line.substr(wanted.size()));
        }
        return -1;
    }

    // Returns whether it takes no turn for longer than many turns take.
    bool rests() const
    {
        long seen = -1;
        auto since = std::chrono::steady_clock::now();
        return wait_until([&] {
            const auto now = std::chrono::steady_clock::now();
            const long current = turns();
            if (current != seen)
                since = now;
            seen = current;
            return now - since > std::chrono::milliseconds(800);
        });
    }

    Client client;
};

TEST_F(HostRest, IsEndedByADatagramForTwoSecondsOfTurns)
{
    ASSERT_TRUE(rests());
    const long before = turns();
    client.ask("{'msg_type':'get','af':['zoom_value']}");
    ASSERT_TRUE(rests());
    EXPECT_GT(turns() - before, 15);
}

TEST_F(HostRest, IsEndedByASignalForTwoSecondsOfTurns)
{
    ASSERT_TRUE(rests());
    const long before = turns();
    host->send_signal(SIGHUP);
    ASSERT_TRUE(wait_until([&] { return host_has_logged("SIGHUP: rereading conf files"); }));
    ASSERT_TRUE(rests());
    EXPECT_GT(turns() - before, 15);
}

TEST_F(HostRest, LastsTenSecondsAtTheMost)
{
    ASSERT_TRUE(rests());
    const long before = turns();
    const auto since = std::chrono::steady_clock::now();
    EXPECT_TRUE(wait_until([&] { return turns() != before; }));
    EXPECT_LT(std::chrono::steady_clock::now() - since, std::chrono::seconds(11));
}

} // namespace
