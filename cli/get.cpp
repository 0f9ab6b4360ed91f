#include <algorithm>
#include <cstdio>

#include "client/describe.h"
#include "client/outcome.h"
#include "client/selection.h"
#include "commands.h"
#include "get.h"
#include "host_table.h"
#include "list.h"
#include "output.h"

namespace {

// The members to request from a module; only "all" if the module itself is named.
std::vector<std::string> members_of(const std::vector<setting_name> &names,
                                    const std::string &module)
{
    std::vector<std::string> members;
    for (const setting_name &name : names) {
        if (name.module == module && name.member.empty())
            return {"all"};
        if (name.module == module)
            members.push_back(name.member);
    }
    return members;
}

// Sends one request per module. The tree holds an object for each module that answered.
json_ptr ask(client &host, const std::vector<setting_name> &names)
{
    json_ptr values(cJSON_CreateObject());
    for (const std::string &module : modules_of(names))
        host.get(module, members_of(names, module), values.get());
    return values;
}

// A member that set requests cannot change, or that can be asked for with its module alone.
bool is_read_only(const module_description *module, const char *name)
{
    const member_description *const member = module != nullptr ? module->find(name) : nullptr;
    return module != nullptr && (member == nullptr || member->read_only);
}

// The description may be null.
void print_values(const setting_name &name, const cJSON *found, const module_description *module)
{
    if (!name.member.empty() || !cJSON_IsObject(found)) {
        print_value(name.text(), found);
        return;
    }
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, found)
    {
        print_value(setting_name{name.module, member->string}.text(), member,
                    is_read_only(module, member->string) ? " (read-only)" : "");
    }
}

// The modules that are asked for as a whole; empty from a host that does not describe any.
description describe_whole(client &host, const std::vector<setting_name> &names)
{
    std::vector<std::string> modules;
    for (const setting_name &name : names) {
        if (name.member.empty())
            modules.push_back(name.module);
    }
    std::optional<description> described;
    if (!modules.empty())
        described = describe(host, modules);
    return described ? std::move(*described) : description{};
}

// Secrets that are not asked for by their names. Says so.
void leave_out_secrets(cJSON *values, const description &described,
                       const std::vector<setting_name> &names)
{
    const auto is_named = [&](const setting_name &secret) {
        return std::any_of(names.begin(), names.end(),
                           [&](const setting_name &name) { return name.text() == secret.text(); });
    };
    for (const module_description &module : described.modules) {
        for (const member_description &member : module.members) {
            const setting_name name = {module.name, member.name};
            if (!member.secret || is_named(name) || value_in(values, name) == nullptr)
                continue;
            remove_setting(values, name);
            print_message(name.text() + " is a secret, which --show-secrets shows");
        }
    }
}

} // namespace

exit_code print_settings(client &host, const std::vector<std::string> &texts, const program &all)
{
    std::vector<setting_name> names;
    for (const std::string &text : texts)
        names.push_back(parse_setting_name(text));

    const json_ptr values = ask(host, names);
    const description described = describe_whole(host, names);
    if (!all.show_secrets)
        leave_out_secrets(values.get(), described, names);
    std::vector<setting_name> missing;
    for (const setting_name &name : names) {
        const cJSON *const found = value_in(values.get(), name);
        if (found == nullptr)
            missing.push_back(name);
        else if (!all.as_json)
            print_values(name, found, described.find(name.module));
    }
    if (all.as_json)
        print_json(values.get());

    for (const setting_name &name : missing)
        print_failure({NO_SUCH_SETTING, no_such_setting(host, name)});
    outcome result;
    result.missing = static_cast<int>(missing.size());
    result.done = static_cast<int>(names.size() - missing.size());
    return result.status();
}

exit_code compare_values(const program &all, const host_results &results)
{
    return print_settings_by_host(all, results, value_cell);
}

namespace {

struct options {
    std::vector<std::string> names;
};

// The settings that patterns mean, in their place.
std::vector<std::string> without_patterns(client &host, const std::vector<std::string> &texts,
                                          bool show_secrets)
{
    std::vector<std::string> names;
    for (const std::string &text : texts) {
        if (!is_pattern(text)) {
            names.push_back(text);
            continue;
        }
        const description described = describe_selected(host, {text}, false);
        const size_t before = names.size();
        for (const described_setting &setting : select_settings(host, described, {text})) {
            if (!setting.member->read_only && (!setting.member->secret || show_secrets))
                names.push_back(setting.name().text());
        }
        if (names.size() == before)
            throw failure(NO_SUCH_SETTING,
                          "no setting that matches \"" + text + "\" can be asked for by its name");
    }
    return names;
}

exit_code run(program &all, options &given)
{
    client host = all.connect();
    if (given.names.empty())
        return print_modules(host, {}, all);
    return print_settings(host, without_patterns(host, given.names, all.show_secrets), all);
}

exit_code compare(const program &all, const host_results &results, const options &)
{
    return compare_values(all, results);
}

} // namespace

void add_get(const arguments &words, program &all)
{
    const auto [get, given] = add_command<options>(
        words, all,
        {"get", "Print values, one per line", run, nullptr, compare, file_access::reads});
    get.footer(R"(Examples:
  camparam get                    the modules
  camparam get af                 every value of a module
  camparam get af.zoom_value video0.gop
  camparam get 'isp0.*gain*')");
    get.texts(given.names, {"settings", "GLOB", "Modules or settings; none: lists the modules"});
}
