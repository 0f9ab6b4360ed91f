// Servers and clients that exchange datagrams on the loopback interface.
#pragma once

#include <netinet/in.h>

#include <atomic>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

#include "bench/contenders/contender.h"

class udp_client {
public:
    explicit udp_client(int port);
    ~udp_client();
    udp_client(const udp_client &) = delete;
    udp_client &operator=(const udp_client &) = delete;

    void exchange(const std::string &request);
    bool tries_to_exchange(const std::string &request); // false: there is no reply
    const std::string &reply() const { return received; }

private:
    int descriptor;
    std::string received;
};

// A thread that waits as the store does, 100 ms at most, and replies to each datagram what the
// function makes of it.
class udp_server {
public:
    // What it returns stays until it is called again.
    using reply_function = std::function<std::string_view(const char *request)>;
    explicit udp_server(reply_function reply);
    ~udp_server();
    udp_server(const udp_server &) = delete;
    udp_server &operator=(const udp_server &) = delete;

    int port() const { return own_port; }

private:
    void serve();

    reply_function make_reply;
    int descriptor;
    int own_port;
    std::atomic<bool> stopping{false};
    std::thread thread;
};
