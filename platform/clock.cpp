#include "camparam/platform.h"

long long lib_common_diff_msec_timespec(const struct timespec *from, const struct timespec *to)
{
    // Divide once: with seconds and nanoseconds rounded separately, 1000.1 ms could become 1001.
    const long long seconds = static_cast<long long>(to->tv_sec) - from->tv_sec;
    const long long nanoseconds = static_cast<long long>(to->tv_nsec) - from->tv_nsec;
    return (seconds * 1000000000 + nanoseconds) / 1000000;
}
