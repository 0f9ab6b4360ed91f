#include "conf_reload.h"

#include <algorithm>
#include <vector>

#include "camparam/commands.h"
#include "camparam/conf.h"
#include "camparam/module.h"
#include "log.h"

// Main thread only: the names of the modules to reread.
static std::vector<const char *> requested;

void request_conf_reload()
{
    requested.clear();
    for (int i = 0; i < module_para_handle_num; i++) {
        const para_module &row = module_para_handle[i];
        if (row.name != nullptr && row.get_opt == para_get_conf_opt)
            requested.push_back(row.name);
    }
}

static bool has_to_wait(const char *module)
{
    char reason[PARA_REASON_SIZE];
    const int result = para_commands_reload(module, reason);
    if (result < 0)
        log_line("%s", reason);
    return result > 0;
}

bool reload_requested_conf()
{
    const auto done = std::stable_partition(requested.begin(), requested.end(), has_to_wait);
    requested.erase(done, requested.end());
    return !requested.empty();
}
