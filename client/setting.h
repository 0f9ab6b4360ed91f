// Settings and values on the command line.
#pragma once

#include <string>

#include "client/client.h"

// MODULE.MEMBER, or MODULE alone with an empty member.
struct setting_name {
    std::string module;
    std::string member;

    std::string text() const { return member.empty() ? module : module + "." + member; }
};

// Parses MODULE[.MEMBER], or throws a failure.
setting_name parse_setting_name(const std::string &text);

struct setting_value {
    setting_name name;
    std::string value;
};

// Parses MODULE.MEMBER=VALUE, or throws a failure. The value may be empty, and may contain "=".
setting_value parse_setting_value(const std::string &text);

// The type of values in requests.
enum class value_form { automatic, number, text };

// Parses MEMBER=VALUE, or throws a failure. In automatic form a 32-bit integer is a number.
assignment parse_assignment(const std::string &text, value_form form);
