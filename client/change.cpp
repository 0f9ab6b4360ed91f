#include "client/change.h"

#include <algorithm>

namespace {

constexpr size_t longest_text = 255; // that the store reads back

[[noreturn]] void refuse(const setting_value &value, const std::string &reason)
{
    throw failure(REFUSED, value.name.text() + ": " + reason);
}

std::string in_quotes(const setting_value &value)
{
    return "\"" + value.value + "\"";
}

void check_number(const setting_value &value, const std::string &limits)
{
    if (!parse_int(value.value))
        refuse(value, in_quotes(value) + " is no 32-bit integer (" + limits + ")");
}

void check_range(const setting_value &value, const member_description &member)
{
    check_number(value, member.limits());
    const std::optional<int> min = parse_int(member.min), max = parse_int(member.max);
    const int number = parse_int(value.value).value_or(0);
    if (min && max && (number < *min || number > *max))
        refuse(value, in_quotes(value) + " is out of range (" + member.limits() + ")");
}

void check_name(const setting_value &value, const member_description &member)
{
    if (std::find(member.names.begin(), member.names.end(), value.value) == member.names.end())
        refuse(value, "no " + in_quotes(value) + " here (" + member.limits() + ")");
}

void check_length(const setting_value &value)
{
    if (value.value.size() > longest_text)
        refuse(value, "a text of " + std::to_string(value.value.size()) +
                          " bytes, and the host keeps at most 255");
}

// --number and --text override the description.
assignment with_form(const setting_value &value, value_form form)
{
    if (form == value_form::number)
        check_number(value, "--number");
    else
        check_length(value);
    return {value.name.member, value.value, form == value_form::number};
}

// An invalid value is not sent: the store would match a name by its beginning, or take an unknown
// one for 0.
assignment with_description(const setting_value &value, const member_description &member)
{
    if (member.kind == "number") {
        const setting_value sent = {value.name, member.number_of(value.value)};
        check_range(sent, member);
        return {value.name.member, sent.value, true};
    }
    if (!member.names.empty())
        check_name(value, member);
    check_length(value);
    return {value.name.member, value.value, false};
}

assignment with_rules(const setting_value &value, const member_description *member,
                      const change_rules &rules)
{
    if (member != nullptr && member->read_only)
        refuse(value, "no request can change it");
    if (rules.form != value_form::automatic)
        return with_form(value, rules.form);
    if (member == nullptr)
        return with_form(value, value_form::text);
    return with_description(value, *member);
}

} // namespace

change plan_change(client &host, const setting_value &value,
                   const std::optional<description> &described, const change_rules &rules)
{
    const module_description *const module =
        described ? described->find(value.name.module) : nullptr;
    const member_description *const member =
        module != nullptr ? module->find(value.name.member) : nullptr;
    if (!described && rules.form == value_form::automatic)
        throw failure(USAGE, "the host does not describe its settings; say with --number or "
                             "--text how their values are sent");
    if (described && member == nullptr && !rules.may_create)
        throw failure(NO_SUCH_SETTING, no_such_setting(host, value.name));
    return {value.name, with_rules(value, member, rules), member,
            module != nullptr ? module->command : ""};
}

bool is_taken(const change &wanted, const cJSON *found)
{
    if (wanted.value.number)
        return cJSON_IsNumber(found) && found->valuedouble == *parse_int(wanted.value.value);
    return cJSON_IsString(found) && string_of(found) == wanted.value.value;
}

void send_changes(client &host, const std::string &module, const std::vector<change> &changes,
                  cJSON *found)
{
    std::vector<assignment> values;
    std::vector<std::string> members;
    std::string command;
    for (const change &one : changes) {
        if (one.name.module != module)
            continue;
        values.push_back(one.value);
        members.push_back(one.name.member);
        command = one.command;
    }
    host.set(module, command, values);
    host.get(module, members, found);
}

std::vector<std::string> modules_of(const std::vector<change> &changes)
{
    std::vector<std::string> modules;
    for (const change &one : changes) {
        if (std::find(modules.begin(), modules.end(), one.name.module) == modules.end())
            modules.push_back(one.name.module);
    }
    return modules;
}
