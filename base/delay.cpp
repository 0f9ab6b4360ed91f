#include "base/delay.h"

#include "base/guard.h"
#include "base/time.h"
#include "camparam/platform.h"

bool has_passed(const timespec &since, long long delay_ms)
{
    const timespec now = monotonic_now();
    const long long passed = lib_common_diff_msec_timespec(&since, &now);
    return passed >= delay_ms || (guard_is_on() && passed <= -delay_ms);
}
