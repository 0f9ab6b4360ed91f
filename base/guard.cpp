#include "base/guard.h"

#include "camparam/guard.h"

static bool guard_on;

bool guard_is_on()
{
    return guard_on;
}

int platformparam_set_guard(int on)
{
    const bool before = guard_on;
    guard_on = on != 0;
    return before ? 1 : 0;
}
