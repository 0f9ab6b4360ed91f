#include "list.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "client/selection.h"
#include "commands.h"
#include "get.h"
#include "host_table.h"
#include "output.h"

namespace {

struct options {
    std::vector<std::string> patterns;
    bool changed = false;
    std::string word; // to be found
};

const std::vector<std::string> header = {"NAME", "KIND", "MIN", "MAX", "DEFAULT", "VALUE", ""};

// Cells are never empty, so that columns can be parsed.
std::string cell(const std::string &text)
{
    return text.empty() ? "-" : visible(text);
}

// An empty text is a value, unlike an absent member.
std::string cell_of(const cJSON *described, const char *key)
{
    const cJSON *const value = member_of(described, key);
    const bool is_hidden = value == nullptr && cJSON_IsTrue(member_of(described, "secret"));
    return is_hidden ? "secret" : value_cell(value);
}

std::string mark_of(const member_description &member)
{
    if (member.read_only)
        return differs_from_default(member) ? "* read-only" : "read-only";
    return differs_from_default(member) ? "*" : "";
}

std::vector<std::string> row_of(const described_setting &setting)
{
    const member_description &member = *setting.member;
    return {visible(setting.name().text()),
            cell(member.kind),
            cell(member.min),
            cell(member.max),
            cell_of(member.node, "default"),
            cell_of(member.node, "current"),
            mark_of(member)};
}

// The defaults of the image processor are those of a style: of the default one, or, after a start,
// of the one that was saved. Its number is a default, too.
std::string style_of_defaults(client &host, const module_description &isp)
{
    const json_ptr answer = host.call("api_get", "style", nullptr);
    const member_description *const number = isp.find("style");
    const std::optional<int> index =
        number != nullptr ? parse_int(number->default_value) : std::nullopt;
    const cJSON *const listed = index && *index >= 0
                                    ? cJSON_GetArrayItem(member_of(answer.get(), "styles"), *index)
                                    : nullptr;
    return string_of(listed != nullptr ? listed : member_of(answer.get(), "default"));
}

void explain_marks(client &host, const std::vector<described_setting> &settings)
{
    const auto marked =
        std::find_if(settings.begin(), settings.end(), [](const described_setting &setting) {
            return setting.module->name == "isp0" && differs_from_default(*setting.member);
        });
    if (marked == settings.end())
        return;
    const std::string name = style_of_defaults(host, *marked->module);
    if (!name.empty())
        printf("* of isp0: differs from the style \"%s\"\n", visible(name).c_str());
}

void print_tree(const std::vector<described_setting> &settings)
{
    const json_ptr tree(cJSON_CreateObject());
    for (const described_setting &setting : settings) {
        cJSON_AddItemToObject(object_in(tree.get(), setting.module->name),
                              setting.member->name.c_str(),
                              cJSON_Duplicate(setting.member->node, 1));
    }
    print_json(tree.get());
}

void print_rows(client &host, const std::vector<described_setting> &settings)
{
    std::vector<std::vector<std::string>> rows = {header};
    for (const described_setting &setting : settings)
        rows.push_back(row_of(setting));
    print_table(rows);
    explain_marks(host, settings);
}

// A host without descriptions still answers with the values of a module.
exit_code list_values(client &host, const std::vector<std::string> &patterns, const program &all)
{
    if (patterns.empty())
        throw failure(OTHER, "the host does not describe its settings; name a module, such as "
                             "\"camparam list af\"");
    return print_settings(host, patterns, all);
}

bool has_word(const described_setting &setting, const std::string &word)
{
    const member_description &member = *setting.member;
    for (const std::string &text : {setting.name().text(), member.label, member.help}) {
        if (strcasestr(text.c_str(), word.c_str()) != nullptr)
            return true;
    }
    return false;
}

bool is_wanted(const described_setting &setting, const options &given)
{
    return (!given.changed || differs_from_default(*setting.member)) &&
           has_word(setting, given.word);
}

// What is named but has no settings, such as a module whose files are faulty.
void tell_of_nothing(const std::vector<described_setting> &settings, const options &given)
{
    if (settings.empty() && !given.patterns.empty())
        print_message("no settings there; \"camparam check\" looks for faults in a device's files");
}

exit_code list_settings(client &host, const options &given, const program &all)
{
    for (const std::string &pattern : given.patterns)
        parse_setting_name(pattern);
    const std::optional<description> described =
        describe(host, modules_in(given.patterns), all.show_secrets);
    if (!described)
        return list_values(host, given.patterns, all);

    std::vector<described_setting> settings = select_settings(host, *described, given.patterns);
    tell_of_nothing(settings, given);
    settings.erase(std::remove_if(settings.begin(), settings.end(),
                                  [&](const described_setting &setting) {
                                      return !is_wanted(setting, given);
                                  }),
                   settings.end());
    if (!given.word.empty() && settings.empty())
        throw failure(NO_SUCH_SETTING, "no setting has the word \"" + given.word + "\"");
    if (all.as_json)
        print_tree(settings);
    else
        print_rows(host, settings);
    const bool is_one = given.patterns.size() == 1 && settings.size() == 1 &&
                        given.patterns[0] == settings[0].name().text();
    if (!all.as_json && is_one && !settings[0].member->names.empty())
        printf("%s\n", visible(settings[0].member->limits()).c_str());
    return DONE;
}

exit_code run(program &all, options &given)
{
    client host = all.connect();
    return list_settings(host, given, all);
}

// Of a setting; or a value itself, from a host that does not describe its settings.
std::string cell_by_host(const cJSON *found)
{
    if (member_of(found, "kind") == nullptr)
        return value_cell(found);
    return cell_of(found, "current") + (differs_from_default(found) ? " *" : "");
}

exit_code compare(const program &all, const host_results &results, const options &)
{
    return compare_lists(all, results);
}

} // namespace

bool is_list_of_modules(const std::vector<std::string> &texts)
{
    return std::none_of(texts.begin(), texts.end(), [](const std::string &text) {
        return text.empty() || text.find_first_of(".=") != std::string::npos;
    });
}

exit_code print_modules(client &host, const std::vector<std::string> &names, const program &all)
{
    if (!names.empty())
        return list_settings(host, {names, false, ""}, all);
    const description described = describe_selected(host, {}, false);
    if (all.as_json) {
        const json_ptr modules(cJSON_CreateObject());
        for (const module_description &module : described.modules)
            cJSON_AddNumberToObject(modules.get(), module.name.c_str(),
                                    static_cast<double>(module.members.size()));
        print_json(modules.get());
        return DONE;
    }
    std::vector<std::vector<std::string>> rows = {{"MODULE", "SETTINGS"}};
    for (const module_description &module : described.modules)
        rows.push_back({visible(module.name), std::to_string(module.members.size())});
    print_table(rows);
    return DONE;
}

exit_code compare_lists(const program &all, const host_results &results)
{
    return print_settings_by_host(all, results, cell_by_host);
}

void add_list(const arguments &words, program &all)
{
    const auto [list, given] = add_command<options>(
        words, all,
        {"list", "Show settings: kind, range, default and value; * marks a changed one", run,
         nullptr, compare, file_access::reads});
    list.footer(R"(Examples:
  camparam list                   every setting
  camparam list af video0.gop     a module and a setting
  camparam list 'isp0.*gain*'     settings by a pattern
  camparam list --find noise      settings by a word of their name, label or help
  camparam list --changed         what differs from its default)");
    list.texts(given.patterns,
               {"settings", "GLOB", "Only these modules or settings, such as af or isp0.*gain*"});
    list.text(given.word, {"--find", "WORD",
                           "Only with the word in name, label or help, in upper or lower case"});
    list.flag(given.changed, "--changed", "Only what differs from its default");
}
