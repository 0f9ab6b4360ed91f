#include "camparam/platform.h"

long long lib_common_diff_msec_timespec(const struct timespec *from, const struct timespec *to)
{
    // One division of the whole difference: rounding seconds and nanoseconds on their own would
    // let 1000.1 ms count as 1001.
    const long long seconds = static_cast<long long>(to->tv_sec) - from->tv_sec;
    const long long nanoseconds = static_cast<long long>(to->tv_nsec) - from->tv_nsec;
    return (seconds * 1000000000 + nanoseconds) / 1000000;
}
