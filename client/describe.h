// Descriptions of settings, from the host's command "describe".
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "client/client.h"
#include "client/setting.h"

struct member_description {
    std::string name;
    std::string kind; // "number", "enum", "text", or one that a later host adds
    std::string min, max, default_value, current;
    std::vector<std::string> names; // of an enum
    bool read_only;                 // set requests cannot change it
    const cJSON *node;              // owned by the answer

    // Such as "number, 0 to 100" or "one of AAC, G711A".
    std::string limits() const;
};

struct module_description {
    std::string name;
    std::string command; // that sets members; empty: set requests do
    std::vector<member_description> members;

    const member_description *find(const std::string &member) const;
};

struct description {
    std::vector<module_description> modules;
    json_ptr answer; // owns the nodes

    const module_description *find(const std::string &module) const;
};

// Requests the description of some modules, or of all for an empty list. Nothing if the host does
// not describe its settings.
std::optional<description> describe(client &host, const std::vector<std::string> &modules);

// "no module ..." or "no setting ...", with a similar name if the host describes one.
std::string no_such_setting(client &host, const setting_name &name);
