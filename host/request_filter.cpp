#include "request_filter.h"

#include <arpa/inet.h>

#include <chrono>
#include <limits>
#include <memory>

#include "camparam/command.h"
#include "camparam/guard.h"
#include "log.h"
#include "signals.h"

request_filter::request_filter(const filter_rules &rules, allowed_networks::source interfaces)
    : server_port(rules.port), allowed(rules.allowed, interfaces), limit(rules.per_source),
      next_report_ms(std::numeric_limits<long long>::min())
{
}

verdict request_filter::decide(uint32_t address, int port, long long now_ms)
{
    // A server's reply that was sent on to a server would be answered, and that answer again.
    if (port == PARA_SERVER_PORT || port == server_port)
        return verdict::from_server_port;
    if (!allowed.has(address, now_ms))
        return verdict::from_other_network;
    if (loopback_network.has(address) || limit.admit(address, now_ms))
        return verdict::admitted;
    return verdict::over_rate;
}

verdict request_filter::judge(const sockaddr_in &sender, long long now_ms)
{
    const uint32_t address = ntohl(sender.sin_addr.s_addr);
    const verdict result = decide(address, ntohs(sender.sin_port), now_ms);
    if (result != verdict::admitted) {
        drop_count &count = dropped[static_cast<int>(result) - 1];
        count.last_source.store(address, std::memory_order_relaxed);
        count.datagrams.fetch_add(1, std::memory_order_relaxed);
    }
    return result;
}

void request_filter::charge(const sockaddr_in &client, int reply_bytes, long long now_ms)
{
    const uint32_t address = ntohl(client.sin_addr.s_addr);
    if (!loopback_network.has(address))
        limit.charge(address, reply_bytes, now_ms);
}

static std::string text_of(uint32_t address)
{
    const in_addr network_order = {htonl(address)};
    char text[INET_ADDRSTRLEN];
    return inet_ntop(AF_INET, &network_order, text, sizeof text) != nullptr ? text : "";
}

std::string request_filter::report(long long now_ms)
{
    if (now_ms < next_report_ms)
        return "";
    const char *const reasons[] = {"from a server's port", "from other networks", "over the rate"};
    std::string parts;
    for (int i = 0; i < 3; i++) {
        const unsigned long long datagrams =
            dropped[i].datagrams.exchange(0, std::memory_order_relaxed);
        if (datagrams == 0)
            continue;
        parts += (parts.empty() ? "" : ", ") + std::to_string(datagrams) + " " + reasons[i] +
                 " (last " + text_of(dropped[i].last_source.load(std::memory_order_relaxed)) + ")";
    }
    if (parts.empty())
        return "";
    next_report_ms = now_ms + 1000;
    return "datagrams dropped: " + parts;
}

// Fixed before the store starts.
static std::unique_ptr<request_filter> installed;

static long long now_ms()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

static int admit(const sockaddr_in *sender, const char *, int)
{
    note_datagram();
    return installed->judge(*sender, now_ms()) == verdict::admitted ? 1 : 0;
}

static void charge(const sockaddr_in *client, int length)
{
    installed->charge(*client, length, now_ms());
}

void install_request_filter(const filter_rules &rules)
{
    installed = std::make_unique<request_filter>(rules);
    register_reply_observer(charge);
    register_request_filter(admit);
}

void tell_dropped_datagrams()
{
    const std::string message = installed ? installed->report(now_ms()) : "";
    if (!message.empty())
        log_line("%s", message.c_str());
}
