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

static bool is_to_be_saved(const char *module)
{
    para_module_status status = {};
    platformparam_get_status(module, &status);
    return status.changes != status.saved && (status.flags & PARA_STATUS_NOT_SAVED) == 0;
}

// Without its defaults file the store would drop the module's values, and without its saved file
// fall back to the defaults.
static bool can_be_read(const std::string &folder, const std::string &name, bool must_exist)
{
    const device_file file = read_device_file(folder, name);
    std::string fault = file.fault;
    if (must_exist && !file.exists)
        fault = strerror(ENOENT);
    if (!fault.empty())
        log_line("cannot reread \"%s/%s\": %s", folder.c_str(), name.c_str(), fault.c_str());
    return fault.empty();
}

static void reload(const char *module)
{
    const std::string name = std::string(module) + ".conf";
    if (can_be_read(para_profile.home_dir, name, true) &&
        can_be_read(para_profile.data_dir, name, false))
        para_conf_need_update(module);
}

void reload_requested_conf()
{
    const auto waiting = std::stable_partition(requested.begin(), requested.end(), is_to_be_saved);
    std::for_each(waiting, requested.end(), reload);
    requested.erase(waiting, requested.end());
}
