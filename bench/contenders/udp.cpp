#include "bench/contenders/udp.h"

#include <arpa/inet.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cjson/cJSON.h>

#include <utility>

#include "bench/support/device.h"
#include "bench/support/floor.h"
#include "camparam/command.h"

namespace {

sockaddr_in loopback(int port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(port));
    return address;
}

// Of all addresses, as the store's is.
int bound_socket(int &port)
{
    const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    socklen_t size = sizeof address;
    if (bind(descriptor, reinterpret_cast<sockaddr *>(&address), size) != 0 ||
        getsockname(descriptor, reinterpret_cast<sockaddr *>(&address), &size) != 0)
        give_up("UDP socket");
    port = ntohs(address.sin_port);
    return descriptor;
}

} // namespace

udp_client::udp_client(int port) : descriptor(socket(AF_INET, SOCK_DGRAM, 0))
{
    const sockaddr_in server = loopback(port);
    const timeval limit = {5, 0};
    setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    if (connect(descriptor, reinterpret_cast<const sockaddr *>(&server), sizeof server) != 0)
        give_up("connect");
    received.reserve(4096);
}

udp_client::~udp_client()
{
    close(descriptor);
}

bool udp_client::tries_to_exchange(const std::string &request)
{
    char text[4096];
    send(descriptor, request.data(), request.size(), 0);
    const ssize_t length = recv(descriptor, text, sizeof text, 0);
    if (length >= 0)
        received.assign(text, static_cast<size_t>(length));
    return length >= 0;
}

void udp_client::exchange(const std::string &request)
{
    if (!tries_to_exchange(request))
        give_up("no reply");
}

udp_server::udp_server(reply_function reply)
    : make_reply(std::move(reply)), descriptor(bound_socket(own_port)), thread([this] { serve(); })
{
}

udp_server::~udp_server()
{
    stopping = true;
    thread.join();
    close(descriptor);
}

void udp_server::serve()
{
    char text[PARA_MESSAGE_MAX + 1];
    fd_set watched;
    FD_ZERO(&watched);
    FD_SET(descriptor, &watched);
    while (!stopping) {
        fd_set readable = watched;
        timeval turn = {0, 100000};
        if (select(descriptor + 1, &readable, nullptr, nullptr, &turn) <= 0)
            continue;
        sockaddr_in sender = {};
        socklen_t size = sizeof sender;
        auto *const address = reinterpret_cast<sockaddr *>(&sender);
        const ssize_t length =
            recvfrom(descriptor, text, sizeof text - 1, MSG_DONTWAIT, address, &size);
        if (length <= 0)
            continue;
        text[length] = '\0';
        const std::string_view reply = make_reply(text);
        sendto(descriptor, reply.data(), reply.size(), MSG_DONTWAIT, address, size);
    }
}

namespace {

class udp_contender : public contender {
public:
    udp_contender(std::string name, int port) : own_name(std::move(name)), client(port) {}

    std::string name() const override { return own_name; }

    void prepare(const request_kind &kind, const std::string &reply) override
    {
        requests = kind.requests;
        for (const std::string &request : requests) {
            client.exchange(request);
            if (client.reply() != reply)
                give_up(own_name + " replies something else");
        }
    }

    void ask(size_t turn) override { client.exchange(requests[turn % requests.size()]); }

private:
    std::string own_name;
    std::vector<std::string> requests;
    udp_client client;
};

// Its replies are those of the store.
class own_server : public contender {
public:
    own_server(const char *name, udp_server::reply_function reply)
        : server(std::move(reply)), client(name, server.port())
    {
    }

    std::string name() const override { return client.name(); }
    void ask(size_t turn) override { client.ask(turn); }

protected:
    udp_server server;
    udp_contender client;
};

class echo final : public own_server {
public:
    echo() : own_server("bare echo", [this](const char *) { return std::string_view(text); }) {}

    void prepare(const request_kind &kind, const std::string &reply) override
    {
        text = reply; // between requests: the server waits
        client.prepare(kind, reply);
    }

private:
    std::string text;
};

class floor_server final : public own_server {
public:
    floor_server()
        : own_server("cJSON floor", [this](const char *request) {
              printed.reset(floor->answer(request));
              return std::string_view(printed.get());
          })
    {
    }

    void prepare(const request_kind &kind, const std::string &reply) override
    {
        floor = std::make_unique<json_floor>(reply);
        client.prepare(kind, reply);
    }

private:
    struct printed_delete {
        void operator()(char *text) const { cJSON_free(text); }
    };
    std::unique_ptr<json_floor> floor;
    std::unique_ptr<char, printed_delete> printed;
};

class parser final : public own_server {
public:
    parser()
        : own_server("parses only", [this](const char *request) {
              return std::string_view(copy.data(), floor->answer(request, copy.data()));
          })
    {
    }

    void prepare(const request_kind &kind, const std::string &reply) override
    {
        floor = std::make_unique<parse_floor>(reply);
        copy.resize(reply.size());
        client.prepare(kind, reply);
    }

private:
    std::unique_ptr<parse_floor> floor;
    std::string copy;
};

} // namespace

std::unique_ptr<contender> store_on(int port)
{
    return std::make_unique<udp_contender>("store", port);
}

std::unique_ptr<contender> bare_echo()
{
    return std::make_unique<echo>();
}

std::unique_ptr<contender> cjson_floor()
{
    return std::make_unique<floor_server>();
}

std::unique_ptr<contender> parsing_floor()
{
    return std::make_unique<parser>();
}
