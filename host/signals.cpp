#include "signals.h"

#include <csignal>

namespace {

struct handled_signal {
    int number;
    const char *name;
    bool ends;
};

constexpr handled_signal handled[] = {
    {.number = SIGTERM, .name = "SIGTERM", .ends = true},
    {.number = SIGINT, .name = "SIGINT", .ends = true},
    {.number = SIGQUIT, .name = "SIGQUIT", .ends = true},
    {.number = SIGHUP, .name = "SIGHUP", .ends = false},
    {.number = SIGUSR1, .name = "SIGUSR1", .ends = false},
};

sigset_t handled_set()
{
    sigset_t set;
    sigemptyset(&set);
    for (const handled_signal &signal : handled)
        sigaddset(&set, signal.number);
    return set;
}

const handled_signal *find(int number)
{
    for (const handled_signal &signal : handled) {
        if (signal.number == number)
            return &signal;
    }
    return nullptr;
}

} // namespace

void block_handled_signals()
{
    const sigset_t set = handled_set();
    sigprocmask(SIG_BLOCK, &set, nullptr);
}

int wait_for_signal()
{
    const sigset_t set = handled_set();
    const timespec turn = {.tv_sec = 0, .tv_nsec = 100000000};
    return sigtimedwait(&set, nullptr, &turn);
}

bool is_ending_signal(int number)
{
    const handled_signal *const signal = find(number);
    return signal != nullptr && signal->ends;
}

const char *signal_name(int number)
{
    const handled_signal *const signal = find(number);
    return signal != nullptr ? signal->name : "signal";
}
