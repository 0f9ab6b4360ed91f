#include <algorithm>

#include "client/outcome.h"
#include "commands.h"
#include "output.h"
#include "report.h"

namespace {

std::vector<setting_value> parse(const std::vector<std::string> &texts)
{
    std::vector<setting_value> values;
    for (const std::string &text : texts) {
        values.push_back(parse_setting_value(text));
        const std::string name = values.back().name.text();
        if (std::count_if(values.begin(), values.end(), [&](const setting_value &value) {
                return value.name.text() == name;
            }) > 1)
            throw failure(USAGE, name + " is given twice");
    }
    return values;
}

std::vector<std::string> modules_of(const std::vector<setting_value> &values)
{
    std::vector<std::string> modules;
    for (const setting_value &value : values) {
        if (std::find(modules.begin(), modules.end(), value.name.module) == modules.end())
            modules.push_back(value.name.module);
    }
    return modules;
}

// Plans all changes before any is sent. If some cannot be sent, prints why and throws a failure.
std::vector<change> plan_all(client &host, const std::vector<setting_value> &values,
                             const std::optional<description> &described, value_form form)
{
    std::vector<change> changes;
    std::vector<failure> failures;
    outcome result;
    for (const setting_value &value : values) {
        try {
            changes.push_back(plan_change(host, value, described, form));
        } catch (const failure &error) {
            if (error.code != REFUSED && error.code != NO_SUCH_SETTING)
                throw;
            (error.code == REFUSED ? result.refused : result.missing)++;
            failures.push_back(error);
        }
    }
    if (failures.empty())
        return changes;
    for (const failure &error : failures)
        print_message(error.what());
    throw failure(result.status(), "nothing was set");
}

// Sends the changes of a module and returns the values that it has afterwards.
json_ptr apply(client &host, const std::string &module, const std::vector<change> &changes)
{
    std::vector<assignment> values;
    std::vector<std::string> members;
    std::string command;
    for (const change &one : changes) {
        if (one.name.module != module)
            continue;
        values.push_back(one.value);
        members.push_back(one.name.member);
        command = one.command;
    }
    host.set(module, command, values);
    json_ptr found(cJSON_CreateObject());
    host.get(module, members, found.get());
    return found;
}

struct options {
    std::vector<std::string> values;
    form_options value;
};

exit_code run(program &all, options &given)
{
    client host(all.server);
    const std::vector<setting_value> requested = parse(given.values);
    const std::vector<std::string> modules = modules_of(requested);
    const std::optional<description> described = describe(host, modules);
    const std::vector<change> changes = plan_all(host, requested, described, given.value.form());

    const json_ptr values(cJSON_CreateObject());
    for (const std::string &module : modules)
        cJSON_AddItemToObject(values.get(), module.c_str(), apply(host, module, changes).release());
    return report_changes(host, changes, values.get(), all.as_json);
}

} // namespace

void add_set(CLI::App &app, program &all)
{
    CLI::App *const set = app.add_subcommand("set", "Change settings and read them back");
    options &given = run_by(set, all, run);
    set->add_option("values", given.values, "Settings and their new values")
        ->type_name("MODULE.MEMBER=VALUE")
        ->required();
    add_form_options(set, given.value);
}
