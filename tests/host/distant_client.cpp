#include "host/distant_client.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

#include "support/json_text.h"

sockaddr_in sender_of(const char *address, int port)
{
    sockaddr_in sender = {};
    sender.sin_family = AF_INET;
    sender.sin_port = htons(static_cast<in_port_t>(port));
    EXPECT_EQ(inet_pton(AF_INET, address, &sender.sin_addr), 1);
    return sender;
}

namespace {

bool is_loopback(const in_addr &address)
{
    return ntohl(address.s_addr) >> 24 == IN_LOOPBACKNET;
}

void add_address(const char *address)
{
    ifreq request = {};
    strncpy(request.ifr_name, "lo:1", sizeof request.ifr_name - 1);
    const sockaddr_in with_address = sender_of(address, 0);
    memcpy(&request.ifr_addr, &with_address, sizeof with_address);
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ioctl(descriptor, SIOCSIFADDR, &request);
    close(descriptor);
}

std::string other_address()
{
    std::string found;
    ifaddrs *all = nullptr;
    EXPECT_EQ(getifaddrs(&all), 0);
    for (const ifaddrs *each = all; each != nullptr; each = each->ifa_next) {
        if (each->ifa_addr == nullptr || each->ifa_addr->sa_family != AF_INET)
            continue;
        const auto *const address = reinterpret_cast<const sockaddr_in *>(each->ifa_addr);
        if (is_loopback(address->sin_addr))
            continue;
        char text[INET_ADDRSTRLEN];
        found = inet_ntop(AF_INET, &address->sin_addr, text, sizeof text);
    }
    freeifaddrs(all);
    return found;
}

} // namespace

std::string distant_address()
{
    if (other_address().empty())
        add_address("10.98.0.1");
    return other_address();
}

distant_client::distant_client(const std::string &address, int port)
    : descriptor(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0))
{
    const sockaddr_in own = sender_of(address.c_str(), port);
    EXPECT_EQ(bind(descriptor, reinterpret_cast<const sockaddr *>(&own), sizeof own), 0) << address;
}

distant_client::~distant_client()
{
    close(descriptor);
}

static void send_request(int descriptor, const sockaddr_in &server, const std::string &text)
{
    const std::string request = swap_quotes(text, '\'', '"');
    EXPECT_EQ(sendto(descriptor, request.data(), request.size(), 0,
                     reinterpret_cast<const sockaddr *>(&server), sizeof server),
              static_cast<ssize_t>(request.size()));
}

void distant_client::send(const std::string &text, int port) const
{
    send_request(descriptor, sender_of("127.0.0.1", port), text);
}

void distant_client::send_to(const std::string &address, int port, const std::string &text) const
{
    send_request(descriptor, sender_of(address.c_str(), port), text);
}

size_t distant_client::receive(int timeout_ms) const
{
    pollfd readable = {descriptor, POLLIN, 0};
    if (poll(&readable, 1, timeout_ms) != 1)
        return 0;
    std::string answer(65536, '\0');
    const ssize_t length = recv(descriptor, answer.data(), answer.size(), 0);
    return length > 0 ? static_cast<size_t>(length) : 0;
}
