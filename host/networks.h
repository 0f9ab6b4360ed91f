// Sets of IPv4 networks. Addresses are in host order.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct network {
    uint32_t address;
    uint32_t mask;

    bool has(uint32_t host) const { return ((host ^ address) & mask) == 0; }
};

inline constexpr network loopback_network = {.address = 0x7f000000, .mask = 0xff000000};

// "192.168.1.0/24", or an address alone; bits behind the length are ignored. Nothing for another
// text.
std::optional<network> parse_network(const std::string &text);

// The networks of the machine's interfaces, as they are now; each by the interface's own address.
std::vector<network> interface_networks();

// Which addresses are served: this machine's, that is the loopback network and the interfaces' own,
// and either the networks that are given or those of the interfaces. Not for several threads at
// once.
class allowed_networks {
public:
    using source = std::vector<network> (*)();

    // Without networks: those of the interfaces, which the source gives.
    explicit allowed_networks(std::vector<network> networks,
                              source of_interfaces = interface_networks);

    // Interfaces come and go: when an address is not allowed by those that are known they are asked
    // for anew, once a second at the most.
    bool has(uint32_t address, long long now_ms);

private:
    bool is_listed(uint32_t address) const;

    const std::vector<network> given;
    std::vector<network> interfaces;
    const source interfaces_now;
    long long next_refresh_ms;
};
