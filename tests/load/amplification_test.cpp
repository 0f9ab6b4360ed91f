// How many bytes of reply a byte of request fetches, on the sample device.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "host/distant_client.h"
#include "host/host_process.h"

namespace {

constexpr int host_port = 6801;

struct request_kind {
    std::string name; // in the table of docs/security.md
    std::string text;
    bool is_command = false; // of camparamd alone
};

std::string repeated(const std::string &text, int times)
{
    std::string all;
    for (int i = 0; i < times; i++)
        all += text;
    return all;
}

// The shortest requests of their kind.
std::vector<request_kind> request_kinds()
{
    return {
        {"an empty datagram", ""},
        {"a text that is no JSON", std::string(100, 'x')},
        {"a share datagram", std::string(76, '\0')},
        {"set a member", "{'msg_type':'s','af':{'zoom_value':5}}"},
        {"get a member", "{'msg_type':'','af':['zoom_value']}"},
        {"get a module", "{'msg_type':'','isp0':['all']}"},
        {"get four modules",
         "{'msg_type':'','isp0':['all'],'video0':['all'],'audio':['all'],'misc':['all']}"},
        {"get a module 40 times", "{'msg_type':''" + repeated(",'isp0':['all']", 40) + "}"},
        {"get a web page", "{'msg_type':'get','msg_from':'www','msg_name':'system'}"},
        {"the command \"style\"", "{'msg_type':'sget','msg_name':'style'}", true},
        {"the command \"lens\"", "{'msg_type':'sget','msg_name':'lens'}", true},
        {"the command \"save\"", "{'msg_type':'sset','msg_name':'save'}", true},
        {"the command \"describe\"", "{'msg_type':'sget','msg_name':'describe'}", true},
        {"the command \"changes\"", "{'msg_type':'sget','msg_name':'changes'}", true},
        {"the command \"confirm\"", "{'msg_type':'sget','msg_name':'confirm'}", true},
        {"the command \"log\"", "{'msg_type':'sget','msg_name':'log'}", true},
        {"the command \"status\"", "{'msg_type':'sget','msg_name':'status'}", true},
        {"an unknown command", "{'msg_type':'sget','msg_name':'x'}", true},
        {"a command without a name", "{'msg_type':'sget'}"},
    };
}

struct measured_kind {
    std::string name;
    size_t request, reply;

    double factor() const
    {
        return request == 0 ? 0 : static_cast<double>(reply) / static_cast<double>(request);
    }
};

void print(const std::string &server, const measured_kind &measured)
{
    printf("amplification, %s: %-24s %5zu bytes -> %6zu bytes, factor %.1f\n", server.c_str(),
           measured.name.c_str(), measured.request, measured.reply, measured.factor());
}

// The cells of the row of a kind: bytes of request and reply, factor of both.
std::vector<double> documented(const std::string &name)
{
    std::ifstream page(SECURITY_PAGE);
    for (std::string line; std::getline(page, line);) {
        if (line.rfind("| " + name + " |", 0) != 0)
            continue;
        line.erase(std::remove(line.begin(), line.end(), ','), line.end());
        std::istringstream cells(line.substr(name.size() + 5));
        std::vector<double> numbers(3);
        for (double &number : numbers) {
            char bar = 0;
            cells >> number >> bar;
        }
        return numbers;
    }
    return {};
}

void expect_documented(const measured_kind &measured)
{
    const std::vector<double> stated = documented(measured.name);
    ASSERT_EQ(stated.size(), 3U) << measured.name << " has no row in " << SECURITY_PAGE;
    EXPECT_EQ(static_cast<double>(measured.request), stated[0]) << measured.name;
    EXPECT_LE(measured.factor(), stated[2]) << measured.name;
    EXPECT_GE(measured.factor() * 1.2 + 0.1, stated[2]) << measured.name << ": far less";
}

} // namespace

class Amplification : public HostProcess {
protected:
    Amplification()
    {
        home = SAMPLE_HOME;
        set_trace_level(0);
    }

    // With a socket of its own, so that nothing else is taken for the reply. Where none is expected
    // it is the reply to a second request that comes first.
    static measured_kind measure(const std::string &from, int port, const request_kind &kind)
    {
        const distant_client client(from);
        client.send_to(from, port, kind.text);
        const std::vector<double> stated = documented(kind.name);
        const bool is_silent = stated.size() == 3 && stated[1] == 0;
        if (is_silent)
            client.send_to(from, port, "{'msg_type':'get','msg_id':1}");
        const size_t first = client.receive(20000);
        const size_t reply_to_second = strlen("{\n\t\"msg_id\":\t1\n}");
        return {kind.name, kind.text.size(), is_silent ? first - reply_to_second : first};
    }
};

// So that a page of it is full.
static void fill_log()
{
    Client client(host_port);
    for (int i = 0; i < 60; i++)
        client.ask("{'msg_type':'set','overlay':{'title':'" + std::to_string(i) + "'}}");
}

TEST_F(Amplification, OfTheStoreIsAsDocumented)
{
    start_store();
    for (const request_kind &kind : request_kinds()) {
        if (kind.is_command)
            continue;
        const measured_kind measured = measure("127.0.0.1", PARA_SERVER_PORT, kind);
        print("store", measured);
        expect_documented(measured);
    }
}

TEST_F(Amplification, OfTheHostIsAsDocumented)
{
    const std::string address = distant_address();
    ASSERT_NE(address, "");
    start_host({"--trace", "0", "--port", std::to_string(host_port)});
    fill_log();
    for (const request_kind &kind : request_kinds()) {
        const measured_kind measured = measure(address, host_port, kind);
        print("camparamd", measured);
        expect_documented(measured);
    }
    EXPECT_EQ(end_host(SIGTERM), 0);
}

// Whoever asks for most with least is sent what the default rate allows, and a reply that it owes.
TEST_F(Amplification, OfAFloodIsLimitedByTheHost)
{
    using clock = std::chrono::steady_clock;
    const std::string address = distant_address();
    ASSERT_NE(address, "");
    start_host({"--trace", "0", "--port", std::to_string(host_port)});
    const distant_client client(address);
    const std::string request = "{'msg_type':'sget','msg_name':'describe'}";
    measured_kind measured = {"describe, as fast as it can", 0, 0};
    const auto begin = clock::now();
    while (clock::now() < begin + std::chrono::seconds(2)) {
        client.send_to(address, host_port, request);
        measured.request += request.size();
        measured.reply += client.receive(0);
    }
    measured.reply += client.receive(200);
    const std::chrono::duration<double> time = clock::now() - begin;
    print("camparamd", measured);
    constexpr double per_second = 128 * 1024, largest_reply = 65507;
    EXPECT_GT(measured.reply, 0U);
    EXPECT_LE(static_cast<double>(measured.reply), per_second * (time.count() + 1) + largest_reply);
    EXPECT_EQ(end_host(SIGTERM), 0);
}
