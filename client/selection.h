// Settings by patterns, such as "af", "isp0.*gain*" and "video?.bitRate".
#pragma once

#include <string>
#include <vector>

#include "client/describe.h"

// A setting of a description, which it points into.
struct described_setting {
    const module_description *module;
    const member_description *member;

    setting_name name() const { return {module->name, member->name}; }
};

// Whether the text may mean several settings, as "isp0.*gain*" does.
bool is_pattern(const std::string &text);

// Whether any of the patterns means the setting; no pattern means all.
bool is_meant(const std::vector<std::string> &patterns, const setting_name &name);

// The modules that the patterns can mean; none: all must be asked for.
std::vector<std::string> modules_in(const std::vector<std::string> &patterns);

// The settings that any of the patterns means, or all for no pattern, in the order of the
// description. A pattern without a dot means whole modules. Throws a failure for a pattern that
// means nothing.
std::vector<described_setting> select_settings(client &host, const description &described,
                                               const std::vector<std::string> &patterns);

// Throws a failure for a pattern that means nothing, if the host describes its settings.
void check_patterns(client &host, const std::vector<std::string> &patterns);

// A description of what the patterns mean. Throws a failure when the host does not describe its
// settings.
description describe_selected(client &host, const std::vector<std::string> &patterns,
                              bool show_secrets);
