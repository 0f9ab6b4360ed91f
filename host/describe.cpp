#include <cstring>

#include "camparam/camparam.h"
#include "commands.h"
#include "description.h"
#include "request.h"

namespace {

// The largest payload of a UDP datagram over IPv4.
constexpr size_t longest_reply = 65507;

// How to describe the modules that share a get_opt function.
struct module_kind {
    decltype(para_module::get_opt) get_opt;
    json_ptr (*describe)(const char *module);
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

void add_module(cJSON *described, const char *name, const module_kind &kind)
{
    json_ptr members = kind.describe(name);
    if (!members)
        return;
    cJSON *const object = cJSON_AddObjectToObject(described, name);
    if (kind.command != nullptr)
        cJSON_AddStringToObject(object, "set", kind.command);
    cJSON_AddItemToObject(object, "members", members.release());
}

void add_modules(cJSON *described, const cJSON *list)
{
    for (int i = 0; i < module_para_handle_num; i++) {
        const para_module &row = module_para_handle[i];
        const module_kind *const kind = kind_of(row);
        if (row.name != nullptr && kind != nullptr && is_wanted(row.name, list))
            add_module(described, row.name, *kind);
    }
}

void remove_members(cJSON *described)
{
    cJSON *module = nullptr;
    cJSON_ArrayForEach(module, described)
    {
        cJSON_DeleteItemFromObjectCaseSensitive(module, "members");
    }
}

// The tree as compact text in a raw node, which the store prints unchanged: with the white space of
// cJSON_Print() the description of a whole camera exceeds a datagram.
cJSON *compacted(const json_ptr &tree)
{
    char *const text = cJSON_PrintUnformatted(tree.get());
    cJSON *const node = text != nullptr ? cJSON_CreateRaw(text) : nullptr;
    cJSON_free(text);
    return node;
}

} // namespace

int describe_command(int mode, para_message *message, cJSON **reply)
{
    const json_ptr request = parse_request(*message);
    const cJSON *const list = cJSON_GetObjectItemCaseSensitive(data_of(request), "modules");
    if (mode != PARA_GET || (list != nullptr && !cJSON_IsArray(list)))
        return -1;

    const json_ptr answer = start_reply(request);
    cJSON *const described = cJSON_AddObjectToObject(answer.get(), "modules");
    add_modules(described, list);
    json_ptr text(compacted(answer));
    if (text && strlen(text->valuestring) > longest_reply) {
        remove_members(described);
        text.reset(compacted(answer));
    }
    *reply = text.release();
    return 0;
}
