// A setting that is to change: what to send, and what became of it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "describe.h"
#include "failure.h"

// One value to set, and what the host tells of the setting, if it does.
struct change {
    setting_name name;
    assignment value;
    const member_description *described;
    std::string command; // that sets the module; empty: a set request
};

// Decides how the value travels, by what the user says about its form or else by the description.
// Throws a failure when the value cannot be sent.
change plan_change(client &host, const setting_value &value,
                   const std::optional<description> &described, value_form form);

// Prints what became of each change, judged by the values as they were read back, an object for
// each module: values on standard output, the rest as messages.
exit_code report_changes(client &host, const std::vector<change> &changes, const cJSON *values,
                         bool as_json);
