// Signals of the thread that calls.
#pragma once

#include <csignal>

// Blocks all signals while it exists. A thread created meanwhile inherits the mask, and leaves
// signals to the threads of the host.
class signals_held_back {
public:
    signals_held_back()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    ~signals_held_back() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    signals_held_back(const signals_held_back &) = delete;
    signals_held_back &operator=(const signals_held_back &) = delete;

    const sigset_t &usual() const { return before; }

private:
    sigset_t before = {};
};
