// The host's profile, and the one hook that belongs to no module.
#include "base/trace.h"
#include "camparam/control.h"

static constexpr para_profile_t initial_profile()
{
    para_profile_t profile = {};
    profile.home_dir = "/home";
    profile.data_dir = "/data";
    return profile;
}

para_profile_t para_profile = initial_profile();

int para_conflict_callback(const char *name, int old_value, int new_value)
{
    PARA_TRACE(PARA_INFO, "%s %d->%d", name, old_value, new_value);
    if (para_profile.conflict_hook != nullptr)
        para_profile.conflict_hook(name, old_value, new_value);
    return 0;
}
