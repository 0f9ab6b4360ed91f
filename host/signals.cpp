#include "signals.h"

#include <pthread.h>

#include <atomic>
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

pthread_t main_thread;

// Each side stores its own word before it reads the other's.
constexpr int turns_until_rest = 20;
std::atomic<int> turns_without_datagram{0};
std::atomic<bool> resting{false};

int wake_signal()
{
    return SIGRTMIN;
}

bool may_rest()
{
    int turns = turns_without_datagram;
    if (turns < turns_until_rest) {
        turns_without_datagram.compare_exchange_strong(turns, turns + 1);
        return false;
    }
    resting = true;
    return turns_without_datagram >= turns_until_rest;
}

sigset_t handled_set()
{
    sigset_t set;
    sigemptyset(&set);
    for (const handled_signal &signal : handled)
        sigaddset(&set, signal.number);
    sigaddset(&set, wake_signal());
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
    main_thread = pthread_self();
}

int wait_for_signal()
{
    const sigset_t set = handled_set();
    constexpr timespec turn = {.tv_sec = 0, .tv_nsec = 100000000};
    constexpr timespec rest = {.tv_sec = 10, .tv_nsec = 0};
    const int received = sigtimedwait(&set, nullptr, may_rest() ? &rest : &turn);
    resting = false;
    return received == wake_signal() ? -1 : received;
}

void note_datagram()
{
    turns_without_datagram = 0;
    if (resting && resting.exchange(false))
        pthread_kill(main_thread, wake_signal());
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
