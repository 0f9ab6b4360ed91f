#include <cstdio>

#include "client/dump.h"
#include "commands.h"
#include "host_table.h"
#include "output.h"
#include "several.h"

namespace {

struct options {
    std::string file;
    json_ptr dump; // what it holds; null: no file
    std::vector<std::string> patterns;
};

struct difference {
    std::string name;
    json_ptr expected, found; // null: none
};

json_ptr copy_of(const cJSON *node)
{
    return json_ptr(node != nullptr ? cJSON_Duplicate(node, 1) : nullptr);
}

std::vector<difference> from_defaults(const std::vector<described_setting> &settings)
{
    std::vector<difference> found;
    for (const described_setting &setting : settings) {
        const cJSON *const node = setting.member->node;
        if (differs_from_default(*setting.member))
            found.push_back({setting.name().text(), copy_of(member_of(node, "default")),
                             copy_of(member_of(node, "current"))});
    }
    return found;
}

// The members of both, or the values themselves where they are no objects.
void compare(const std::string &module, const cJSON *expected, const cJSON *found,
             const std::vector<std::string> &patterns, std::vector<difference> &into)
{
    const auto add = [&](const std::string &member, const cJSON *left, const cJSON *right) {
        const setting_name name = {module, member};
        if (is_meant(patterns, name) && cJSON_Compare(left, right, 1) == 0)
            into.push_back({name.text(), copy_of(left), copy_of(right)});
    };
    if (!cJSON_IsObject(expected) && !cJSON_IsObject(found)) {
        add("", expected, found);
        return;
    }
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, expected)
    {
        add(member->string, member, member_of(found, member->string));
    }
    cJSON_ArrayForEach(member, found)
    {
        if (member_of(expected, member->string) == nullptr)
            add(member->string, nullptr, member);
    }
}

std::vector<difference> from_dump(const cJSON *expected, const cJSON *found,
                                  const std::vector<std::string> &patterns)
{
    std::vector<difference> differences;
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, expected)
    {
        compare(module->string, module, member_of(found, module->string), patterns, differences);
    }
    cJSON_ArrayForEach(module, found)
    {
        if (member_of(expected, module->string) == nullptr)
            compare(module->string, nullptr, module, patterns, differences);
    }
    return differences;
}

// Secrets that the host does not tell cannot be compared, and those of the dump are not shown.
void leave_out_secrets(cJSON *dump, const std::vector<described_setting> &settings)
{
    for (const described_setting &setting : settings) {
        if (setting.member->secret && member_of(setting.member->node, "current") == nullptr)
            remove_setting(dump, setting.name());
    }
}

void print_tree(const std::vector<difference> &differences, const char *expected)
{
    const json_ptr tree(cJSON_CreateObject());
    for (const difference &one : differences) {
        cJSON *const setting = cJSON_AddObjectToObject(tree.get(), one.name.c_str());
        if (one.expected != nullptr)
            cJSON_AddItemToObject(setting, expected, cJSON_Duplicate(one.expected.get(), 1));
        if (one.found != nullptr)
            cJSON_AddItemToObject(setting, "value", cJSON_Duplicate(one.found.get(), 1));
    }
    print_json(tree.get());
}

void print_rows(const std::vector<difference> &differences, const char *expected)
{
    if (differences.empty())
        return;
    std::vector<std::vector<std::string>> rows = {{"NAME", expected, "VALUE"}};
    for (const difference &one : differences)
        rows.push_back(
            {visible(one.name), value_cell(one.expected.get()), value_cell(one.found.get())});
    print_table(rows);
}

void prepare(options &given)
{
    if (!given.file.empty())
        given.dump = read_dump(given.file);
}

exit_code run(program &all, options &given)
{
    client host = all.connect();
    const description described = describe_selected(host, given.patterns, all.show_secrets);
    const std::vector<described_setting> settings =
        select_settings(host, described, given.patterns);
    const bool has_file = given.dump != nullptr;
    if (all.one_of_several && !has_file) { // they are compared with each other
        print_json(dump_of(settings).get());
        return DONE;
    }
    leave_out_secrets(given.dump.get(), settings);
    const std::vector<difference> differences =
        has_file ? from_dump(given.dump.get(), dump_of(settings).get(), given.patterns)
                 : from_defaults(settings);
    if (all.as_json)
        print_tree(differences, has_file ? "file" : "default");
    else
        print_rows(differences, has_file ? "FILE" : "DEFAULT");
    return differences.empty() ? DONE : DIFFERENT;
}

// --- Of several hosts ---

// All from the file, where any host differs from it.
exit_code compare_with_file(const host_results &results)
{
    host_results hosts;
    hosts.push_back({"FILE", DONE, nullptr});
    for (const host_result &one : results)
        hosts.push_back({one.host, one.status, nullptr});
    host_table table(hosts);
    const auto for_each_difference = [&](const auto &visit) {
        for (size_t host = 0; host < results.size(); host++) {
            const cJSON *setting = nullptr;
            cJSON_ArrayForEach(setting, results[host].found.get())
            {
                visit(host, setting);
            }
        }
    };
    for_each_difference([&](size_t, const cJSON *setting) { // unless it differs, a host has it, too
        const cJSON *const expected = member_of(setting, "file");
        table.set(0, setting->string, expected);
        for (size_t host = 0; host < results.size(); host++)
            table.set(1 + host, setting->string,
                      results[host].found != nullptr ? expected : nullptr);
    });
    for_each_difference([&](size_t host, const cJSON *setting) {
        table.set(1 + host, setting->string, member_of(setting, "value"));
    });
    if (!table.is_empty())
        table.print(value_cell);
    return status_of(results);
}

exit_code compare(const program &all, const host_results &results, const options &given)
{
    if (given.dump != nullptr)
        return all.as_json ? print_by_host(results) : compare_with_file(results);
    host_table table(results);
    for (size_t host = 0; host < results.size(); host++)
        table.set_all(host, results[host].found.get());
    table.keep_different();
    if (all.as_json)
        table.print_as_json();
    else if (!table.is_empty())
        table.print(value_cell);
    const exit_code status = status_of(results);
    return status == DONE && !table.is_empty() ? DIFFERENT : status;
}

} // namespace

void add_diff(const arguments &words, program &all)
{
    const auto [diff, given] =
        add_command<options>(words, all,
                             {"diff",
                              "Show what differs from its default, from a dump or between hosts; "
                              "exit status 7 if anything",
                              run, prepare, compare, file_access::reads});
    diff.footer(R"(Examples:
  camparam diff --only isp0       from the defaults
  camparam diff camera.json       from a dump
  camparam --host cam1 --host cam2 diff)");
    diff.text(given.file, {"file", "FILE", "A dump; \"-\" is standard input"}).not_empty();
    diff.texts(given.patterns, {"--only", "GLOB", "Only these modules or settings"});
}
