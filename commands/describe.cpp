// The command "describe": lists modules and their members with kind, limits, default and current
// value.
#include <cstring>

#include "camparam/camparam.h"
#include "command.h"
#include "description.h"

namespace {

// The largest payload of a UDP datagram over IPv4.
constexpr size_t longest_reply = 65507;

// How to describe the modules that share a get_opt function.
struct module_kind {
    decltype(para_module::get_opt) get_opt;
    bool (*describe)(const char *module, description &members);
    const char *command = nullptr; // that sets members; null: a set request does
};

const module_kind kinds[] = {
    {.get_opt = para_get_isp_opt, .describe = describe_isp},
    {.get_opt = para_get_af_opt, .describe = describe_af, .command = "lens"},
    {.get_opt = para_get_video_opt, .describe = describe_video},
    {.get_opt = para_get_audio_opt, .describe = describe_audio},
    {.get_opt = para_get_misc_opt, .describe = describe_json_module},
    {.get_opt = para_get_conf_opt, .describe = describe_conf_module},
};

const module_kind *kind_of(const para_module &row)
{
    for (const module_kind &kind : kinds) {
        if (row.get_opt == kind.get_opt)
            return &kind;
    }
    return nullptr;
}

// Without a list every module is wanted.
bool is_wanted(const char *module, const cJSON *list)
{
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, list)
    {
        if (cJSON_IsString(name) && strcmp(name->valuestring, module) == 0)
            return true;
    }
    return list == nullptr;
}

void add_module(json_builder &reply, cJSON *described, const char *name, const module_kind &kind)
{
    cJSON *const module = reply.object(described, name);
    if (kind.command != nullptr)
        reply.text(module, "set", kind.command);
    description members(reply, reply.object(module, "members"));
    if (!kind.describe(name, members))
        cJSON_DeleteItemFromObjectCaseSensitive(described, name);
}

cJSON *add_modules(json_builder &reply, const cJSON *list)
{
    cJSON *const described = reply.object(reply.root(), "modules");
    for (int i = 0; i < module_para_handle_num; i++) {
        const para_module &row = module_para_handle[i];
        const module_kind *const kind = kind_of(row);
        if (row.name != nullptr && kind != nullptr && is_wanted(row.name, list))
            add_module(reply, described, row.name, *kind);
    }
    return described;
}

void remove_members(cJSON *described)
{
    cJSON *module = nullptr;
    cJSON_ArrayForEach(module, described)
    {
        cJSON_DeleteItemFromObjectCaseSensitive(module, "members");
    }
}

} // namespace

answered answer_describe(const request &request, json_builder &reply)
{
    const cJSON *const list = cJSON_GetObjectItemCaseSensitive(request.data, "modules");
    if (list != nullptr && !cJSON_IsArray(list))
        return answered::invalid;
    cJSON *const described = add_modules(reply, list);
    if (reply.compact_length() > longest_reply)
        remove_members(described);
    return answered::compactly;
}
