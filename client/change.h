// Changes to settings: planning what to send.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "client/describe.h"
#include "client/failure.h"

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

// Whether the value that was read back is the wanted one.
bool is_taken(const change &wanted, const cJSON *found);
