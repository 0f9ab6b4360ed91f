// Settings as users name them on the command line.
#pragma once

#include <string>

#include "client.h"

// MODULE.MEMBER, or MODULE alone with an empty member.
struct setting_name {
    std::string module;
    std::string member;

    std::string text() const { return member.empty() ? module : module + "." + member; }
};

// MODULE[.MEMBER]. Throws a failure for a text that cannot name a setting.
setting_name parse_setting_name(const std::string &text);

struct setting_value {
    setting_name name;
    std::string value;
};

// MODULE.MEMBER=VALUE; the value may be empty and hold further "=".
setting_value parse_setting_value(const std::string &text);

// How values on the command line travel.
enum class value_form { automatic, number, text };

// MEMBER=VALUE. In automatic form, what reads as a 32-bit integer is a number.
assignment parse_assignment(const std::string &text, value_form form);
