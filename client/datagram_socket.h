// A UDP socket that is connected to the host.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "client/connection.h"
#include "client/descriptor.h"

struct addrinfo;
struct sockaddr_in;

class datagram_socket {
public:
    // The address must last as long as the socket. Throws a failure when the host's name is
    // unknown or the host cannot be reached.
    explicit datagram_socket(const server_address &address);

    // Throws a failure when it cannot be sent, also when an earlier one was refused.
    void send(const std::string &bytes) const;

    // The next datagram, or nothing if none arrives in time. Throws a failure as soon as the host
    // refuses one that was sent.
    std::optional<std::string> receive(std::chrono::steady_clock::time_point until) const;

    // To poll for datagrams.
    int number() const { return opened.get(); }

    // The host's address, as the socket reaches it. Throws a failure for one of IPv6.
    sockaddr_in peer() const;

private:
    datagram_socket(const server_address &address, const addrinfo *found);
    bool wait(std::chrono::steady_clock::time_point until) const;

    const server_address &server;
    descriptor opened;
};
