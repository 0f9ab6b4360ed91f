// Descriptions of settings, from the host's command "describe".
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "client/client.h"
#include "client/setting.h"

struct member_description {
    std::string name; // empty: the module is itself the setting
    std::string kind; // "number", "enum", "text", "json", or one that a later host adds
    std::string min, max, default_value, start, current;
    std::vector<std::string> names;                                    // of an enum
    std::vector<std::pair<std::string, std::string>> names_of_numbers; // number and name
    std::string unit, label, help;
    bool read_only = false; // set requests cannot change it
    bool secret = false;
    const cJSON *node = nullptr; // owned by the answer

    // Such as "number, 0 to 100" or "one of AAC, G711A".
    std::string limits() const;

    // Whether it is a number with a range.
    bool has_limits() const { return !min.empty() && !max.empty(); }

    // The number of a name, or the text itself.
    std::string number_of(const std::string &text) const;
};

// Of a setting with a default.
bool differs_from_default(const member_description &member);
bool differs_from_default(const cJSON *described);

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
// not describe its settings. Values of secrets are absent unless they are to be shown.
std::optional<description> describe(client &host, const std::vector<std::string> &modules,
                                    bool show_secrets = false);

// "no module ..." or "no setting ...", with a similar name if the host describes one.
std::string no_such_setting(client &host, const setting_name &name);
