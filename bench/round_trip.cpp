// Measures a get request for one member against a bare UDP server that waits, receives and sends in
// the same way, parses the same request and builds and prints the same reply, but can do nothing
// else. Both run on threads of this process, on one processor, and requests alternate between them,
// so that a busy machine slows them alike.
//
// usage: round_trip [ROUND_TRIPS]    at least 20000 to each server
// Exits with 1 when the store takes more than 1.3 times as long, 2 when nothing could be measured.
#include <arpa/inet.h>
#include <cjson/cJSON.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "camparam/camparam.h"

namespace {

constexpr int least_round_trips = 20000;
constexpr double highest_ratio = 1.3;
constexpr int zoom_value = 100;

const char request[] = R"({"msg_type":"get","msg_name":"bench","msg_id":7,"af":["zoom_value"]})";

[[noreturn]] void give_up(const std::string &what)
{
    fprintf(stderr, "round_trip: %s: %s\n", what.c_str(), strerror(errno));
    exit(2);
}

// Enters a new network namespace, in which the store's port is free and nobody else sends. Where
// namespaces are forbidden, stays in that of the machine.
void enter_own_network()
{
    if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0)
        return;
    ifreq loopback = {};
    strncpy(loopback.ifr_name, "lo", sizeof loopback.ifr_name - 1);
    loopback.ifr_flags = IFF_UP | IFF_RUNNING;
    const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
    if (ioctl(descriptor, SIOCSIFFLAGS, &loopback) != 0)
        give_up("loopback interface");
    close(descriptor);
}

sockaddr_in local(unsigned short port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

// A socket bound to the port; 0: any port.
int bound_socket(unsigned short port)
{
    const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
    const sockaddr_in address = local(port);
    if (bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        give_up("UDP port " + std::to_string(port));
    return descriptor;
}

unsigned short port_of(int descriptor)
{
    sockaddr_in address = {};
    socklen_t size = sizeof address;
    getsockname(descriptor, reinterpret_cast<sockaddr *>(&address), &size);
    return ntohs(address.sin_port);
}

// Pins this thread, and the threads that it creates, to one processor. Otherwise the result depends
// on whether the scheduler places a server on the client's processor or wakes an idle one for it,
// and waking takes longer than serving.
void stay_on_one_processor()
{
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(sched_getcpu(), &one);
    if (sched_setaffinity(0, sizeof one, &one) != 0)
        give_up("sched_setaffinity");
}

// The store's reply to the request, built from the parsed request.
char *bare_reply(const char *text)
{
    cJSON *const tree = cJSON_Parse(text);
    cJSON *const reply = cJSON_CreateObject();
    const cJSON *const item = cJSON_GetObjectItem(tree, "af");
    cJSON_AddStringToObject(reply, "msg_name", cJSON_GetObjectItem(tree, "msg_name")->valuestring);
    cJSON_AddNumberToObject(reply, "msg_id", cJSON_GetObjectItem(tree, "msg_id")->valueint);
    cJSON *const answer = cJSON_CreateObject();
    cJSON_AddNumberToObject(answer, cJSON_GetArrayItem(item, 0)->valuestring, zoom_value);
    cJSON_AddItemToObject(reply, "af", answer);

    char *const printed = cJSON_Print(reply);
    cJSON_Delete(reply);
    cJSON_Delete(tree);
    return printed;
}

void serve_bare(int server, const std::atomic<bool> &stop)
{
    char text[PARA_MESSAGE_MAX + 1];
    fd_set watched;
    FD_ZERO(&watched);
    FD_SET(server, &watched);

    while (!stop) {
        fd_set readable = watched;
        timeval turn = {0, 100000};
        if (select(server + 1, &readable, nullptr, nullptr, &turn) <= 0)
            continue;
        sockaddr_in sender = {};
        socklen_t size = sizeof sender;
        const ssize_t length = recvfrom(server, text, sizeof text - 1, MSG_DONTWAIT,
                                        reinterpret_cast<sockaddr *>(&sender), &size);
        if (length <= 0)
            continue;
        text[length] = '\0';
        char *const reply = bare_reply(text);
        sendto(server, reply, strlen(reply), MSG_DONTWAIT,
               reinterpret_cast<const sockaddr *>(&sender), size);
        free(reply);
    }
}

// A device folder that is removed at the end.
class device {
public:
    device()
    {
        if (mkdtemp(folder) == nullptr)
            give_up(folder);
        write("www2json.json", "{}");
        write("af_range.json", R"({"zoom_value":[0,1000]})");
        write("af_def.json", R"({"zoom_value":)" + std::to_string(zoom_value) + "}");
    }
    ~device() { std::filesystem::remove_all(folder); }

    const char *path() const { return folder; }

private:
    void write(const std::string &name, const std::string &text)
    {
        std::ofstream(std::string(folder) + "/" + name) << text;
    }

    char folder[32] = "/tmp/camparam-bench-XXXXXX";
};

void start_store(const device &files)
{
    // The store would start without a server if the port were taken.
    close(bound_socket(PARA_SERVER_PORT));
    para_profile.home_dir = files.path();
    para_profile.data_dir = files.path();
    if (platformparam_init() != 0)
        give_up("platformparam_init");
}

class client {
public:
    explicit client(unsigned short port) : descriptor(bound_socket(0))
    {
        const sockaddr_in server = local(port);
        const timeval limit = {5, 0};
        setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        if (connect(descriptor, reinterpret_cast<const sockaddr *>(&server), sizeof server) != 0)
            give_up("connect");
    }
    ~client() { close(descriptor); }

    // Sends the request, waits for the reply and records the time in microseconds.
    std::string ask()
    {
        char reply[4096];
        const auto start = std::chrono::steady_clock::now();
        send(descriptor, request, sizeof request - 1, 0);
        const ssize_t length = recv(descriptor, reply, sizeof reply, 0);
        const auto end = std::chrono::steady_clock::now();
        if (length < 0)
            give_up("no reply");
        times.push_back(std::chrono::duration<double, std::micro>(end - start).count());
        return std::string(reply, static_cast<size_t>(length));
    }

    double median()
    {
        const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
        std::nth_element(times.begin(), middle, times.end());
        return *middle;
    }

private:
    int descriptor;
    std::vector<double> times;
};

// Alternates between the servers, and in which goes first.
void measure(client &store, client &bare, int round_trips)
{
    for (int i = 0; i < round_trips; i++) {
        client &first = i % 2 == 0 ? store : bare;
        client &second = i % 2 == 0 ? bare : store;
        if (first.ask() != second.ask()) {
            fprintf(stderr, "round_trip: the two replies differ\n");
            exit(2);
        }
    }
}

// Returns the store's median time over the bare server's.
double report(client &store, client &bare, int round_trips)
{
    const double ratio = store.median() / bare.median();
    printf("round trips to each server  %d\n", round_trips);
    printf("store, median               %.2f us\n", store.median());
    printf("bare server, median         %.2f us\n", bare.median());
    printf("ratio                       %.3f, at most %.1f\n", ratio, highest_ratio);
    return ratio;
}

} // namespace

int main(int argc, char **argv)
{
    const int wanted = argc > 1 ? atoi(argv[1]) : 5 * least_round_trips;
    const int round_trips = std::max(wanted, least_round_trips);

    enter_own_network();
    stay_on_one_processor();
    const device files;
    start_store(files);

    std::atomic<bool> stop = false;
    const int server = bound_socket(0);
    std::thread bare_server([&] { serve_bare(server, stop); });

    double ratio = 0;
    {
        client warm_store(PARA_SERVER_PORT), warm_bare(port_of(server));
        measure(warm_store, warm_bare, 1000);
        client store(PARA_SERVER_PORT), bare(port_of(server));
        measure(store, bare, round_trips);
        ratio = report(store, bare, round_trips);
    }

    stop = true;
    bare_server.join();
    platformparam_stop(1);
    return ratio > highest_ratio ? 1 : 0;
}
