#include "client/change.h"

#include <algorithm>

namespace {

constexpr size_t longest_text = 255; // that the store reads back

// Makes one value ready to be sent, or throws a failure that says why it is not.
class planning {
public:
    // Null: the host does not describe the setting.
    planning(const setting_value &of, const member_description *described)
        : value(of), member(described)
    {
    }

    assignment plan(const change_rules &rules) const
    {
        if (member != nullptr && member->read_only)
            refuse("no request can change it");
        if (rules.form != value_form::automatic)
            return by_form(rules.form);
        return member != nullptr ? by_description() : by_form(value_form::text);
    }

private:
    // --number and --text override the description.
    assignment by_form(value_form form) const
    {
        if (form == value_form::number) {
            check_int(value.value, "--number");
            return as(value_type::json, value.value);
        }
        check_length();
        return as(value_type::text, value.value);
    }

    // An invalid value is not sent: the store would match a name by its beginning, or take an
    // unknown one for 0.
    assignment by_description() const
    {
        const bool is_number = member->kind == "number";
        if (member->kind == "json" || (is_number && !member->has_limits()))
            return as_json();
        if (is_number) {
            const std::string number = member->number_of(value.value);
            check_range(number);
            return as(value_type::json, number);
        }
        if (!member->names.empty())
            check_name();
        check_length();
        return as(value_type::text, value.value);
    }

    // Of the host's own modules: numbers of any size, and whatever else JSON has.
    assignment as_json() const
    {
        const json_ptr parsed = parse_whole_json(value.value);
        if (member->kind == "number" && !cJSON_IsNumber(parsed.get()))
            refuse(shown() + " is no number");
        if (parsed == nullptr)
            refuse(shown() + " is no JSON");
        return as(value_type::json, value.value);
    }

    int check_int(const std::string &number, const std::string &limits) const
    {
        const std::optional<int> parsed = parse_int(number);
        if (!parsed)
            refuse(shown() + " is no 32-bit integer (" + limits + ")");
        return *parsed;
    }

    void check_range(const std::string &number) const
    {
        const int wanted = check_int(number, member->limits());
        const std::optional<int> min = parse_int(member->min), max = parse_int(member->max);
        if (min && max && (wanted < *min || wanted > *max))
            refuse(shown() + " is out of range (" + member->limits() + ")");
    }

    void check_name() const
    {
        const std::vector<std::string> &names = member->names;
        if (std::find(names.begin(), names.end(), value.value) == names.end())
            refuse("no " + shown() + " here (" + member->limits() + ")");
    }

    void check_length() const
    {
        if (value.value.size() > longest_text)
            refuse("a text of " + std::to_string(value.value.size()) +
                   " bytes, and the host keeps at most 255");
    }

    [[noreturn]] void refuse(const std::string &reason) const
    {
        throw failure(REFUSED, value.name.text() + ": " + reason);
    }

    std::string shown() const { return shown_value(value.value, member); }

    assignment as(value_type type, const std::string &text) const
    {
        return {value.name.member, text, type};
    }

    const setting_value &value;
    const member_description *const member;
};

} // namespace

std::string shown_value(const std::string &value, const member_description *member)
{
    return member != nullptr && member->secret ? "the value" : "\"" + value + "\"";
}

change plan_change(client &host, const setting_value &value,
                   const std::optional<description> &described, const change_rules &rules)
{
    const module_description *const module =
        described ? described->find(value.name.module) : nullptr;
    const member_description *const member =
        module != nullptr ? module->find(value.name.member) : nullptr;
    if (value.name.member.empty() && module != nullptr && member == nullptr)
        throw failure(USAGE, "\"" + value.name.module +
                                 "\" is a module; name a setting of it, as in \"" +
                                 value.name.module + ".MEMBER=VALUE\"");
    if (!described && rules.form == value_form::automatic)
        throw failure(USAGE, "the host does not describe its settings; say with --number or "
                             "--text how their values are sent");
    if (described && member == nullptr && !rules.may_create)
        throw failure(NO_SUCH_SETTING, no_such_setting(host, value.name));
    return {value.name, planning(value, member).plan(rules), member,
            module != nullptr ? module->command : "", described && member == nullptr};
}

bool is_taken(const change &wanted, const cJSON *found)
{
    if (wanted.value.type == value_type::json)
        return cJSON_Compare(wanted.value.as_node().get(), found, 1) != 0;
    return cJSON_IsString(found) && string_of(found) == wanted.value.value;
}

void send_changes(client &host, const std::string &module, const std::vector<change> &changes,
                  cJSON *modules)
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
    const bool is_itself = members.size() == 1 && members[0].empty();
    host.get(module, is_itself ? std::vector<std::string>{"all"} : members, modules);
}
