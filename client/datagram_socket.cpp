#include "client/datagram_socket.h"

#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "client/failure.h"

namespace {

using std::chrono::steady_clock;
using address_list = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

// Throws a failure that explains errno after a socket call.
[[noreturn]] void network_failure(const server_address &server)
{
    if (errno == ECONNREFUSED)
        throw failure(NO_ANSWER, "nothing listens on " + name_of(server) +
                                     "; is the host process running, is --host right?");
    throw failure(NO_ANSWER, "cannot reach " + name_of(server) + ": " + strerror(errno));
}

address_list look_up(const server_address &server)
{
    addrinfo hints = {};
    hints.ai_socktype = SOCK_DGRAM;
    addrinfo *found = nullptr;
    int error = 0;
    for (const int family : {AF_INET, AF_INET6}) { // stores have IPv4, relays may have IPv6
        hints.ai_family = family;
        error =
            getaddrinfo(server.host.c_str(), std::to_string(server.port).c_str(), &hints, &found);
        if (error == 0)
            break;
    }
    if (error != 0)
        throw failure(OTHER,
                      "cannot find the host \"" + server.host + "\": " + gai_strerror(error));
    return {found, freeaddrinfo};
}

} // namespace

datagram_socket::datagram_socket(const server_address &address)
    : datagram_socket(address, look_up(address).get())
{
}

datagram_socket::datagram_socket(const server_address &address, const addrinfo *found)
    : server(address), opened(socket(found->ai_family, SOCK_DGRAM | SOCK_CLOEXEC, 0))
{
    if (number() < 0)
        network_failure(server);
    // A connected socket drops datagrams from elsewhere, and reports a closed port.
    if (connect(number(), found->ai_addr, found->ai_addrlen) != 0)
        network_failure(server);
}

void datagram_socket::send(const std::string &bytes) const
{
    if (::send(number(), bytes.data(), bytes.size(), 0) < 0)
        network_failure(server);
}

std::optional<std::string> datagram_socket::receive(steady_clock::time_point until) const
{
    while (wait(until)) {
        std::string bytes(65536, '\0');
        const ssize_t length = recv(number(), bytes.data(), bytes.size(), MSG_DONTWAIT);
        if (length >= 0) {
            bytes.resize(static_cast<size_t>(length));
            return bytes;
        }
        // One with a wrong checksum wakes the wait, and is dropped.
        if (errno != EAGAIN && errno != EINTR)
            network_failure(server);
    }
    return std::nullopt;
}

sockaddr_in datagram_socket::peer() const
{
    sockaddr_in address = {};
    socklen_t length = sizeof address;
    if (getpeername(number(), reinterpret_cast<sockaddr *>(&address), &length) != 0)
        network_failure(server);
    if (address.sin_family != AF_INET)
        throw failure(OTHER, "\"" + server.host + "\" has no address of IPv4");
    return address;
}

bool datagram_socket::wait(steady_clock::time_point until) const
{
    while (true) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(until - steady_clock::now()).count();
        pollfd readable = {number(), POLLIN, 0};
        const int ready = poll(&readable, 1, static_cast<int>(left > 0 ? left : 0));
        if (ready > 0)
            return true;
        if (ready < 0 && errno != EINTR)
            network_failure(server);
        if (ready == 0)
            return false;
    }
}
