#include "camparam/platform.h"

#include <climits>

long long lib_common_diff_msec_timespec(const struct timespec *from, const struct timespec *to)
{
    // Round once: with seconds and nanoseconds rounded separately, 1000.1 ms could become 1001.
    // Seconds and nanoseconds have the same sign then, so that dividing rounds towards zero.
    long long seconds = 0, milliseconds = 0;
    long long nanoseconds = static_cast<long long>(to->tv_nsec) - from->tv_nsec;
    if (__builtin_sub_overflow(to->tv_sec, from->tv_sec, &seconds))
        return to->tv_sec > from->tv_sec ? LLONG_MAX : LLONG_MIN;
    if (seconds > 0 && nanoseconds < 0) {
        seconds--;
        nanoseconds += 1000000000;
    } else if (seconds < 0 && nanoseconds > 0) {
        seconds++;
        nanoseconds -= 1000000000;
    }
    const bool fits = !__builtin_mul_overflow(seconds, 1000LL, &milliseconds) &&
                      !__builtin_add_overflow(milliseconds, nanoseconds / 1000000, &milliseconds);
    return fits ? milliseconds : seconds > 0 ? LLONG_MAX : LLONG_MIN;
}
