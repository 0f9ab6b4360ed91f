// Counts the instructions of the server's work on a request, from the received datagram to the
// reply that is handed to the kernel, against the same of a server that only parses, builds and
// prints with cJSON. Counted by valgrind's callgrind, so that a busy machine does not matter.
//
// usage: instructions [--compare FILE | --record FILE]
// Exits with 1 when the store needs over 3 % more instructions than the file says, or, without the
// file, than the goals allow, and with 2 when nothing could be counted or compared.
#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <valgrind/callgrind.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "bench/support/device.h"
#include "bench/support/floor.h"
#include "bench/support/requests.h"
#include "bench/support/result.h"
#include "camparam/camparam.h"

namespace {

constexpr int requests_counted = 200;
constexpr double highest_growth = 1.03;

// Of the store's instructions to the floor's, by kind of request.
const std::map<std::string, double> goals = {{"one member", 0.50},
                                             {"fifteen members", 0.32},
                                             {"all members", 0.14},
                                             {"set one member", 0.68}};

// --- Under valgrind ---

// A socket that sends to itself: replies are read back there.
para_message message_to_self()
{
    para_message message = {};
    message.socket = socket(AF_INET, SOCK_DGRAM, 0);
    message.sender.sin_family = AF_INET;
    message.sender.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    message.sender_length = sizeof message.sender;
    socklen_t size = sizeof message.sender;
    auto *const address = reinterpret_cast<sockaddr *>(&message.sender);
    if (bind(message.socket, address, size) != 0 ||
        getsockname(message.socket, address, &size) != 0)
        give_up("socket");
    return message;
}

std::string take_reply(const para_message &message)
{
    char reply[4096];
    const ssize_t length = recv(message.socket, reply, sizeof reply, MSG_DONTWAIT);
    if (length < 0)
        give_up("no reply");
    return {reply, static_cast<size_t>(length)};
}

void set_request(para_message &message, const std::string &text)
{
    snprintf(message.text, sizeof message.text, "%s", text.c_str());
}

// Counts what the serving function does with the kind's requests, and dumps it under that name.
template <typename server>
void count(const std::string &name, const request_kind &kind, para_message &message,
           const server &serve)
{
    for (int i = -2; i < requests_counted; i++) { // the first two are not counted
        set_request(message, kind.requests[static_cast<size_t>(i + 2) % kind.requests.size()]);
        if (i == 0)
            CALLGRIND_ZERO_STATS;
        if (i >= 0)
            CALLGRIND_TOGGLE_COLLECT;
        serve();
        if (i >= 0)
            CALLGRIND_TOGGLE_COLLECT;
        take_reply(message);
    }
    CALLGRIND_DUMP_STATS_AT(name.c_str());
}

void send_back(const para_message &message, const char *text, size_t length)
{
    sendto(message.socket, text, length, MSG_DONTWAIT,
           reinterpret_cast<const sockaddr *>(&message.sender), sizeof message.sender);
}

void count_kind(const request_kind &kind, para_message &message)
{
    set_request(message, kind.requests[0]);
    para_server_message_Process(&message);
    const std::string reply = take_reply(message);

    count(std::string("store, ") + kind.name, kind, message,
          [&] { para_server_message_Process(&message); });

    const json_floor built(reply);
    count(std::string("floor, ") + kind.name, kind, message, [&] {
        char *const text = built.answer(message.text);
        send_back(message, text, strlen(text));
        cJSON_free(text);
    });

    const parse_floor parsed(reply);
    count(std::string("parse, ") + kind.name, kind, message, [&] {
        char text[4096];
        send_back(message, text, parsed.answer(message.text, text));
    });
}

int count_all()
{
    const device files;
    files.start_store(0);
    platformparam_stop(1); // no other thread runs while this one counts
    para_message message = message_to_self();
    for (const request_kind &kind : request_kinds())
        count_kind(kind, message);
    close(message.socket);
    return 0;
}

// --- The program that runs valgrind ---

using counts = std::map<std::string, long>; // instructions of a request, by the name of the dump

void run_under_valgrind(const char *program, const std::string &out_file)
{
    const std::string out = "--callgrind-out-file=" + out_file;
    const pid_t child = fork();
    if (child == 0) {
        execlp("valgrind", "valgrind", "--tool=callgrind", "--quiet", "--collect-atstart=no",
               out.c_str(), program, "--inside", nullptr);
        _exit(127);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || status != 0)
        give_up("valgrind");
}

void read_dump(const std::filesystem::path &file, counts &found)
{
    const std::string trigger = "desc: Trigger: Client Request: ";
    std::ifstream dump(file);
    std::string name;
    for (std::string line; getline(dump, line);) {
        if (line.compare(0, trigger.size(), trigger) == 0)
            name = line.substr(trigger.size());
        if (line.compare(0, 8, "totals: ") == 0 && !name.empty())
            found[name] = std::stol(line.substr(8)) / requests_counted;
    }
}

counts count_instructions(const char *program)
{
    char folder[] = "/tmp/camparam-bench-XXXXXX";
    if (mkdtemp(folder) == nullptr)
        give_up(folder);
    run_under_valgrind(program, std::string(folder) + "/dump");
    counts found;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        read_dump(entry.path(), found);
    std::filesystem::remove_all(folder);
    return found;
}

void print(const counts &found)
{
    printf("%-18s %9s %9s %9s %9s\n", "instructions", "store", "floor", "ratio", "least");
    for (const request_kind &kind : request_kinds()) {
        const auto store = static_cast<double>(found.at(std::string("store, ") + kind.name));
        const auto floor = static_cast<double>(found.at(std::string("floor, ") + kind.name));
        const auto parse = static_cast<double>(found.at(std::string("parse, ") + kind.name));
        printf("%-18s %9.0f %9.0f %9.2f %9.2f\n", kind.name, store, floor, store / floor,
               parse / floor);
        add_result(std::string("instructions to the cJSON server, ") + kind.name, store / floor,
                   goals.at(kind.name));
    }
}

void record(const counts &found, const char *path)
{
    std::ofstream file(path);
    for (const request_kind &kind : request_kinds())
        file << found.at(std::string("store, ") + kind.name) << " " << kind.name << "\n";
    if (!file.flush())
        give_up(path);
}

// For a kind of processor that nothing is recorded for. Returns whether the goals are met, or
// missed by no more than a count may grow.
bool meet_goals(const counts &found)
{
    bool met = true;
    for (const auto &[kind, goal] : goals) {
        const auto store = static_cast<double>(found.at("store, " + kind));
        const auto floor = static_cast<double>(found.at("floor, " + kind));
        if (store / floor <= goal * highest_growth)
            continue;
        printf("%s: ratio %.2f, goal %.2f\n", kind.c_str(), store / floor, goal);
        met = false;
    }
    return met;
}

// Returns whether no kind of request has grown.
bool compare(const counts &found, const char *path)
{
    std::ifstream file(path);
    if (!file) {
        printf("%s is not there: compared with the goals\n", path);
        return meet_goals(found);
    }
    bool within = true;
    size_t compared = 0;
    long recorded = 0;
    for (std::string name; file >> recorded && getline(file >> std::ws, name); compared++) {
        const long now = found.at("store, " + name);
        if (static_cast<double>(now) <= static_cast<double>(recorded) * highest_growth)
            continue;
        printf("%s: %ld instructions, %ld recorded\n", name.c_str(), now, recorded);
        within = false;
    }
    if (compared != request_kinds().size())
        give_up(std::string(path) + " is not complete");
    return within;
}

} // namespace

int main(int argc, char **argv)
{
    const std::string option = argc > 1 ? argv[1] : "";
    if (option == "--inside")
        return count_all();
    const bool records = option == "--record", compares = option == "--compare";
    if (argc != (records || compares ? 3 : 1)) {
        fprintf(stderr, "usage: instructions [--compare FILE | --record FILE]\n");
        return 2;
    }
    const counts found = count_instructions(argv[0]);
    print(found);
    if (records)
        record(found, argv[2]);
    return !compares || compare(found, argv[2]) ? 0 : 1;
}
