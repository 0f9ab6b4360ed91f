#include <cstring>

#include "af_table.h"
#include "commands.h"
#include "request.h"

namespace {

struct module_description {
    const char *name;
    const char *command; // which changes the module; null: a set request does
    void (*add_members)(cJSON *members);
};

cJSON *add_member(cJSON *members, const char *name, const char *kind)
{
    cJSON *const member = cJSON_AddObjectToObject(members, name);
    cJSON_AddStringToObject(member, "kind", kind);
    return member;
}

void add_number(cJSON *members, const char *name, int min, int max, int def, int cur)
{
    cJSON *const member = add_member(members, name, "number");
    cJSON_AddNumberToObject(member, "min", min);
    cJSON_AddNumberToObject(member, "max", max);
    cJSON_AddNumberToObject(member, "default", def);
    cJSON_AddNumberToObject(member, "current", cur);
}

void add_af_members(cJSON *members)
{
    for (const af_member &member : af_members) {
        if (is_present(member))
            add_number(members, member.name, para_af_min[member.slot], para_af_max[member.slot],
                       para_af_def[member.slot], para_af_cur[member.slot]);
    }
}

const module_description modules[] = {
    {"af", "lens", add_af_members},
};

// A request without a list asks for every module.
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

void add_module(cJSON *described, const module_description &module)
{
    cJSON *const object = cJSON_AddObjectToObject(described, module.name);
    if (module.command != nullptr)
        cJSON_AddStringToObject(object, "set", module.command);
    module.add_members(cJSON_AddObjectToObject(object, "members"));
}

} // namespace

int describe_command(int mode, para_message *message, cJSON **reply)
{
    const json_ptr request = parse_request(*message);
    const cJSON *const list = cJSON_GetObjectItemCaseSensitive(data_of(request), "modules");
    if (mode != API_GET || (list != nullptr && !cJSON_IsArray(list)))
        return -1;

    json_ptr answer = start_reply(request);
    cJSON *const described = cJSON_AddObjectToObject(answer.get(), "modules");
    for (const module_description &module : modules) {
        if (is_wanted(module.name, list))
            add_module(described, module);
    }
    *reply = answer.release();
    return 0;
}
