#include <cstdio>

#include "client/dump.h"
#include "commands.h"
#include "output.h"

namespace {

struct options {
    std::string file;
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

std::string cell(const json_ptr &value)
{
    if (value == nullptr)
        return "-";
    const std::string text = value_text(value.get());
    return text.empty() ? "\"\"" : visible(text);
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
    puts(print_pretty(tree.get()).c_str());
}

void print_rows(const std::vector<difference> &differences, const char *expected)
{
    if (differences.empty())
        return;
    std::vector<std::vector<std::string>> rows = {{"NAME", expected, "VALUE"}};
    for (const difference &one : differences)
        rows.push_back({visible(one.name), cell(one.expected), cell(one.found)});
    print_table(rows);
}

exit_code run(program &all, options &given)
{
    const bool has_file = !given.file.empty();
    const json_ptr expected = has_file ? read_dump(given.file) : nullptr;
    client host(all.server);
    const description described = describe_selected(host, given.patterns, all.show_secrets);
    const std::vector<described_setting> settings =
        select_settings(host, described, given.patterns);
    const std::vector<difference> differences =
        has_file ? from_dump(expected.get(), dump_of(settings).get(), given.patterns)
                 : from_defaults(settings);
    if (all.as_json)
        print_tree(differences, has_file ? "file" : "default");
    else
        print_rows(differences, has_file ? "FILE" : "DEFAULT");
    return differences.empty() ? DONE : DIFFERENT;
}

} // namespace

void add_diff(const arguments &words, program &all)
{
    const auto [diff, given] = add_command(
        words, all,
        {"diff", "Show what differs from its default, or from a dump; exit status 7 if anything"},
        run);
    diff.text(given.file, {"file", "FILE", "A dump; \"-\" is standard input"});
    diff.texts(given.patterns, {"--only", "GLOB", "Only these modules or settings"});
}
