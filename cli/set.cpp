#include <algorithm>
#include <cstdio>
#include <optional>

#include "commands.h"
#include "describe.h"
#include "output.h"

namespace {

// One value to set, and what the host tells of the setting, if it does.
struct change {
    setting_name name;
    assignment value;
    const member_description *described;
    std::string command; // that sets the module; empty: a set request
};

std::vector<setting_value> parse(const std::vector<std::string> &texts)
{
    std::vector<setting_value> values;
    for (const std::string &text : texts) {
        values.push_back(parse_setting_value(text));
        const std::string name = values.back().name.text();
        if (std::count_if(values.begin(), values.end(), [&](const setting_value &value) {
                return value.name.text() == name;
            }) > 1)
            throw failure(USAGE, name + " is given twice");
    }
    return values;
}

std::vector<std::string> modules_of(const std::vector<setting_value> &values)
{
    std::vector<std::string> modules;
    for (const setting_value &value : values) {
        if (std::find(modules.begin(), modules.end(), value.name.module) == modules.end())
            modules.push_back(value.name.module);
    }
    return modules;
}

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

// What the user says about the form of values goes before the description.
assignment with_form(const setting_value &value, value_form form)
{
    if (form == value_form::number)
        check_number(value, "--number");
    return {value.name.member, value.value, form == value_form::number};
}

// The host may change a text that it does not know into one that it does, or into 0, so a value
// that cannot be meant is not sent.
assignment with_description(const setting_value &value, const member_description &member)
{
    const bool number = member.kind == "number";
    if (number)
        check_number(value, member.limits());
    if (!member.names.empty())
        check_name(value, member);
    return {value.name.member, value.value, number};
}

// Throws a failure when the value cannot be sent.
change plan(client &host, const setting_value &value, const std::optional<description> &described,
            value_form form)
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

// Plans every change before the first is sent. Names each one that cannot be sent, and throws a
// failure then.
std::vector<change> plan_all(client &host, const std::vector<setting_value> &values,
                             const std::optional<description> &described, value_form form)
{
    std::vector<change> changes;
    std::vector<failure> failures;
    for (const setting_value &value : values) {
        try {
            changes.push_back(plan(host, value, described, form));
        } catch (const failure &error) {
            if (error.code == USAGE || error.code == NO_ANSWER)
                throw;
            failures.push_back(error);
        }
    }
    if (failures.empty())
        return changes;
    for (const failure &error : failures)
        print_message(error.what());
    throw failure(failures.front().code, "nothing was set");
}

// Sends the changes of a module and returns its values from then on.
json_ptr apply(client &host, const std::string &module, const std::vector<change> &changes)
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
    json_ptr found(cJSON_CreateObject());
    host.get(module, members, found.get());
    return found;
}

bool is_taken(const change &wanted, const cJSON *found)
{
    if (wanted.value.number)
        return cJSON_IsNumber(found) && found->valuedouble == *parse_int(wanted.value.value);
    return cJSON_IsString(found) && string_of(found) == wanted.value.value;
}

std::string refusal(const change &wanted, const cJSON *found)
{
    std::string text = wanted.name.text() + ": \"" + wanted.value.value + "\" was not taken, ";
    text += "the value is \"" + value_text(found) + "\"";
    if (wanted.described != nullptr)
        text += " (" + wanted.described->limits() + ")";
    return text;
}

struct counts {
    int taken = 0, refused = 0, missing = 0;

    exit_code judge() const
    {
        if (refused + missing == 0)
            return DONE;
        if (taken > 0)
            return PARTLY_DONE;
        return refused > 0 ? REFUSED : NO_SUCH_SETTING;
    }
};

// Prints what became of each change: values on standard output, the rest as messages.
exit_code report(client &host, const std::vector<change> &changes, const cJSON *values,
                 bool as_json)
{
    counts counted;
    for (const change &one : changes) {
        const cJSON *const module = member_of(values, one.name.module.c_str());
        const cJSON *const found = member_of(module, one.name.member.c_str());
        if (found == nullptr) {
            counted.missing++;
            print_message(no_such_setting(host, one.name));
        } else if (!is_taken(one, found)) {
            counted.refused++;
            print_message(refusal(one, found));
        } else {
            counted.taken++;
            if (!as_json)
                print_value(one.name.text(), found);
        }
    }
    if (as_json)
        puts(print_pretty(values).c_str());
    return counted.judge();
}

} // namespace

exit_code set_settings(client &host, const std::vector<std::string> &texts, value_form form,
                       bool as_json)
{
    const std::vector<setting_value> requested = parse(texts);
    const std::vector<std::string> modules = modules_of(requested);
    const std::optional<description> described = describe(host, modules);
    const std::vector<change> changes = plan_all(host, requested, described, form);

    const json_ptr values(cJSON_CreateObject());
    for (const std::string &module : modules)
        cJSON_AddItemToObject(values.get(), module.c_str(), apply(host, module, changes).release());
    return report(host, changes, values.get(), as_json);
}
