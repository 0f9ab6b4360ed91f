// Settings and values on the command line.
#pragma once

#include <string>
#include <vector>

#include "client/client.h"

// MODULE.MEMBER, or MODULE alone with an empty member.
struct setting_name {
    std::string module;
    std::string member;

    std::string text() const { return member.empty() ? module : module + "." + member; }
};

// Of an object of modules, such as a dump: the value of a setting or, without a member, of a
// module. Null when there is none.
const cJSON *value_in(const cJSON *modules, const setting_name &name);

// Adds a value to such an object, or takes one out.
void add_setting(cJSON *modules, const setting_name &name, json_ptr value);
void remove_setting(cJSON *modules, const setting_name &name);

// The modules of settings, each once, in their order.
std::vector<std::string> modules_of(const std::vector<setting_name> &names);

// Of what has a name.
template <typename named> std::vector<std::string> modules_of(const std::vector<named> &all)
{
    std::vector<setting_name> names;
    for (const named &one : all)
        names.push_back(one.name);
    return modules_of(names);
}

// Parses MODULE[.MEMBER], or throws a failure.
setting_name parse_setting_name(const std::string &text);

struct setting_value {
    setting_name name;
    std::string value;
};

// Parses MODULE.MEMBER=VALUE, or MODULE=VALUE of a module that is itself a setting; or throws a
// failure. The value may be empty, and may contain "=".
setting_value parse_setting_value(const std::string &text);

// The type of values in requests.
enum class value_form { automatic, number, text };

// Parses MEMBER=VALUE, or throws a failure. In automatic form a 32-bit integer is a number.
assignment parse_assignment(const std::string &text, value_form form);
