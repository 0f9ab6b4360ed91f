#include "base/change.h"

#include "base/word.h"
#include "camparam/platform.h"

static timespec monotonic_now()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now;
}

void stamp_change(const change_stamp &stamp)
{
    store_time(*stamp.time, monotonic_now());
    __atomic_store_n(stamp.changed, 1, __ATOMIC_RELEASE); // pairs with the acquire in change_due()
}

bool change_due(const change_stamp &stamp, int delay_ms)
{
    if (__atomic_load_n(stamp.changed, __ATOMIC_ACQUIRE) != 1)
        return false;

    const timespec now = monotonic_now();
    const timespec since = load_time(*stamp.time);
    return lib_common_diff_msec_timespec(&since, &now) >= delay_ms;
}

void clear_change(const change_stamp &stamp)
{
    store_word(*stamp.changed, 0);
}
