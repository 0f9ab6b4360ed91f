// Changes to settings: planning what to send, and reporting the result.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "describe.h"
#include "failure.h"

// One value to set.
struct change {
    setting_name name;
    assignment value;
    const member_description *described; // null: the host does not describe the member
    std::string command;                 // that sets the module; empty: a set request
};

// Chooses the type of the value in the request, as told by the user or else by the description.
// Throws a failure when the value cannot be sent.
change plan_change(client &host, const setting_value &value,
                   const std::optional<description> &described, value_form form);

// Compares the changes with the values that were read back, an object for each module. Prints the
// accepted values on standard output and the rest as messages.
exit_code report_changes(client &host, const std::vector<change> &changes, const cJSON *values,
                         bool as_json);
