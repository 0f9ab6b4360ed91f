#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "client/outcome.h"
#include "client/saved.h"
#include "commands.h"
#include "get.h"
#include "list.h"
#include "output.h"
#include "progress.h"
#include "report.h"

namespace {

struct options {
    std::vector<std::string> values;
    form_options value;
    bool partly = false, create = false;
    std::string wait_saved;             // as given; empty: does not wait
    std::optional<double> wait_saved_s; // the same
    int confirm_s = 0;                  // 0: needs no confirmation
};

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

const char *const usual_wait_s = "10";

// The seconds may be left out, and what follows is a setting then.
void prepare(options &given)
{
    if (given.wait_saved.empty())
        return;
    if (given.wait_saved.find('=') != std::string::npos) {
        given.values.push_back(given.wait_saved);
        given.wait_saved = usual_wait_s;
    }
    char *end = nullptr;
    given.wait_saved_s = strtod(given.wait_saved.c_str(), &end);
    const double longest_s = 3600;
    const bool is_in_range = given.wait_saved_s >= 0.0 && given.wait_saved_s <= longest_s;
    if (*end != '\0' || !is_in_range) // NaN is in no range
        throw failure(USAGE, "--wait-saved takes seconds, 0 to 3600");
}

struct plan {
    std::vector<change> changes;
    outcome refused; // what cannot be sent
};

// All are planned before any is sent. Prints why some cannot be sent; then none is, unless partly.
plan plan_all(client &host, const std::vector<setting_value> &values,
              const std::optional<description> &described, const options &given)
{
    plan made;
    const change_rules rules = {given.value.form(), given.create};
    for (const setting_value &value : values) {
        try {
            made.changes.push_back(plan_change(host, value, described, rules));
        } catch (const failure &error) {
            if (error.code != REFUSED && error.code != NO_SUCH_SETTING)
                throw;
            (error.code == REFUSED ? made.refused.refused : made.refused.missing)++;
            print_failure(error);
        }
    }
    const bool all = made.changes.size() == values.size();
    if (made.changes.empty() || !(all || given.partly))
        throw failure(made.refused.status(), "nothing was set");
    return made;
}

exit_code wait_until_saved(client &host, const std::vector<change> &changes, double seconds)
{
    progress waited("seconds", seconds);
    const std::vector<unsaved_module> unsaved =
        wait_until_saved(host, modules_of(changes), seconds, [&] { waited.tell_time(); });
    for (const unsaved_module &module : unsaved)
        print_failure({UNSAVED, module.name + " is not saved: " + module.reason});
    return unsaved.empty() ? DONE : UNSAVED;
}

exit_code set_now(client &host, const std::vector<change> &changes, bool as_json, outcome &result)
{
    const json_ptr values(cJSON_CreateObject());
    for (const std::string &module : modules_of(changes))
        send_changes(host, module, changes, values.get());
    report_changes(host, changes, values.get(), as_json, result);
    return result.status();
}

bool is_listed(const cJSON *names, const std::string &name)
{
    const cJSON *each = nullptr;
    cJSON_ArrayForEach(each, names)
    {
        if (string_of(each) == name)
            return true;
    }
    return false;
}

// The host takes the values back by itself.
exit_code set_for_a_time(client &host, const plan &made, const options &given, const program &all)
{
    json_ptr data(cJSON_CreateObject());
    cJSON_AddNumberToObject(data.get(), "seconds", given.confirm_s);
    cJSON *const values = cJSON_AddObjectToObject(data.get(), "set");
    for (const change &one : made.changes)
        add_setting(values, one.name, one.value.as_node());
    const json_ptr answer = host.call("api_set", "confirm", std::move(data));
    if (!answer)
        throw failure(OTHER, "the host does not take values back");
    const json_ptr accepted(cJSON_CreateObject());
    for (const change &one : made.changes) {
        if (!is_listed(member_of(answer.get(), "accepted"), one.name.text()))
            continue;
        add_setting(accepted.get(), one.name, one.value.as_node());
        if (!all.as_json)
            print_value(one.name.text(), one.value.as_node().get());
    }
    if (all.as_json) // the values themselves where they are compared with those of other hosts
        print_json_line(all.one_of_several ? accepted.get() : answer.get());
    report_refusals(answer.get());
    const outcome result = outcome_of(answer.get());
    if (result.done == 0)
        throw failure((made.refused + result).status(), "nothing was set");
    print_message("set for " + std::to_string(given.confirm_s) +
                  " s; \"camparam confirm\" keeps it");
    return (made.refused + result).status();
}

exit_code run(program &all, options &given)
{
    if (given.confirm_s > 0 && !all.root.empty())
        throw failure(USAGE, "--confirm needs a host, and not --root");
    client host = all.connect();
    if (is_list_of_modules(given.values))
        return print_modules(host, given.values, all);

    const std::vector<setting_value> requested = parse(given.values);
    const std::optional<description> described = describe(host, modules_of(requested));
    plan made = plan_all(host, requested, described, given);
    if (given.confirm_s > 0)
        return set_for_a_time(host, made, given, all);
    const exit_code status = set_now(host, made.changes, all.as_json, made.refused);
    if (given.wait_saved_s && made.refused.done > 0) {
        const exit_code saved = wait_until_saved(host, made.changes, *given.wait_saved_s);
        return status == DONE ? saved : status;
    }
    return status;
}

exit_code compare(const program &all, const host_results &results, const options &given)
{
    return is_list_of_modules(given.values) ? compare_lists(all, results)
                                            : compare_values(all, results);
}

} // namespace

void add_set(const arguments &words, program &all)
{
    const auto [set, given] = add_command<options>(
        words, all,
        {"set", "Change settings and read them back: all or none, if one cannot be", run, prepare,
         compare, file_access::changes});
    set.footer(R"(Examples:
  camparam set af                 what can be set of a module
  camparam set af.zoom_value=1200 af.focus_mode=manual
  camparam set netport.http_port=8080 --wait-saved
  camparam set netport.ip=192.168.1.9 --confirm 60)");
    set.texts(given.values,
              {"values", "MODULE.MEMBER=VALUE",
               "Settings and their new values; of modules alone shows what can be set"});
    add_form_options(set, given.value);
    set.flag(given.partly, "--partly", "Set what can be set");
    set.flag(given.create, "--create", "Set what the host does not describe, as new keys");
    const argument wait_saved =
        set.text(given.wait_saved,
                 {"--wait-saved", "SECONDS", "Return when the camera has saved them"})
            .is_usually(usual_wait_s);
    set.integer(given.confirm_s,
                {"--confirm", "SECONDS",
                 "Have the host take them back, unless \"camparam confirm\" comes in time"},
                1, 3600)
        .excludes(wait_saved);
}
