#include "base/counters.h"

#include "camparam/guard.h"

static unsigned counts[static_cast<int>(counter::failed_saves) + 1];

void count_one(counter which)
{
    __atomic_fetch_add(&counts[static_cast<int>(which)], 1U, __ATOMIC_RELAXED);
}

static unsigned counted(counter which)
{
    return __atomic_load_n(&counts[static_cast<int>(which)], __ATOMIC_RELAXED);
}

void platformparam_get_counters(para_counters *counters)
{
    if (counters == nullptr)
        return;
    *counters = {.received = counted(counter::received),
                 .dropped = counted(counter::dropped),
                 .replies = counted(counter::replies),
                 .saves = counted(counter::saves),
                 .failed_saves = counted(counter::failed_saves)};
}
