#include "conf_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "camparam/commands.h"
#include "camparam/conf.h"
#include "camparam/control.h"
#include "camparam/guard.h"
#include "camparam/module.h"
#include "camparam/platform.h"

bool is_conf_module(const char *name)
{
    for (int i = 0; i < module_para_handle_num; i++) {
        const para_module &row = module_para_handle[i];
        if (row.name != nullptr && row.get_opt == para_get_conf_opt && strcmp(row.name, name) == 0)
            return true;
    }
    return false;
}

static bool is_to_be_saved(const char *module)
{
    para_module_status status = {};
    platformparam_get_status(module, &status);
    return status.changes != status.saved && (status.flags & PARA_STATUS_NOT_SAVED) == 0;
}

// Why a file cannot be read; null for one that can. Not to wait for the other end of a FIFO, and
// not to start what a device does when it is opened, it looks before it opens.
static const char *fault_of(const char *path)
{
    struct stat about = {};
    if (stat(path, &about) != 0)
        return strerror(errno);
    if (S_ISDIR(about.st_mode))
        return strerror(EISDIR);
    if (!S_ISREG(about.st_mode))
        return "not a regular file";
    const int file = open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0)
        return strerror(errno);
    close(file);
    return nullptr;
}

// Fills the reason, if there is one.
static bool is_readable(const char *folder, const char *module, bool must_exist, char *reason)
{
    char path[PARA_PATH_SIZE];
    if (snprintf(path, sizeof path, "%s/%s.conf", folder, module) >= static_cast<int>(sizeof path))
        return true; // the store has no such file either
    struct stat about = {};
    if (!must_exist && stat(path, &about) != 0 && errno == ENOENT)
        return true;
    const char *const fault = fault_of(path);
    if (fault == nullptr)
        return true;
    snprintf(reason, PARA_REASON_SIZE, "cannot reread \"%s\": %s", path, fault);
    return false;
}

// Without its defaults file the store would drop the module's values, and without its saved file
// fall back to the defaults.
static bool are_readable(const char *module, char *reason)
{
    return is_readable(para_profile.home_dir, module, true, reason) &&
           is_readable(para_profile.data_dir, module, false, reason);
}

static int wait_for_a_save(char *reason)
{
    snprintf(reason, PARA_REASON_SIZE, "changes are still to be saved");
    return 1;
}

int para_commands_reload(const char *module, char *reason)
{
    reason[0] = '\0';
    if (!is_conf_module(module)) {
        snprintf(reason, PARA_REASON_SIZE, "no such conf module");
        return -1;
    }
    if (is_to_be_saved(module))
        return wait_for_a_save(reason);
    if (!are_readable(module, reason))
        return -1;
    if (is_to_be_saved(module)) // the look at the files may have taken long
        return wait_for_a_save(reason);
    if (para_init_single_conf(module) != 0) {
        if (is_to_be_saved(module))
            return wait_for_a_save(reason);
        snprintf(reason, PARA_REASON_SIZE, "cannot be reread");
        return -1;
    }
    if (para_profile.conf_update_hook != nullptr)
        para_profile.conf_update_hook(module);
    return 0;
}
