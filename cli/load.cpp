#include <cstdio>
#include <map>

#include "client/change.h"
#include "client/dump.h"
#include "client/outcome.h"
#include "commands.h"
#include "host_table.h"
#include "output.h"
#include "progress.h"
#include "report.h"
#include "several.h"

namespace {

struct options {
    std::string file;
    json_ptr dump; // what it holds
    bool dry_run = false, replace = false, merge = false;
};

struct counts {
    int parsed = 0, changed = 0, unchanged = 0, unknown = 0, refused = 0;

    outcome result() const { return {changed + unchanged, refused, unknown}; }
};

// What is to be set: what the file holds and, to replace, the defaults of all that it lacks.
std::vector<setting_value> wanted_values(const cJSON *dump, const description &described,
                                         bool replaces)
{
    std::vector<setting_value> values;
    const cJSON *module = nullptr, *member = nullptr;
    cJSON_ArrayForEach(module, dump)
    {
        if (!cJSON_IsObject(module))
            values.push_back({{module->string, ""}, value_text(module)});
        cJSON_ArrayForEach(member, module)
        {
            if (cJSON_IsObject(module))
                values.push_back({{module->string, member->string}, value_text(member)});
        }
    }
    if (!replaces)
        return values;
    for (const module_description &each : described.modules) {
        for (const member_description &one : each.members) {
            const setting_name name = {each.name, one.name};
            const bool is_there = value_in(dump, name) != nullptr;
            if (!is_there && !one.read_only && member_of(one.node, "default") != nullptr)
                values.push_back({name, one.default_value});
        }
    }
    return values;
}

bool is_in_force(const change &planned)
{
    return planned.described != nullptr &&
           is_taken(planned, member_of(planned.described->node, "current"));
}

// Prints why what cannot be set cannot be.
std::vector<change> plan(client &host, const std::vector<setting_value> &values,
                         const std::optional<description> &described, counts &counted)
{
    std::vector<change> changes;
    for (const setting_value &value : values) {
        counted.parsed++;
        try {
            change planned = plan_change(host, value, described, {});
            if (is_in_force(planned))
                counted.unchanged++;
            else
                changes.push_back(std::move(planned));
        } catch (const failure &error) {
            const bool is_value_of_module = error.code == USAGE; // where members are expected
            if (error.code != REFUSED && error.code != NO_SUCH_SETTING && !is_value_of_module)
                throw;
            (error.code == NO_SUCH_SETTING ? counted.unknown : counted.refused)++;
            print_failure(error);
        }
    }
    return changes;
}

void set_all(client &host, const std::vector<change> &changes, counts &counted)
{
    outcome result;
    const std::vector<std::string> modules = modules_of(changes);
    progress done("modules", static_cast<double>(modules.size()));
    for (const std::string &module : modules) {
        done.step();
        const json_ptr values(cJSON_CreateObject());
        send_changes(host, module, changes, values.get());
        for (const change &one : changes) {
            if (one.name.module == module)
                report_change(host, one, values.get(), result);
        }
    }
    counted.changed += result.done;
    counted.refused += result.refused;
    counted.unknown += result.missing;
}

// What a setting has now and would have; secrets are not shown.
void print_planned(const change &planned)
{
    const member_description *const member = planned.described;
    const bool secret = member != nullptr && member->secret;
    const cJSON *const now = member != nullptr ? member_of(member->node, "current") : nullptr;
    const std::string then = value_text(planned.value.as_node().get());
    printf("%s: %s -> %s\n", visible(planned.name.text()).c_str(),
           secret ? "secret" : value_cell(now).c_str(), secret ? "secret" : visible(then).c_str());
}

void print(const counts &counted, const options &given, bool as_json)
{
    const char *const changed = given.dry_run ? "would_change" : "changed";
    if (!as_json) {
        printf("%d parsed, %d %s, %d unchanged, %d unknown, %d refused\n", counted.parsed,
               counted.changed, given.dry_run ? "would change" : "changed", counted.unchanged,
               counted.unknown, counted.refused);
        return;
    }
    const json_ptr tree(cJSON_CreateObject());
    const std::pair<const char *, int> members[] = {{"parsed", counted.parsed},
                                                    {changed, counted.changed},
                                                    {"unchanged", counted.unchanged},
                                                    {"unknown", counted.unknown},
                                                    {"refused", counted.refused}};
    for (const auto &[name, number] : members)
        cJSON_AddNumberToObject(tree.get(), name, number);
    print_json_line(tree.get());
}

void prepare(options &given)
{
    given.dump = read_dump(given.file);
}

exit_code run(program &all, options &given)
{
    client host = all.connect();
    const std::optional<description> described = describe_selected(host, {}, true);
    counts counted;
    const std::vector<change> changes =
        plan(host, wanted_values(given.dump.get(), *described, given.replace), described, counted);
    if (given.dry_run)
        counted.changed = static_cast<int>(changes.size());
    else
        set_all(host, changes, counted);
    if (given.dry_run && !all.as_json) {
        for (const change &one : changes)
            print_planned(one);
    }
    print(counted, given, all.as_json);
    return counted.result().status();
}

exit_code compare(const program &all, const host_results &results, const options &given)
{
    if (all.as_json)
        return print_by_host(results);
    const char *const changed = given.dry_run ? "WOULD CHANGE" : "CHANGED";
    print_rows_by_host(results, {"PARSED", changed, "UNCHANGED", "UNKNOWN", "REFUSED"},
                       [](const cJSON *counted) {
                           std::vector<std::string> cells;
                           const cJSON *count = nullptr;
                           cJSON_ArrayForEach(count, counted)
                           {
                               cells.push_back(value_cell(count));
                           }
                           return cells;
                       });
    return status_of(results);
}

} // namespace

void add_load(const arguments &words, program &all)
{
    const auto [load, given] =
        add_command<options>(words, all,
                             {"load", "Set what a dump holds, and count what became of it", run,
                              prepare, compare, file_access::changes});
    load.footer(R"(What cannot be set is named, and the rest is set.

Examples:
  camparam load camera.json --dry-run
  camparam load camera.json
  camparam --host cam1 dump isp0 | camparam --host cam2 load -)");
    load.text(given.file, {"file", "FILE", "The dump; \"-\" is standard input"}).required();
    load.flag(given.dry_run, "--dry-run", "Only tell what would change");
    const argument replace =
        load.flag(given.replace, "--replace", "Reset what the dump does not hold");
    load.flag(given.merge, "--merge", "Leave that alone [default]").excludes(replace);
}
