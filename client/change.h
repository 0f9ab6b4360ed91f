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
    bool is_new = false;                 // asked for although the host describes no such setting
};

struct change_rules {
    value_form form = value_form::automatic;
    bool may_create = false; // settings that the host does not describe
};

// A value in quotes, as messages show it; a secret stands in none. The description may be null.
std::string shown_value(const std::string &value, const member_description *member);

// Checks the value against the description and chooses its type, unless the user has. Throws a
// failure when it cannot be sent, or would not be taken.
change plan_change(client &host, const setting_value &value,
                   const std::optional<description> &described, const change_rules &rules);

// Whether the value that was read back is the wanted one.
bool is_taken(const change &wanted, const cJSON *found);

// Sends the changes of a module and adds the values that are then in force to an object of modules.
void send_changes(client &host, const std::string &module, const std::vector<change> &changes,
                  cJSON *modules);
