// What the store takes: the size of its library next to one of as many bare accessors, and of the
// host process its memory, its system calls for a request, and those of a second in which nobody
// asks for anything. System calls are counted by strace.
//
// usage: footprint
// Exits with 2 when something could not be measured.
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "bench/contenders/udp.h"
#include "bench/support/device.h"
#include "bench/support/process.h"
#include "bench/support/requests.h"
#include "bench/support/result.h"

namespace {

namespace fs = std::filesystem;

constexpr int host_port = 16801;

fs::path stripped(const char *library, const scratch_folder &folder)
{
    const fs::path copy = fs::path(folder.path()) / fs::path(library).filename();
    const std::string command = std::string("strip -o ") + copy.string() + " " + library;
    if (system(command.c_str()) != 0)
        give_up("strip");
    return copy;
}

void print_size()
{
    const scratch_folder folder;
    const auto store = static_cast<double>(fs::file_size(stripped(STORE_LIBRARY, folder)));
    const auto bare = static_cast<double>(fs::file_size(stripped(BARE_LIBRARY, folder)));
    printf("stripped library          %8.1f KB\n", store / 1000);
    printf("as many bare accessors    %8.1f KB\n", bare / 1000);
    printf("ratio, goal 1.6           %8.2f\n", store / bare);
    add_result("stripped library to bare accessors", store / bare, 1.6);
}

// The line of /proc/PID/smaps_rollup, in KB.
long anonymous_memory(pid_t process)
{
    std::ifstream rollup("/proc/" + std::to_string(process) + "/smaps_rollup");
    for (std::string line; getline(rollup, line);) {
        if (line.rfind("Anonymous:", 0) == 0)
            return std::stol(line.substr(10));
    }
    give_up("smaps_rollup");
}

std::vector<std::string> host_command(const device &files)
{
    return {HOST,
            "--home",
            files.home(),
            "--data",
            files.data(),
            "--port",
            std::to_string(host_port),
            "--trace",
            "3"};
}

void wait_until_it_answers()
{
    const std::string request = request_kinds()[0].requests[0];
    if (!succeeds_soon([&] { return udp_client(host_port).tries_to_exchange(request); }))
        give_up("the host process does not answer");
}

void print_memory(const device &files)
{
    const process host(host_command(files));
    wait_until_it_answers();
    const long memory = anonymous_memory(host.id());
    printf("memory, goal 384          %8ld KB\n", memory);
    add_result("anonymous memory of camparamd, KB", static_cast<double>(memory), 384);
}

long lines_of(const std::string &path)
{
    std::ifstream file(path);
    long count = 0;
    for (std::string line; getline(file, line);)
        count += line.find('(') != std::string::npos && line.find("resumed>") == std::string::npos;
    return count;
}

void print_system_calls(const device &files)
{
    constexpr int requests = 1000;
    constexpr int idle_seconds = 20; // two rests of the host
    const scratch_folder folder;
    const std::string calls = folder.path() + "/calls";
    const process host(host_command(files));
    wait_until_it_answers();
    const process tracer({"strace", "-f", "-qq", "-o", calls, "-p", std::to_string(host.id())});
    if (!succeeds_soon([&] { return lines_of(calls) > 0; }))
        give_up("strace");

    std::this_thread::sleep_for(std::chrono::seconds(3)); // until it rests
    const long before_idling = lines_of(calls);
    std::this_thread::sleep_for(std::chrono::seconds(idle_seconds));
    const long before_requests = lines_of(calls);
    udp_client client(host_port);
    for (int i = 0; i < requests; i++)
        client.exchange(request_kinds()[0].requests[0]);
    const long after_requests = lines_of(calls);
    const double of_request = static_cast<double>(after_requests - before_requests) / requests;
    const double of_second = static_cast<double>(before_requests - before_idling) / idle_seconds;
    printf("system calls of a request, goal 3.00 %8.2f\n", of_request);
    printf("system calls of an idle second, goal 10 %5.1f\n", of_second);
    add_result("system calls of a request", of_request, 3);
    add_result("system calls of an idle second", of_second, 10);
}

} // namespace

int main()
{
    setvbuf(stdout, nullptr, _IOLBF, 0);
    print_size();
    const device files;
    print_memory(files);
    print_system_calls(files);
    return 0;
}
