// The host's filter of received datagrams.
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cstring>
#include <future>
#include <mutex>
#include <string>
#include <vector>

#include "camparam/guard.h"
#include "camparam/share.h"
#include "support/store.h"

namespace {

struct asked_datagram {
    sockaddr_in sender;
    std::string bytes;
    std::string thread;
};

struct {
    std::mutex lock;
    std::vector<asked_datagram> all;
} asked_about;

// Refuses what begins with an exclamation mark.
int refuse_shouting(const sockaddr_in *sender, const char *datagram, int length)
{
    char name[16] = "";
    pthread_getname_np(pthread_self(), name, sizeof name);
    const std::lock_guard<std::mutex> guard(asked_about.lock);
    asked_about.all.push_back({*sender, std::string(datagram, static_cast<size_t>(length)), name});
    return length > 0 && datagram[0] == '!' ? 0 : -1;
}

int refuse_share_datagrams(const sockaddr_in *, const char *, int length)
{
    return length == sizeof(para_share_datagram) ? 0 : 1;
}

std::promise<void> gate;

// Holds the store's thread at the first datagram until the gate is open.
int refuse_shouting_behind_the_gate(const sockaddr_in *, const char *datagram, int)
{
    static const std::future<void> opened = gate.get_future();
    opened.wait();
    return datagram[0] != '!';
}

std::atomic<int> clock_reads{0}; // by the store's thread

void count_clock_reads()
{
    char name[16] = "";
    pthread_getname_np(pthread_self(), name, sizeof name);
    clock_reads += strcmp(name, "Para_Process") == 0 ? 1 : 0;
}

std::atomic<int> share_datagrams_taken{0};

int count_share_datagram(const para_share_datagram *)
{
    share_datagrams_taken++;
    return 0;
}

} // namespace

class RequestFilter : public Store {
protected:
    RequestFilter()
    {
        start_store();
        forget_traces();
    }

    ~RequestFilter() override
    {
        stop_store();
        register_request_filter(nullptr);
        register_share_datagram_handler(nullptr);
    }

    static std::vector<asked_datagram> asked()
    {
        const std::lock_guard<std::mutex> guard(asked_about.lock);
        return asked_about.all;
    }

    static std::vector<std::string> asked_bytes()
    {
        std::vector<std::string> bytes;
        for (const asked_datagram &each : asked())
            bytes.push_back(each.bytes);
        return bytes;
    }

    Client client;
};

TEST_F(RequestFilter, IsAskedAboutEachDatagramByItsBytes)
{
    register_request_filter(refuse_shouting);
    const std::vector<std::string> sent = {"",
                                           "rubbish",
                                           std::string("a\0b", 3),
                                           std::string(76, '\0'),
                                           std::string(PARA_MESSAGE_MAX, ' '),
                                           "{\"msg_type\":\"get\",\"msg_id\":1}"};
    for (const std::string &datagram : sent)
        client.send(datagram);
    EXPECT_EQ(client.receive().value_or("none"), "{\n\t\"msg_id\":\t1\n}");
    EXPECT_EQ(asked_bytes(), sent);
}

TEST_F(RequestFilter, GetsNoMoreThanTheStoreReceives)
{
    register_request_filter(refuse_shouting);
    client.send(std::string(PARA_MESSAGE_MAX + 1, ' '));
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(asked_bytes().front(), std::string(PARA_MESSAGE_MAX, ' '));
}

TEST_F(RequestFilter, IsToldTheSender)
{
    register_request_filter(refuse_shouting);
    Client other;
    client.ask("{'msg_type':'get'}");
    other.ask("{'msg_type':'get'}");
    client.ask("{'msg_type':'get'}");
    const std::vector<asked_datagram> all = asked();
    ASSERT_EQ(all.size(), 3U);
    for (const asked_datagram &each : all) {
        EXPECT_EQ(each.sender.sin_family, AF_INET);
        EXPECT_EQ(each.sender.sin_addr.s_addr, htonl(INADDR_LOOPBACK));
    }
    EXPECT_EQ(all[0].sender.sin_port, all[2].sender.sin_port);
    EXPECT_NE(all[0].sender.sin_port, all[1].sender.sin_port);
}

TEST_F(RequestFilter, RunsOnTheStoresThread)
{
    register_request_filter(refuse_shouting);
    client.ask("{'msg_type':'get'}");
    ASSERT_EQ(asked().size(), 1U);
    EXPECT_EQ(asked().front().thread, "Para_Process");
}

TEST_F(RequestFilter, DropsSilentlyWhatItRefuses)
{
    register_request_filter(refuse_shouting);
    client.send("!{\"msg_type\":\"get\",\"msg_id\":1}");
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(asked().size(), 2U);
    for (const trace_line &line : traces())
        EXPECT_NE(line.level, 3) << line.text;
}

TEST_F(RequestFilter, IsAskedBeforeTheHandlerOfShareDatagrams)
{
    register_share_datagram_handler(count_share_datagram);
    register_request_filter(refuse_share_datagrams);
    client.send(std::string(76, '\0'));
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(share_datagrams_taken, 0);
    register_request_filter(refuse_shouting);
    client.send(std::string(76, '\0'));
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(share_datagrams_taken, 1);
}

TEST_F(RequestFilter, IsTakenAway)
{
    register_request_filter(refuse_shouting);
    client.ask("{'msg_type':'get'}");
    register_request_filter(nullptr);
    EXPECT_EQ(client.ask("{'msg_type':'get','msg_id':2}"), "{'msg_id':2}");
    EXPECT_EQ(asked().size(), 1U);
}

// While a change waits to be saved each save pass reads the clock.
TEST_F(RequestFilter, WhatItRefusesCostsNoTurnOfItsOwn)
{
    stop_clock();
    para_set_odm_int("vendor", 1);
    register_request_filter(refuse_shouting_behind_the_gate);
    for (int i = 0; i < 100; i++)
        client.send("!");
    client.send("{\"msg_type\":\"get\",\"msg_id\":1}");

    watch_clock(count_clock_reads);
    gate.set_value();
    EXPECT_NE(client.receive(), std::nullopt);
    EXPECT_LT(clock_reads, 50) << "for 100 datagrams";
    EXPECT_TRUE(wait_until([] { return clock_reads > 0; })) << "the next pass";
    watch_clock(nullptr);
}
