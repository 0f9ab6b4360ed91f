#include "networks.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>

#include <algorithm>
#include <charconv>
#include <limits>

// The length of a prefix; nothing when the text is no number from 0 to 32.
static std::optional<unsigned> parse_length(const std::string &text)
{
    unsigned length = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, length);
    if (error != std::errc() || stop != end || length > 32)
        return std::nullopt;
    return length;
}

std::optional<network> parse_network(const std::string &text)
{
    const size_t slash = text.find('/');
    in_addr address = {};
    if (inet_pton(AF_INET, text.substr(0, slash).c_str(), &address) != 1)
        return std::nullopt;
    const std::optional<unsigned> length =
        slash == std::string::npos ? 32 : parse_length(text.substr(slash + 1));
    if (!length)
        return std::nullopt;
    const uint32_t mask = *length == 0 ? 0 : 0xffffffffU << (32 - *length);
    return network{.address = ntohl(address.s_addr) & mask, .mask = mask};
}

static uint32_t address_of(const sockaddr *from)
{
    return ntohl(reinterpret_cast<const sockaddr_in *>(from)->sin_addr.s_addr);
}

std::vector<network> interface_networks()
{
    std::vector<network> networks;
    ifaddrs *all = nullptr;
    if (getifaddrs(&all) != 0)
        return networks;
    for (const ifaddrs *each = all; each != nullptr; each = each->ifa_next) {
        if (each->ifa_addr == nullptr || each->ifa_addr->sa_family != AF_INET ||
            each->ifa_netmask == nullptr)
            continue;
        networks.push_back(
            {.address = address_of(each->ifa_addr), .mask = address_of(each->ifa_netmask)});
    }
    freeifaddrs(all);
    return networks;
}

allowed_networks::allowed_networks(std::vector<network> networks, source of_interfaces)
    : given(std::move(networks)), interfaces_now(of_interfaces),
      next_refresh_ms(std::numeric_limits<long long>::min())
{
}

bool allowed_networks::is_listed(uint32_t address) const
{
    return std::any_of(given.begin(), given.end(),
                       [&](const network &each) { return each.has(address); }) ||
           std::any_of(interfaces.begin(), interfaces.end(), [&](const network &each) {
               return given.empty() ? each.has(address) : each.address == address;
           });
}

bool allowed_networks::has(uint32_t address, long long now_ms)
{
    if (loopback_network.has(address) || is_listed(address))
        return true;
    if (now_ms < next_refresh_ms)
        return false;
    next_refresh_ms = now_ms + 1000;
    interfaces = interfaces_now();
    return is_listed(address);
}
