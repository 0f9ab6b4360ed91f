#include "fuzz/support/endpoint.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "base/observer.h"
#include "camparam/command.h"
#include "fuzz/support/target.h"
#include "share/datagram.h"

static int open_socket()
{
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in any_port = {};
    any_port.sin_family = AF_INET;
    any_port.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const auto *const address = reinterpret_cast<const sockaddr *>(&any_port);
    require(bind(descriptor, address, sizeof any_port) == 0, "no socket on the loopback interface");
    return descriptor;
}

endpoint::endpoint() : server_socket(open_socket()), socket(open_socket())
{
    socklen_t size = sizeof own_address;
    getsockname(socket, reinterpret_cast<sockaddr *>(&own_address), &size);
}

endpoint::~endpoint()
{
    close(server_socket);
    close(socket);
}

std::optional<std::string> endpoint::receive()
{
    static char bytes[65536];
    const ssize_t length = recv(socket, bytes, sizeof bytes, MSG_DONTWAIT);
    if (length < 0)
        return std::nullopt;
    return std::string(bytes, static_cast<size_t>(length));
}

std::optional<std::string> endpoint::ask(const std::string &datagram)
{
    para_message message = {};
    const size_t length = std::min(datagram.size(), sizeof message.text - 1);
    memcpy(message.text, datagram.data(), length);
    message.socket = server_socket;
    message.sender = own_address;
    message.sender_length = sizeof own_address;
    const request_scope scope(&message.sender);
    if (!take_share_datagram(message.text, static_cast<ssize_t>(length)))
        para_server_message_Process(&message);
    std::optional<std::string> reply = receive();
    require(!receive(), "two replies to one datagram");
    return reply;
}
