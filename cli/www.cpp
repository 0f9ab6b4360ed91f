#include <algorithm>
#include <cstdio>
#include <utility>

#include "client/change.h"
#include "client/outcome.h"
#include "client/web_name.h"
#include "commands.h"
#include "output.h"

namespace {

using pair_list = std::vector<std::pair<std::string, std::string>>;

// The pairs of a query. Parts without "=" are skipped, such as the empty one before a leading "&".
pair_list pairs_of(const std::string &query)
{
    pair_list pairs;
    for (size_t start = 0; start < query.size();) {
        const size_t end = std::min(query.find('&', start), query.size());
        const size_t equals = query.find('=', start);
        if (equals < end)
            pairs.emplace_back(query.substr(start, equals - start),
                               query.substr(equals + 1, end - equals - 1));
        start = end + 1;
    }
    return pairs;
}

// The store reports an error as a text of at most longest_error bytes.
void check_answer(const std::string &answer, const std::string &page)
{
    const size_t longest_error = 1023;
    if (answer == "para_config=null")
        throw failure(OTHER, "the host has no web-name file, or one that is not JSON");
    if (answer == "cJSON_Parse=null")
        throw failure(OTHER, "the host does not understand the request");
    if (answer == (page + "=null").substr(0, longest_error))
        throw failure(NO_SUCH_SETTING, "no page \"" + page + "\"");
}

pair_list ask(client &host, const std::string &page)
{
    const std::string answer = host.web("get", page, "");
    check_answer(answer, page);
    if (answer == "result=success") // the page has no values
        return {};
    return pairs_of(answer);
}

void print(const pair_list &pairs, bool as_json)
{
    const json_ptr tree(cJSON_CreateArray());
    for (const auto &[name, value] : pairs) {
        if (!as_json) {
            printf("%s=%s\n", visible(name).c_str(), visible(value).c_str());
            continue;
        }
        cJSON *const object = cJSON_CreateObject();
        cJSON_AddStringToObject(object, "name", name.c_str());
        cJSON_AddStringToObject(object, "value", value.c_str());
        cJSON_AddItemToArray(tree.get(), object);
    }
    if (as_json)
        print_json(tree.get());
}

// The values that the page shows under a name: one for each module that shares it.
std::vector<std::string> values_of(const pair_list &pairs, const std::string &name)
{
    std::vector<std::string> values;
    for (const auto &[other, value] : pairs) {
        if (other == name)
            values.push_back(value);
    }
    return values;
}

// What the host tells of a page's names and their settings.
class web_page {
public:
    web_page(client &of, const std::string &page) : host(of), names(names_of_page(of, page))
    {
        std::vector<setting_name> settings;
        for (const web_name &name : names)
            settings.push_back(name.setting);
        if (!names.empty())
            described = describe(host, modules_of(settings));
    }

    // How the page will show a value that is sent. Throws a failure when the store would take
    // another one for it, such as 0 for a text.
    std::string shown(const std::string &name, const std::string &value) const
    {
        if (value.size() > longest_value)
            throw failure(REFUSED, name + ": \"" + value + "\" has " +
                                       std::to_string(value.size()) + " bytes, the host takes " +
                                       std::to_string(longest_value));
        const auto found = std::find_if(names.begin(), names.end(),
                                        [&](const web_name &one) { return one.name == name; });
        if (found == names.end())
            return value;
        return found->type == "S" ? shown_text(*found, value) : shown_number(*found, value);
    }

private:
    static constexpr size_t longest_value = 31; // the store cuts it

    std::string shown_text(const web_name &name, const std::string &value) const
    {
        check(name, value, value);
        return value;
    }

    std::string shown_number(const web_name &name, const std::string &value) const
    {
        const std::optional<int> number = number_of_web_text(name, value);
        if (!number)
            throw failure(REFUSED, name.name + ": \"" + value + "\" is no number");
        std::string shown = web_text_of(name, *number);
        if (name.modifier == "P" && value != shown)
            throw failure(REFUSED, name.name + ": the host stores 0 for any value that is sent");
        check(name, value, std::to_string(*number));
        return shown;
    }

    void check(const web_name &name, const std::string &value, const std::string &stored) const
    {
        const module_description *const module =
            described ? described->find(name.setting.module) : nullptr;
        const member_description *const member =
            module != nullptr ? module->find(name.setting.member) : nullptr;
        if (member == nullptr || (name.type != "S") != (member->kind == "number"))
            return;
        try {
            plan_change(host, {name.setting, stored}, described, {});
        } catch (const failure &) {
            throw failure(REFUSED, name.name + ": \"" + value + "\" would not be taken (" +
                                       member->limits() + ")");
        }
    }

    client &host;
    const std::vector<web_name> names;
    std::optional<description> described;
};

// If a name is repeated, the last value counts.
pair_list last_of_each(const pair_list &pairs)
{
    pair_list last;
    for (const auto &pair : pairs) {
        const auto same = std::find_if(
            last.begin(), last.end(), [&](const auto &other) { return other.first == pair.first; });
        if (same != last.end())
            same->second = pair.second;
        else
            last.push_back(pair);
    }
    return last;
}

// Sends the pairs that the page shows. The store would accept the names of other pages as well, but
// they could not be read back from this one.
void set_shown(client &host, const pair_list &wanted, const pair_list &shown,
               const std::string &page)
{
    std::string query;
    for (const auto &[name, value] : wanted) {
        if (values_of(shown, name).empty())
            continue;
        query.append(query.empty() ? "" : "&").append(name).append("=").append(value);
    }
    if (!query.empty())
        check_answer(host.web("set", page, query), page);
}

// Prints the pairs that the page shows as expected, and a message for each other one.
void report(const pair_list &expected, const pair_list &shown, const std::string &page,
            bool as_json, outcome &result)
{
    pair_list taken;
    for (const auto &pair : expected) {
        const std::vector<std::string> values = values_of(shown, pair.first);
        if (values.empty()) {
            print_failure(
                {NO_SUCH_SETTING, "the page \"" + page + "\" shows no \"" + pair.first + "\""});
            result.missing++;
        } else if (std::find(values.begin(), values.end(), pair.second) == values.end()) {
            print_failure({REFUSED, pair.first + ": \"" + pair.second +
                                        "\" was not taken, the page shows \"" + values.front() +
                                        "\""});
            result.refused++;
        } else {
            taken.push_back(pair);
        }
    }
    print(taken, as_json);
    result.done += static_cast<int>(taken.size());
}

exit_code get_page(client &host, const std::string &page, bool as_json)
{
    print(ask(host, page), as_json);
    return DONE;
}

exit_code set_page(client &host, const std::string &page, const std::string &query, bool as_json)
{
    if (query.find('=') == std::string::npos)
        throw failure(USAGE, "\"" + query + "\" is not of the form NAME=VALUE&NAME=VALUE...");
    const web_page names(host, page);
    outcome result;
    pair_list sent, expected;
    for (const auto &[name, value] : last_of_each(pairs_of(query))) {
        try {
            expected.emplace_back(name, names.shown(name, value));
            sent.emplace_back(name, value);
        } catch (const failure &error) {
            print_failure(error);
            result.refused++;
        }
    }
    set_shown(host, sent, ask(host, page), page);
    report(expected, ask(host, page), page, as_json, result);
    return result.status();
}

struct options {
    std::string page, query;
};

exit_code run_get(program &all, options &given)
{
    client host = all.connect();
    return get_page(host, given.page, all.as_json);
}

exit_code run_set(program &all, options &given)
{
    client host = all.connect();
    return set_page(host, given.page, given.query, all.as_json);
}

} // namespace

void add_www(const arguments &words, program &all)
{
    const arguments www =
        words.group("www", "Read or change settings in the names of the web pages");
    www.footer(R"(Examples:
  camparam www get image
  camparam www set image 'hue=5&gamma=2')");
    const auto [get, page] =
        add_command<options>(www, all,
                             {"get", "Print the values of a page, one per line", run_get, nullptr,
                              nullptr, file_access::reads});
    get.text(page.page, {"page", "PAGE", "Name of the page"}).required();
    const auto [set, given] =
        add_command<options>(www, all,
                             {"set", "Change values of a page and read them back", run_set, nullptr,
                              nullptr, file_access::changes});
    set.text(given.page, {"page", "PAGE", "Name of the page"}).required();
    set.text(given.query, {"query", "NAME=VALUE&...", "New values, sent without escaping"})
        .required();
}
