#include "conf_reload.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "camparam/conf.h"
#include "camparam/control.h"
#include "camparam/guard.h"
#include "camparam/module.h"
#include "device_file.h"
#include "log.h"

// Main thread only: the names of the modules to reread.
static std::vector<const char *> requested;

static bool is_conf_row(const para_module &row)
{
    return row.name != nullptr && row.get_opt == para_get_conf_opt;
}

bool is_conf_module(const char *name)
{
    for (int i = 0; i < module_para_handle_num; i++) {
        const para_module &row = module_para_handle[i];
        if (is_conf_row(row) && strcmp(row.name, name) == 0)
            return true;
    }
    return false;
}

void request_conf_reload()
{
    requested.clear();
    for (int i = 0; i < module_para_handle_num; i++) {
        if (is_conf_row(module_para_handle[i]))
            requested.push_back(module_para_handle[i].name);
    }
}

static const char *const changes_to_save = "changes are still to be saved";

static bool is_to_be_saved(const char *module)
{
    para_module_status status = {};
    platformparam_get_status(module, &status);
    return status.changes != status.saved && (status.flags & PARA_STATUS_NOT_SAVED) == 0;
}

// Without its defaults file the store would drop the module's values, and without its saved file
// fall back to the defaults.
static std::string fault_of(const std::string &folder, const std::string &name, bool must_exist)
{
    const device_file file = read_device_file(folder, name);
    const std::string fault = must_exist && !file.exists ? strerror(ENOENT) : file.fault;
    return fault.empty() ? "" : "cannot reread \"" + folder + "/" + name + "\": " + fault;
}

static std::string fault_of_files(const char *module)
{
    const std::string name = std::string(module) + ".conf";
    const std::string fault = fault_of(para_profile.home_dir, name, true);
    return fault.empty() ? fault_of(para_profile.data_dir, name, false) : fault;
}

std::string reread_conf(const char *module)
{
    if (is_to_be_saved(module))
        return changes_to_save;
    std::string fault = fault_of_files(module);
    if (!fault.empty()) {
        log_line("%s", fault.c_str());
        return fault;
    }
    // To read them may have taken long, and without the guard the store would drop a change.
    if (is_to_be_saved(module))
        return changes_to_save;
    if (para_init_single_conf(module) != 0)
        return is_to_be_saved(module) ? changes_to_save : "cannot be reread";
    para_profile.conf_update_hook(module);
    return "";
}

bool reload_requested_conf()
{
    const auto has_to_wait = [](const char *module) {
        return reread_conf(module) == changes_to_save;
    };
    const auto done = std::stable_partition(requested.begin(), requested.end(), has_to_wait);
    requested.erase(done, requested.end());
    return !requested.empty();
}
