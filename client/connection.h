// The ways to a store, and the exchange of datagrams with a host.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "camparam/command.h"

struct server_address {
    std::string host = "127.0.0.1";
    int port = PARA_SERVER_PORT;
    double timeout_s = 1;        // for each request
    int retries = 2;             // after the first request
    bool waits_for_port = false; // a request that is refused is repeated, too, after its time
};

// Reads HOST, HOST:PORT or [ADDRESS]:PORT into the address, whose port stays if none is given.
// Throws a failure for another form.
void set_host(server_address &server, const std::string &text);

// As messages call it: "192.168.1.10 port 6800".
std::string name_of(const server_address &server);

// Throws a failure for a request that no store takes.
void check_request_size(const std::string &request);

// Sends a request, again after each timeout, and returns the first answer that fits. Each call uses
// a new socket, so that a late answer is dropped rather than taken for the next one. Throws a
// failure when no answer arrives or the request is too long.
std::string exchange(const server_address &server, const std::string &request,
                     const std::function<bool(const std::string &answer)> &fits);

// As exchange(), for a request of any length, such as one that the host shall refuse.
std::string exchange_datagrams(const server_address &server, const std::string &request,
                               const std::function<bool(const std::string &answer)> &fits);

// Sends a datagram that gets no answer. Throws a failure when it cannot be sent.
void send_datagram(const server_address &server, const std::string &bytes);

// A way to a store.
class connection {
public:
    virtual ~connection() = default;

    // Sends a request and returns the first answer that fits. Throws a failure when none comes or
    // the request is too long.
    virtual std::string exchange(const std::string &request,
                                 const std::function<bool(const std::string &answer)> &fits) = 0;

    // Sends a datagram that gets no answer.
    virtual void send(const std::string &datagram) = 0;
};

class network_connection : public connection {
public:
    explicit network_connection(server_address address) : server(std::move(address)) {}

    std::string exchange(const std::string &request,
                         const std::function<bool(const std::string &answer)> &fits) override
    {
        return ::exchange(server, request, fits);
    }
    void send(const std::string &datagram) override { send_datagram(server, datagram); }

private:
    server_address server;
};
