// Describes modules whose members come from files: pattern modules such as misc, conf modules.
#include "camparam/conf.h"
#include "camparam/misc.h"
#include "description.h"

namespace {

std::vector<std::string> names_of(const char *module, const char *member)
{
    std::vector<std::string> names;
    const char *name = nullptr;
    for (int i = 0; (name = para_get_json_emum_str(module, member, i)) != nullptr; i++)
        names.emplace_back(name);
    return names;
}

// Null for a member without a usable range: its kind is unknown, and set requests ignore it.
cJSON *add_json_member(cJSON *members, const char *module, const char *name)
{
    switch (peek_json_enum_type(module, name)) {
    case PARA_KIND_NUMBER:
        return add_number_member(members, name, para_get_json_min(module, name),
                                 para_get_json_max(module, name));
    case PARA_KIND_ENUM:
        return add_enum_member(members, name, names_of(module, name));
    default:
        return nullptr;
    }
}

// All values of a conf module: the defaults for a key that contains "def", else the current ones.
json_ptr conf_values(const char *module, const char *key)
{
    const json_ptr request(cJSON_CreateObject());
    cJSON *const names = cJSON_AddArrayToObject(request.get(), key);
    cJSON_AddItemToArray(names, cJSON_CreateString("all"));
    cJSON *values = nullptr;
    para_get_conf_opt(key, names, &values, module);
    return json_ptr(values);
}

cJSON *copy_of(const json_ptr &values, const char *name)
{
    return cJSON_Duplicate(cJSON_GetObjectItemCaseSensitive(values.get(), name), 1);
}

} // namespace

json_ptr describe_json_module(const char *module)
{
    const json_ptr defaults(cJSON_CreateObject()), values(cJSON_CreateObject());
    Create_Json_Misc_Object(module, defaults.get(), 1);
    Create_Json_Misc_Object(module, values.get(), 0);

    json_ptr members(cJSON_CreateObject());
    const cJSON *value = nullptr;
    cJSON_ArrayForEach(value, values.get())
    {
        cJSON *const added = add_json_member(members.get(), module, value->string);
        if (added != nullptr)
            add_values(added, copy_of(defaults, value->string), cJSON_Duplicate(value, 1));
    }
    return members;
}

json_ptr describe_conf_module(const char *module)
{
    const json_ptr defaults = conf_values(module, "def"), values = conf_values(module, "");

    json_ptr members(cJSON_CreateObject());
    const cJSON *value = nullptr;
    cJSON_ArrayForEach(value, values.get())
    {
        cJSON *const added = add_text_member(members.get(), value->string);
        add_values(added, copy_of(defaults, value->string), cJSON_Duplicate(value, 1));
    }
    return members;
}
