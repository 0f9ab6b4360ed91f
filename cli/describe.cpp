#include <cstdio>

#include "client/selection.h"
#include "commands.h"
#include "output.h"

namespace {

struct options {
    std::vector<std::string> patterns;
};

std::string shown(const member_description &member, const char *key, const std::string &text)
{
    if (member_of(member.node, key) == nullptr)
        return "";
    for (const auto &[number, name] : member.names_of_numbers) {
        if (number == text)
            return std::string(text).append(" (").append(name).append(")");
    }
    return text.empty() ? "\"\"" : text;
}

void print_line_of(const char *title, const std::string &text)
{
    if (!text.empty())
        printf("  %-9s %s\n", title, visible(text).c_str());
}

std::string names_of(const member_description &member)
{
    std::string text;
    for (const auto &[number, name] : member.names_of_numbers)
        text.append(text.empty() ? "" : ", ").append(number).append(" ").append(name);
    return text;
}

void print(const described_setting &setting)
{
    const member_description &member = *setting.member;
    puts(
        visible(setting.name().text() + (member.label.empty() ? "" : ": " + member.label)).c_str());
    print_line_of("", member.help);
    print_line_of("takes", member.limits() + (member.unit.empty() ? "" : ", in " + member.unit));
    print_line_of("names", names_of(member));
    print_line_of("default", shown(member, "default", member.default_value));
    print_line_of("start", shown(member, "start", member.start));
    print_line_of("now", shown(member, "current", member.current));
    print_line_of("", member.secret ? "secret" : "");
    print_line_of("", member.read_only ? "read-only" : "");
}

exit_code run(program &all, options &given)
{
    client host = all.connect();
    const description described = describe_selected(host, given.patterns, all.show_secrets);
    const json_ptr tree(cJSON_CreateObject());
    for (const described_setting &setting : select_settings(host, described, given.patterns)) {
        if (all.as_json)
            cJSON_AddItemToObject(tree.get(), setting.name().text().c_str(),
                                  cJSON_Duplicate(setting.member->node, 1));
        else
            print(setting);
    }
    if (all.as_json)
        print_json(tree.get());
    return DONE;
}

} // namespace

void add_describe(const arguments &words, program &all)
{
    const auto [describe, given] =
        add_command<options>(words, all,
                             {"describe", "Tell all that is known of settings", run, nullptr,
                              nullptr, file_access::reads});
    describe.footer(R"(Examples:
  camparam describe misc.trackMode
  camparam describe 'isp0.wb*')");
    describe.texts(given.patterns, {"settings", "GLOB", "Modules or settings"}).required();
}
