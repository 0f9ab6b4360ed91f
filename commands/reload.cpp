// The command "reload": conf files may be locked by other programs for seconds.
#include "camparam/commands.h"
#include "command.h"
#include "conf_file.h"
#include "worker.h"

// The requested module; null when "module" is not a text.
static const char *module_of(const cJSON *data)
{
    const cJSON *const module = cJSON_GetObjectItemCaseSensitive(data, "module");
    if (module == nullptr)
        return "netport";
    return cJSON_GetStringValue(module);
}

static void reload(const char *module, json_builder &failed)
{
    char reason[PARA_REASON_SIZE];
    if (para_commands_reload(module, reason) != 0)
        failed.text(failed.root(), module, reason);
}

answered answer_reload(const request &request, json_builder &reply)
{
    const char *const module = module_of(request.data);
    if (module == nullptr || !is_conf_module(module))
        return answered::invalid;
    answer_later(request.message, reply, reload, module);
    return answered::later;
}
