#include "client/setting.h"

#include <algorithm>
#include <array>

#include "client/failure.h"

namespace {

// Members of every message, which therefore cannot name a module.
bool is_message_field(const std::string &module)
{
    const std::array<const char *, 4> fields = {"msg_type", "msg_from", "msg_name", "msg_id"};
    return std::find(fields.begin(), fields.end(), module) != fields.end();
}

// The position of the "=" after a non-empty name.
size_t find_equals(const std::string &text, const char *shape)
{
    const size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0)
        throw failure(USAGE, "\"" + text + "\" is not of the form " + shape);
    return equals;
}

} // namespace

const cJSON *value_in(const cJSON *modules, const setting_name &name)
{
    const cJSON *const module = member_of(modules, name.module.c_str());
    return name.member.empty() ? module : member_of(module, name.member.c_str());
}

void add_setting(cJSON *modules, const setting_name &name, json_ptr value)
{
    if (name.member.empty())
        cJSON_AddItemToObject(modules, name.module.c_str(), value.release());
    else
        cJSON_AddItemToObject(object_in(modules, name.module), name.member.c_str(),
                              value.release());
}

void remove_setting(cJSON *modules, const setting_name &name)
{
    const char *const module = name.module.c_str();
    if (name.member.empty())
        cJSON_DeleteItemFromObjectCaseSensitive(modules, module);
    else
        cJSON_DeleteItemFromObjectCaseSensitive(cJSON_GetObjectItemCaseSensitive(modules, module),
                                                name.member.c_str());
}

std::vector<std::string> modules_of(const std::vector<setting_name> &names)
{
    std::vector<std::string> modules;
    for (const setting_name &name : names) {
        if (std::find(modules.begin(), modules.end(), name.module) == modules.end())
            modules.push_back(name.module);
    }
    return modules;
}

setting_name parse_setting_name(const std::string &text)
{
    const size_t dot = text.find('.');
    setting_name name = {text.substr(0, dot), ""};
    if (dot != std::string::npos)
        name.member = text.substr(dot + 1);
    if (name.module.empty() || (dot != std::string::npos && name.member.empty()))
        throw failure(USAGE, "\"" + text + "\" is not of the form MODULE or MODULE.MEMBER");
    if (is_message_field(name.module))
        throw failure(NO_SUCH_SETTING, "no module \"" + name.module + "\"");
    return name;
}

setting_value parse_setting_value(const std::string &text)
{
    const size_t equals = find_equals(text, "MODULE.MEMBER=VALUE");
    return {parse_setting_name(text.substr(0, equals)), text.substr(equals + 1)};
}

assignment parse_assignment(const std::string &text, value_form form)
{
    const size_t equals = find_equals(text, "MEMBER=VALUE");
    assignment parsed = {text.substr(0, equals), text.substr(equals + 1), value_type::text};
    const bool is_int = parse_int(parsed.value).has_value();
    if (form == value_form::number && !is_int)
        throw failure(REFUSED, parsed.member + ": \"" + parsed.value + "\" is no 32-bit integer");
    if (is_int && form != value_form::text)
        parsed.type = value_type::json;
    return parsed;
}
