// Machine words that several threads share without a lock: relaxed atomic loads and stores.
#pragma once

#include <ctime>

static_assert(__atomic_always_lock_free(sizeof(time_t), nullptr),
              "a time stamp must be stored without a library of its own");

template <typename word> word load_word(const word &from)
{
    return __atomic_load_n(&from, __ATOMIC_RELAXED);
}

template <typename word> void store_word(word &to, word value)
{
    __atomic_store_n(&to, value, __ATOMIC_RELAXED);
}

inline timespec load_time(const timespec &from)
{
    timespec time = {};
    time.tv_sec = load_word(from.tv_sec);
    time.tv_nsec = load_word(from.tv_nsec);
    return time;
}

inline void store_time(timespec &to, const timespec &time)
{
    store_word(to.tv_sec, time.tv_sec);
    store_word(to.tv_nsec, time.tv_nsec);
}
