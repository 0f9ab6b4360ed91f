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
std::atomic<int> quiet_turns{0};
std::atomic<bool> resting{false};

int wake_signal()
{
    return SIGRTMIN;
}

bool may_rest(bool work_waits)
{
    if (work_waits)
        return false;
    int turns = quiet_turns;
    if (turns < turns_until_rest) {
        quiet_turns.compare_exchange_strong(turns, turns + 1);
        return false;
    }
    resting = true;
    return quiet_turns >= turns_until_rest;
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

int wait_for_signal(bool work_waits)
{
    const sigset_t set = handled_set();
    constexpr timespec turn = {.tv_sec = 0, .tv_nsec = 100000000};
    constexpr timespec rest = {.tv_sec = 10, .tv_nsec = 0};
    const int received = sigtimedwait(&set, nullptr, may_rest(work_waits) ? &rest : &turn);
    resting = false;
    if (received > 0)
        quiet_turns = 0;
    return received == wake_signal() ? -1 : received;
}

void note_datagram()
{
    quiet_turns = 0;
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
