#include "client/selection.h"

#include <fnmatch.h>

#include <algorithm>

#include "client/failure.h"

bool is_pattern(const std::string &text)
{
    return text.find_first_of("*?[\\") != std::string::npos;
}

namespace {

std::string module_part(const std::string &pattern)
{
    return pattern.substr(0, pattern.find('.'));
}

bool is_meant(const std::string &pattern, const setting_name &name)
{
    const bool whole_modules = pattern.find('.') == std::string::npos;
    return fnmatch(pattern.c_str(), (whole_modules ? name.module : name.text()).c_str(), 0) == 0;
}

[[noreturn]] void nothing_meant(client &host, const std::string &pattern)
{
    if (is_pattern(pattern) && pattern.find('.') == std::string::npos)
        throw failure(NO_SUCH_SETTING, "no module matches \"" + pattern +
                                           "\"; settings of all "
                                           "modules match \"*." +
                                           pattern + "\"");
    if (is_pattern(pattern))
        throw failure(NO_SUCH_SETTING, "no setting matches \"" + pattern + "\"");
    throw failure(NO_SUCH_SETTING, no_such_setting(host, parse_setting_name(pattern)));
}

// A module without members is meant, too, and has nothing to show.
bool is_module(const description &described, const std::string &pattern)
{
    return std::any_of(described.modules.begin(), described.modules.end(),
                       [&](const module_description &module) {
                           return fnmatch(pattern.c_str(), module.name.c_str(), 0) == 0;
                       });
}

} // namespace

bool is_meant(const std::vector<std::string> &patterns, const setting_name &name)
{
    return patterns.empty() ||
           std::any_of(patterns.begin(), patterns.end(),
                       [&](const std::string &pattern) { return is_meant(pattern, name); });
}

std::vector<std::string> modules_in(const std::vector<std::string> &patterns)
{
    std::vector<std::string> modules;
    for (const std::string &pattern : patterns) {
        if (is_pattern(module_part(pattern)))
            return {};
        modules.push_back(module_part(pattern));
    }
    return modules;
}

namespace {

// Whether a pattern means the setting; marks those that do.
bool is_meant(const std::vector<std::string> &patterns, const setting_name &name,
              std::vector<bool> &used)
{
    bool meant = patterns.empty();
    for (size_t i = 0; i < patterns.size(); i++) {
        if (is_meant(patterns[i], name))
            meant = used[i] = true;
    }
    return meant;
}

} // namespace

std::vector<described_setting> select_settings(client &host, const description &described,
                                               const std::vector<std::string> &patterns)
{
    std::vector<bool> used(patterns.size(), false);
    std::vector<described_setting> selected;
    for (const module_description &module : described.modules) {
        for (const member_description &member : module.members) {
            const described_setting setting = {&module, &member};
            if (is_meant(patterns, setting.name(), used))
                selected.push_back(setting);
        }
    }
    for (size_t i = 0; i < patterns.size(); i++) {
        if (!used[i] && !is_module(described, patterns[i]))
            nothing_meant(host, patterns[i]);
    }
    return selected;
}

void check_patterns(client &host, const std::vector<std::string> &patterns)
{
    for (const std::string &pattern : patterns)
        parse_setting_name(pattern);
    if (patterns.empty())
        return;
    if (const std::optional<description> described = describe(host, modules_in(patterns)))
        select_settings(host, *described, patterns);
}

description describe_selected(client &host, const std::vector<std::string> &patterns,
                              bool show_secrets)
{
    for (const std::string &pattern : patterns)
        parse_setting_name(pattern);
    std::optional<description> described = describe(host, modules_in(patterns), show_secrets);
    if (!described)
        throw failure(OTHER, "the host does not describe its settings");
    return std::move(*described);
}
