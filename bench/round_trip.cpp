// Measures round trips to the store next to those to other servers: a bare echo, a server that only
// parses, builds and prints with cJSON, one that only parses, a database and a message bus, where
// these are installed.
// All run on one processor, so that a round trip is the sum of the work for it, and take turns of
// 100 requests, so that a busy machine slows them alike, and what a server does after its reply
// falls into its own turn.
//
// usage: round_trip [--quick] [--own]    --own: without the database and the bus
// Exits with 2 when nothing could be measured.
#include <sched.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>

#include "bench/contenders/contender.h"
#include "bench/contenders/udp.h"
#include "bench/support/device.h"
#include "bench/support/median.h"
#include "bench/support/result.h"
#include "camparam/camparam.h"

namespace {

constexpr int store_port = 16800;
constexpr int turn_length = 100;

struct extent {
    int repetitions;
    int turns; // of each contender, for each kind of request
};

// With the threads and processes that are started from now on. Otherwise the result depends on
// whether the scheduler places a server on the client's processor or wakes an idle one for it, and
// waking takes longer than serving.
void stay_on_one_processor()
{
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(sched_getcpu(), &one);
    if (sched_setaffinity(0, sizeof one, &one) != 0)
        give_up("sched_setaffinity");
}

// Microseconds of each request of a turn.
void take_turn(contender &server, std::vector<double> &times)
{
    using clock = std::chrono::steady_clock;
    for (size_t i = 0; i < turn_length; i++) {
        const clock::time_point start = clock::now();
        server.ask(i);
        times.push_back(std::chrono::duration<double, std::micro>(clock::now() - start).count());
    }
}

// The median of each contender in each repetition.
using medians = std::vector<std::vector<double>>;

medians measure(const contenders &servers, const extent &size)
{
    medians found(servers.size());
    for (int repetition = 0; repetition < size.repetitions; repetition++) {
        medians times(servers.size());
        for (int turn = -1; turn < size.turns; turn++) { // the first one warms up
            for (size_t i = 0; i < servers.size(); i++) {
                if (turn == 0)
                    times[i].clear();
                take_turn(*servers[i], times[i]);
            }
        }
        for (size_t i = 0; i < servers.size(); i++)
            found[i].push_back(median(times[i]));
    }
    return found;
}

// The store's time over the other's, the median of the repetitions.
double ratio(const std::vector<double> &store, const std::vector<double> &other)
{
    std::vector<double> ratios;
    for (size_t i = 0; i < store.size(); i++)
        ratios.push_back(store[i] / other[i]);
    return median(ratios);
}

contenders all_contenders(bool others)
{
    contenders servers;
    servers.push_back(store_on(store_port));
    servers.push_back(bare_echo());
    servers.push_back(cjson_floor());
    servers.push_back(parsing_floor());
    for (auto make : {redis_over_tcp, redis_over_unix_socket, dbus_properties}) {
        if (std::unique_ptr<contender> server = others ? make() : nullptr)
            servers.push_back(std::move(server));
    }
    return servers;
}

std::string reply_of_store(const std::string &request)
{
    udp_client client(store_port);
    client.exchange(request);
    return client.reply();
}

void print_head(const contenders &servers)
{
    printf("%-16s", "round trip, us");
    for (const auto &server : servers)
        printf(" %12s", server->name().c_str());
    printf("\n");
}

void print_row(const request_kind &kind, const medians &found)
{
    printf("%-16s", kind.name);
    for (const std::vector<double> &times : found)
        printf(" %12.1f", median(times));
    printf("\n%-16s %12s", "  store / other", "");
    for (size_t i = 1; i < found.size(); i++)
        printf(" %12.2f", ratio(found[0], found[i]));
    printf("\n");
}

// Of the store's round trip to another server's, by kind of request; 0: none.
const std::map<std::string, std::vector<double>> goals = {
    {"cJSON floor", {0.87, 0.55, 0.35, 0.90}},
    {"Redis, TCP", {0.97, 0.85, 0.70, 0.97}},
    {"Redis, Unix", {0, 1, 1, 0}},
    {"D-Bus", {0.40, 0.40, 0.40, 0.40}},
};

void add_results(const contenders &servers, size_t kind, const medians &found)
{
    for (size_t i = 1; i < servers.size(); i++) {
        const auto goal = goals.find(servers[i]->name());
        if (goal != goals.end() && goal->second[kind] > 0)
            add_result("round trip to " + goal->first + ", " + request_kinds()[kind].name,
                       ratio(found[0], found[i]), goal->second[kind]);
    }
}

} // namespace

int main(int argc, char **argv)
{
    extent size = {.repetitions = 5, .turns = 50};
    bool others = true;
    for (int i = 1; i < argc; i++) {
        if (strcmp(argv[i], "--quick") == 0)
            size = {.repetitions = 3, .turns = 10};
        if (strcmp(argv[i], "--own") == 0)
            others = false;
    }

    stay_on_one_processor();
    const device files;
    files.start_store(store_port);
    {
        const contenders servers = all_contenders(others);
        for (const auto &server : servers)
            server->load(reply_of_store(request_kinds()[2].requests[0]));
        print_head(servers);
        for (size_t i = 0; i < request_kinds().size(); i++) {
            const request_kind &kind = request_kinds()[i];
            const std::string reply = reply_of_store(kind.requests[0]);
            for (const auto &server : servers)
                server->prepare(kind, reply);
            const medians found = measure(servers, size);
            print_row(kind, found);
            add_results(servers, i, found);
        }
    }
    platformparam_stop(1);
    return 0;
}
