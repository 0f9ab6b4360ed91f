#include "client/change.h"

#include <algorithm>

namespace {

void check_number(const setting_value &value, const std::string &limits)
{
    if (!parse_int(value.value))
        throw failure(REFUSED, value.name.text() + ": \"" + value.value +
                                   "\" is no 32-bit integer (" + limits + ")");
}

void check_name(const setting_value &value, const member_description &member)
{
    if (std::find(member.names.begin(), member.names.end(), value.value) == member.names.end())
        throw failure(REFUSED, value.name.text() + ": no \"" + value.value + "\" here (" +
                                   member.limits() + ")");
}

// --number and --text override the description.
assignment with_form(const setting_value &value, value_form form)
{
    if (form == value_form::number)
        check_number(value, "--number");
    return {value.name.member, value.value, form == value_form::number};
}

// An invalid value is not sent: the store would match a name by its beginning, or take an unknown
// one for 0.
assignment with_description(const setting_value &value, const member_description &member)
{
    if (member.read_only)
        throw failure(REFUSED, value.name.text() + ": no request can change it");
    const bool number = member.kind == "number";
    setting_value sent = value;
    if (number)
        sent.value = member.number_of(value.value);
    if (number)
        check_number(sent, member.limits());
    if (!member.names.empty())
        check_name(value, member);
    return {value.name.member, sent.value, number};
}

} // namespace

change plan_change(client &host, const setting_value &value,
                   const std::optional<description> &described, value_form form)
{
    const module_description *const module =
        described ? described->find(value.name.module) : nullptr;
    const member_description *const member =
        module != nullptr ? module->find(value.name.member) : nullptr;
    const std::string command = module != nullptr ? module->command : "";
    if (form != value_form::automatic)
        return {value.name, with_form(value, form), member, command};
    if (!described)
        throw failure(USAGE, "the host does not describe its settings; say with --number or "
                             "--text how their values are sent");
    if (member == nullptr)
        throw failure(NO_SUCH_SETTING, no_such_setting(host, value.name));
    return {value.name, with_description(value, *member), member, command};
}

bool is_taken(const change &wanted, const cJSON *found)
{
    if (wanted.value.number)
        return cJSON_IsNumber(found) && found->valuedouble == *parse_int(wanted.value.value);
    return cJSON_IsString(found) && string_of(found) == wanted.value.value;
}
