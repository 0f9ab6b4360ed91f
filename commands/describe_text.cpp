// Describes modules whose members come from files: pattern modules such as misc, conf modules.
#include "camparam/conf.h"
#include "camparam/misc.h"
#include "description.h"

namespace {

// A value as "default" or "current", in the form that it has in answers.
enum class column { def, current };

void add_value(description &members, column which, const cJSON *value)
{
    const bool is_default = which == column::def;
    if (cJSON_IsNumber(value))
        is_default ? members.add_default(value->valueint) : members.add_current(value->valueint);
    else
        is_default ? members.add_default(cJSON_GetStringValue(value))
                   : members.add_current(cJSON_GetStringValue(value));
}

void add_names(description &members, const char *module, const char *member)
{
    const char *name = nullptr;
    for (int i = 0; (name = para_get_json_emum_str(module, member, i)) != nullptr; i++)
        members.add_name(name);
}

// False for a member without a usable range: its kind is unknown, and set requests ignore it.
bool begin_json_member(description &members, const char *module, const char *name)
{
    switch (peek_json_enum_type(module, name)) {
    case PARA_KIND_NUMBER:
        members.begin_number(name, para_get_json_min(module, name),
                             para_get_json_max(module, name));
        return true;
    case PARA_KIND_ENUM:
        members.begin_enum(name);
        add_names(members, module, name);
        return true;
    default:
        return false;
    }
}

// All values of a conf module: the defaults for a key that contains "def", else the current ones.
json_ptr conf_values(const char *module, const char *key)
{
    json_builder request;
    cJSON *const names = request.array(request.root(), key);
    request.append(names, "all");
    cJSON *values = nullptr;
    if (names != nullptr)
        para_get_conf_opt(key, names, &values, module);
    return json_ptr(values);
}

void add_values(description &members, const json_ptr &defaults, const cJSON *current)
{
    add_value(members, column::def,
              cJSON_GetObjectItemCaseSensitive(defaults.get(), current->string));
    add_value(members, column::current, current);
}

} // namespace

void describe_json_module(const char *module, member_sink &sink)
{
    const json_ptr defaults(cJSON_CreateObject()), values(cJSON_CreateObject());
    Create_Json_Misc_Object(module, defaults.get(), 1);
    Create_Json_Misc_Object(module, values.get(), 0);

    description members(sink);
    const cJSON *value = nullptr;
    cJSON_ArrayForEach(value, values.get())
    {
        if (begin_json_member(members, module, value->string))
            add_values(members, defaults, value);
    }
}

void describe_conf_module(const char *module, member_sink &sink)
{
    const json_ptr defaults = conf_values(module, "def"), values = conf_values(module, "");

    description members(sink);
    const cJSON *value = nullptr;
    cJSON_ArrayForEach(value, values.get())
    {
        members.begin_text(value->string);
        add_values(members, defaults, value);
    }
}
