#include "unsaved.h"

#include <algorithm>
#include <cstring>

#include "camparam/control.h"
#include "camparam/guard.h"
#include "camparam/module.h"
#include "conf_reload.h"
#include "log.h"

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

// Empty: saved, or changed since and about to be saved.
static std::string reason_of(const char *module, const para_module_status &status)
{
    if (status.error != 0)
        return strerror(status.error);
    if (!has_unsaved_changes(status))
        return "";
    if ((status.flags & PARA_STATUS_LOAD_FAILED) != 0)
        return "not loaded";
    if (writing_is_off(module, status))
        return "writing is off";
    return (status.flags & PARA_STATUS_NOT_SAVED) != 0 ? "its file is bad and stays as it is" : "";
}

// Calls for each module that has a file.
template <typename function> static void for_each_saved_module(const function &call)
{
    for (int i = 0; i < module_para_handle_num; i++) {
        const para_module &row = module_para_handle[i];
        para_module_status status = {};
        if (row.save != nullptr && platformparam_get_status(row.name, &status) == 0)
            call(row.name, status);
    }
}

std::vector<unsaved_module> unsaved_modules()
{
    std::vector<unsaved_module> found;
    for_each_saved_module([&](const char *name, const para_module_status &status) {
        const std::string reason = reason_of(name, status);
        const bool loses = has_unsaved_changes(status) && !writing_is_off(name, status);
        if (!reason.empty())
            found.push_back({name, reason, loses});
    });
    return found;
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

bool tell_unsaved()
{
    const std::vector<unsaved_module> found = unsaved_modules();
    for (const unsaved_module &module : found)
        log_line("%s is not saved: %s", module.name, module.reason.c_str());
    return std::any_of(found.begin(), found.end(),
                       [](const unsaved_module &module) { return module.loses_changes; });
}
