#include <cstdio>

#include "client/describe.h"
#include "commands.h"
#include "get.h"
#include "output.h"

namespace {

using table_rows = std::vector<std::vector<std::string>>;

const std::vector<std::string> header = {"NAME", "KIND", "MIN", "MAX", "DEFAULT", "VALUE", ""};

// Cells are never empty, so that columns can be parsed.
std::string cell(const std::string &text)
{
    return text.empty() ? "-" : visible(text);
}

// An empty text is a value, unlike an absent member.
std::string value_cell(const member_description &member, const char *key, const std::string &text)
{
    return member_of(member.node, key) != nullptr && text.empty() ? "\"\"" : cell(text);
}

std::vector<std::string> row_of(const std::string &name, const member_description &member)
{
    return {visible(name),
            cell(member.kind),
            cell(member.min),
            cell(member.max),
            value_cell(member, "default", member.default_value),
            value_cell(member, "current", member.current),
            member.current != member.default_value ? "*" : ""};
}

struct listing {
    table_rows rows = {header};
    json_ptr tree{cJSON_CreateObject()};
    std::string names; // of the last member's values, if it is an enum
};

// Adds the module's members, or only the wanted one.
void add_module(listing &list, const module_description &module, const std::string &wanted)
{
    cJSON *const object = cJSON_AddObjectToObject(list.tree.get(), module.name.c_str());
    for (const member_description &member : module.members) {
        if (!wanted.empty() && wanted != member.name)
            continue;
        list.rows.push_back(row_of(setting_name{module.name, member.name}.text(), member));
        cJSON_AddItemToObject(object, member.name.c_str(), cJSON_Duplicate(member.node, 1));
        list.names = member.names.empty() ? "" : member.limits();
    }
}

void print_list(const listing &list, const setting_name &wanted, bool as_json)
{
    if (as_json) {
        puts(print_pretty(list.tree.get()).c_str());
        return;
    }
    print_table(list.rows);
    if (!wanted.member.empty() && !list.names.empty())
        printf("%s\n", visible(list.names).c_str());
}

// A host without descriptions still answers with the values of a module.
exit_code list_values(client &host, const setting_name &wanted, bool as_json)
{
    if (wanted.module.empty())
        throw failure(OTHER, "the host does not describe its settings; name a module, such as "
                             "\"camparam list af\"");
    return print_settings(host, {wanted.text()}, as_json);
}

struct options {
    std::string filter;
};

exit_code run(program &all, options &given)
{
    client host(all.server);
    const std::string &filter = given.filter;
    const setting_name wanted = filter.empty() ? setting_name{} : parse_setting_name(filter);
    std::vector<std::string> modules;
    if (!filter.empty())
        modules.push_back(wanted.module);
    const std::optional<description> described = describe(host, modules);
    if (!described)
        return list_values(host, wanted, all.as_json);

    const module_description *const found = described->find(wanted.module);
    const bool is_known =
        found != nullptr && (wanted.member.empty() || found->find(wanted.member) != nullptr);
    if (!filter.empty() && !is_known)
        throw failure(NO_SUCH_SETTING, no_such_setting(host, wanted));

    listing list;
    for (const module_description &module : described->modules) {
        if (wanted.module.empty() || wanted.module == module.name)
            add_module(list, module, wanted.member);
    }
    print_list(list, wanted, all.as_json);
    return DONE;
}

} // namespace

void add_list(CLI::App &app, program &all)
{
    CLI::App *const list = app.add_subcommand(
        "list", "Show settings: kind, range, default and value; * marks a changed one");
    list->add_option("setting", run_by(list, all, run).filter, "Only this module or setting")
        ->type_name("MODULE[.MEMBER]");
}
