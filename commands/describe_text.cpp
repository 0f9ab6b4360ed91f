// Describes modules whose members come from files: pattern modules such as misc, conf modules.
#include <cerrno>

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
// Null when memory ran out.
json_ptr conf_values(const char *module, const char *key)
{
    json_builder asked;
    asked.append(asked.array(asked.root(), key), "all");
    const json_ptr request = asked.take();
    cJSON *values = nullptr;
    if (request != nullptr)
        para_get_conf_opt(key, request->child, &values, module);
    return json_ptr(values);
}

// Those of a pattern module. Null when memory ran out.
json_ptr pattern_values(const char *module, column which)
{
    json_ptr values(cJSON_CreateObject());
    if (Create_Json_Misc_Object(module, values.get(), which == column::def ? 1 : 0) == -ENOMEM)
        values.reset();
    return values;
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
    const json_ptr defaults = pattern_values(module, column::def),
                   values = pattern_values(module, column::current);

    description members(sink);
    if (defaults == nullptr || values == nullptr)
        members.lack();
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
    if (defaults == nullptr || values == nullptr)
        members.lack();
    const cJSON *value = nullptr;
    cJSON_ArrayForEach(value, values.get())
    {
        members.begin_text(value->string);
        add_values(members, defaults, value);
    }
}
