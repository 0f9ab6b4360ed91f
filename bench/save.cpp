// Measures the save of a changed module, both with the shell command "sync" behind it and as the
// reference platform does it, which flushes the file systems on a thread of its own; and how long a
// client waits meanwhile. Next to a plain write of a file of 1 KB and "sync".
//
// usage: save [--quick]
// Exits with 2 when nothing could be measured.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "bench/contenders/udp.h"
#include "bench/support/device.h"
#include "bench/support/median.h"
#include "bench/support/requests.h"
#include "bench/support/result.h"
#include "camparam/camparam.h"

namespace {

constexpr int store_port = 16802;
using clock_type = std::chrono::steady_clock;

double microseconds_since(clock_type::time_point start)
{
    return std::chrono::duration<double, std::micro>(clock_type::now() - start).count();
}

template <typename action> double time_of(const action &act)
{
    const clock_type::time_point start = clock_type::now();
    act();
    return microseconds_since(start);
}

void save_plainly(const std::string &path)
{
    const std::string text(1000, 'x');
    FILE *const file = fopen(path.c_str(), "w");
    if (file == nullptr || fwrite(text.data(), 1, text.size(), file) != text.size() ||
        fclose(file) != 0 || system("sync") != 0)
        give_up(path);
}

void save_a_module(int value)
{
    para_set_isp_saturation_cur(0, value);
    if (para_save_isp("isp0") != 0)
        give_up("para_save_isp");
}

void flush_at_once()
{
    if (system("sync") != 0)
        give_up("sync");
}

void flush_on_its_thread()
{
    if (lib_system("sync") != 0)
        give_up("sync");
}

// The longest round trip from a change until it is saved, two seconds later.
double longest_wait(udp_client &client, int value)
{
    para_module_status status = {};
    para_set_isp_saturation_cur(0, value);
    double longest = 0;
    do {
        longest =
            std::max(longest, time_of([&] { client.exchange(request_kinds()[0].requests[0]); }));
        platformparam_get_status("isp0", &status);
    } while (status.saved != status.changes);
    for (int i = 0; i < 1000; i++) // while "sync" runs
        longest =
            std::max(longest, time_of([&] { client.exchange(request_kinds()[0].requests[0]); }));
    return longest;
}

} // namespace

int main(int argc, char **argv)
{
    const bool quick = argc > 1 && strcmp(argv[1], "--quick") == 0;
    const int saves = quick ? 15 : 51;
    const int waits = quick ? 2 : 11;
    const device files;
    files.start_store(store_port);

    std::vector<double> own, plain, handed_over;
    for (int i = 0; i < saves; i++) {
        own.push_back(time_of([&] {
            save_a_module(40 + i % 2);
            flush_at_once();
        }));
        plain.push_back(time_of([&] { save_plainly(files.data() + std::string("/plain")); }));
    }
    for (int i = 0; i < saves; i++) {
        handed_over.push_back(time_of([&] {
            save_a_module(40 + i % 2);
            flush_on_its_thread();
        }));
        flush_at_once(); // so that the next one begins with nothing to flush
    }
    udp_client client(store_port);
    std::vector<double> longest;
    for (int i = 0; i < waits; i++)
        longest.push_back(longest_wait(client, 60 + i));

    const double base = median(plain);
    printf("plain save and \"sync\"     %8.0f us\n", base);
    printf("save of a module, \"sync\"  %8.0f us, ratio %.2f, goal 1.2\n", median(own),
           median(own) / base);
    printf("the same on a thread      %8.0f us, ratio %.2f\n", median(handed_over),
           median(handed_over) / base);
    printf("longest wait of a client  %8.0f us, ratio %.2f, goal 1.2\n", median(longest),
           median(longest) / base);
    add_result("save of a module to a plain one", median(own) / base, 1.2);
    add_result("longest wait during a save, to a plain save", median(longest) / base, 1.2);
    platformparam_stop(1);
    return 0;
}
