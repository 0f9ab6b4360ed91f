// Times in milliseconds.
#pragma once

#include <ctime>

inline long long clock_ms(clockid_t clock)
{
    timespec now = {};
    clock_gettime(clock, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

// Goes on evenly.
inline long long monotonic_ms()
{
    return clock_ms(CLOCK_MONOTONIC);
}

// As people tell the time.
inline long long real_ms()
{
    return clock_ms(CLOCK_REALTIME);
}
