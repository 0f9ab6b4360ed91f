// Which datagrams the host serves: from allowed networks, within the rate of their source. What is
// dropped is counted, and told of once a second.
#pragma once

#include <netinet/in.h>

#include <atomic>
#include <string>

#include "networks.h"
#include "rate_limit.h"

struct filter_rules {
    std::vector<network> allowed; // beside this machine; empty: the networks of its interfaces
    rate per_source;              // of each source but the loopback network
    int port;                     // of the server
};

enum class verdict { admitted, from_server_port, from_other_network, over_rate };

class request_filter {
public:
    explicit request_filter(const filter_rules &rules,
                            allowed_networks::source interfaces = interface_networks);

    // Store's thread only.
    verdict judge(const sockaddr_in &sender, long long now_ms);

    // Any thread.
    void charge(const sockaddr_in &client, int reply_bytes, long long now_ms);

    // Main thread only. What was dropped since the last report, as a message; empty when nothing
    // was, or that is less than a second ago.
    std::string report(long long now_ms);

private:
    struct drop_count {
        std::atomic<unsigned long long> datagrams{0};
        std::atomic<uint32_t> last_source{0};
    };

    verdict decide(uint32_t address, int port, long long now_ms);

    const int server_port;
    allowed_networks allowed;
    rate_limit limit;
    drop_count dropped[3]; // by verdict, without the first
    long long next_report_ms;
};

// Makes the store ask a filter by these rules. Before the store starts, once.
void install_request_filter(const filter_rules &rules);

// Main thread only, a few times a second.
void tell_dropped_datagrams();
