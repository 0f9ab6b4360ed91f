#include <cstring>

#include "camparam/conf.h"
#include "camparam/platform_queue.h"
#include "commands.h"
#include "conf_reload.h"
#include "request.h"

namespace {

const char *const netport = "netport";

// The requested module; null when "module" is not a text.
const char *module_of(const cJSON *data)
{
    const cJSON *const module = cJSON_GetObjectItemCaseSensitive(data, "module");
    if (module == nullptr)
        return netport;
    return cJSON_IsString(module) ? module->valuestring : nullptr;
}

// The store has registered the reload of "netport" with the work queue.
int reload(const char *module)
{
    if (strcmp(module, netport) == 0)
        return post_fifo_work(module, nullptr) > 0 ? 0 : -1;
    para_conf_need_update(module);
    return 0;
}

} // namespace

int reload_command(int mode, para_message *message, cJSON **reply)
{
    const json_ptr request = parse_request(*message);
    const char *const module = module_of(data_of(request));
    if (mode != PARA_SET || module == nullptr || !is_conf_module(module) || reload(module) != 0)
        return -1;

    *reply = start_reply(request).release();
    return 0;
}
