#include "unsaved.h"

#include <cstring>

#include "camparam/commands.h"
#include "camparam/control.h"
#include "conf_file.h"

static bool has_unsaved_changes(const para_module_status &status)
{
    return status.changes != status.saved;
}

// Whether the module's file is one that the store is not to write.
static bool writing_is_off(const char *module, const para_module_status &status)
{
    return para_profile.conf_save_hook == nullptr && is_conf_module(module) &&
           (status.flags & PARA_STATUS_LOAD_FAILED) == 0;
}

const char *obstacle_of(const char *module, const para_module_status &status)
{
    if ((status.flags & PARA_STATUS_LOAD_FAILED) != 0)
        return "not loaded";
    if (writing_is_off(module, status))
        return "writing is off";
    return (status.flags & PARA_STATUS_NOT_SAVED) != 0 ? "its file is bad and stays as it is"
                                                       : nullptr;
}

// Null: saved, or changed since and about to be saved.
static const char *reason_of(const char *module, const para_module_status &status)
{
    if (status.error != 0)
        return strerror(status.error);
    return has_unsaved_changes(status) ? obstacle_of(module, status) : nullptr;
}

int para_commands_unsaved(void (*tell)(void *context, const char *module, const char *reason,
                                       int loses),
                          void *context)
{
    int losing = 0;
    for_each_saved_module([&](const char *name, const para_module_status &status) {
        const char *const reason = reason_of(name, status);
        if (reason == nullptr)
            return;
        const bool loses = has_unsaved_changes(status) && !writing_is_off(name, status);
        losing += loses ? 1 : 0;
        if (tell != nullptr)
            tell(context, name, reason, loses ? 1 : 0);
    });
    return losing;
}

bool all_is_written()
{
    bool written = true;
    for_each_saved_module([&](const char *, const para_module_status &status) {
        const bool cannot_be = (status.flags & PARA_STATUS_NOT_SAVED) != 0;
        if (status.error != 0 || (has_unsaved_changes(status) && !cannot_be))
            written = false;
    });
    return written;
}
