#include "support/client.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

#include "support/json_text.h"

Client::Client(int port) : descriptor(socket(AF_INET, SOCK_DGRAM, 0))
{
    sockaddr_in server = {};
    server.sin_family = AF_INET;
    server.sin_port = htons(static_cast<uint16_t>(port));
    server.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int connected =
        connect(descriptor, reinterpret_cast<const sockaddr *>(&server), sizeof server);
    EXPECT_EQ(connected, 0);
}

Client::~Client()
{
    close(descriptor);
}

void Client::send(const std::string &datagram)
{
    const ssize_t sent = ::send(descriptor, datagram.data(), datagram.size(), 0);
    ASSERT_EQ(sent, static_cast<ssize_t>(datagram.size()));
}

std::optional<std::string> Client::receive(int timeout_ms)
{
    pollfd readable = {descriptor, POLLIN, 0};
    if (poll(&readable, 1, timeout_ms) != 1)
        return std::nullopt;
    std::string datagram(65536, '\0');
    const ssize_t length = recv(descriptor, datagram.data(), datagram.size(), 0);
    if (length < 0)
        return std::nullopt;
    datagram.resize(static_cast<size_t>(length));
    return datagram;
}

std::optional<std::string> Client::request(std::string text)
{
    send(swap_quotes(std::move(text), '\'', '"'));
    return receive();
}

std::string Client::ask(const std::string &text)
{
    const std::optional<std::string> reply = request(text);
    if (!reply)
        return "none";
    const json tree(cJSON_Parse(reply->c_str()));
    return tree != nullptr ? compact(tree.get()) : *reply;
}

bool Client::stays_silent()
{
    static int number = 0;
    const std::string mark = "silence-" + std::to_string(++number);
    const std::optional<std::string> reply =
        request("{'msg_type':'get','msg_name':'" + mark + "'}");
    return reply && reply->find(mark) != std::string::npos;
}
