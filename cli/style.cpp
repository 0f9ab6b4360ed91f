#include <algorithm>
#include <cstdio>

#include "client/outcome.h"
#include "client/suggest.h"
#include "commands.h"
#include "output.h"

namespace {

// The styles of the host.
struct style_list {
    std::vector<std::string> names;
    std::string current, by_default;
    json_ptr answer;
};

style_list ask(client &host)
{
    style_list styles;
    styles.answer = host.call("api_get", "style", nullptr);
    const cJSON *const names = member_of(styles.answer.get(), "styles");
    if (!cJSON_IsArray(names)) // or the answer of another command whose name begins with "style"
        throw failure(OTHER, "the host does not tell its picture styles");
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, names)
    {
        styles.names.push_back(string_of(name));
    }
    styles.current = string_of(member_of(styles.answer.get(), "current"));
    styles.by_default = string_of(member_of(styles.answer.get(), "default"));
    return styles;
}

std::vector<std::string> row_of(const style_list &styles, const std::string &name)
{
    const bool is_current = name == styles.current, is_default = name == styles.by_default;
    std::string marks = is_current ? "current" : "";
    if (is_default)
        marks += is_current ? ", default" : "default";
    return {visible(name), marks};
}

void print(const style_list &styles, const std::vector<std::string> &names, bool as_json)
{
    if (as_json) {
        print_json(styles.answer.get());
        return;
    }
    std::vector<std::vector<std::string>> rows;
    for (const std::string &name : names)
        rows.push_back(row_of(styles, name));
    print_table(rows);
}

void check_name(const style_list &styles, const std::string &name)
{
    if (std::find(styles.names.begin(), styles.names.end(), name) != styles.names.end())
        return;
    const std::string similar = most_similar(name, styles.names);
    throw failure(NO_SUCH_SETTING,
                  "no style \"" + name + "\"" +
                      (similar.empty() ? "" : "; did you mean \"" + similar + "\"?"));
}

json_ptr style_data(const std::string &name, bool as_default)
{
    json_ptr data(cJSON_CreateObject());
    cJSON_AddStringToObject(data.get(), "style", name.c_str());
    if (as_default)
        cJSON_AddNumberToObject(data.get(), "default", 1);
    return data;
}

void print_refusals(const cJSON *answer)
{
    const cJSON *reason = nullptr;
    cJSON_ArrayForEach(reason, member_of(answer, "refused"))
    {
        print_message("isp0." + std::string(reason->string) + ": " + string_of(reason));
    }
}

exit_code show_styles(client &host, bool as_json)
{
    const style_list styles = ask(host);
    print(styles, styles.names, as_json);
    return DONE;
}

exit_code apply_style(client &host, const std::string &name, bool as_default, bool as_json)
{
    check_name(ask(host), name);
    const json_ptr answer = host.call("api_set", "style", style_data(name, as_default));
    if (!answer)
        throw failure(REFUSED, "the host refused the style \"" + name + "\"");
    print_refusals(answer.get());
    print(ask(host), {name}, as_json);
    return outcome_of(answer.get()).status();
}

struct options {
    std::string name;
    bool as_default = false;
};

exit_code run(program &all, options &given)
{
    client host = all.connect();
    if (given.name.empty())
        return show_styles(host, all.as_json);
    return apply_style(host, given.name, given.as_default, all.as_json);
}

} // namespace

void add_style(const arguments &words, program &all)
{
    const auto [style, given] = add_command<options>(
        words, all, {"style", "Show the picture styles, or apply one with all its values", run});
    style.footer(R"(Examples:
  camparam style                  the styles
  camparam style vivid            apply one
  camparam style vivid --default  now and after each start)");
    const argument name = style.text(given.name, {"style", "STYLE", "The style to apply"});
    style.flag(given.as_default, "--default", "Make it the default style, too").needs(name);
}
