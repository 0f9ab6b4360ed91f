#include <cstdio>
#include <utility>

#include "client/outcome.h"
#include "commands.h"
#include "output.h"

namespace {

struct options {
    std::string command;
    std::vector<std::string> members;
    bool as_get = false, as_set = false;
    form_options value;

    // A command that is given members most likely changes something.
    const char *type() const
    {
        return as_set || (!as_get && !members.empty()) ? "api_set" : "api_get";
    }
};

// Arrays, objects and truth values go as they are, unless the user has chosen a form.
json_ptr as_json_value(const assignment &value, value_form form)
{
    json_ptr parsed = form == value_form::automatic ? parse_whole_json(value.value) : nullptr;
    const cJSON *const node = parsed.get();
    const bool is_meant = cJSON_IsArray(node) || cJSON_IsObject(node) || cJSON_IsBool(node);
    return is_meant ? std::move(parsed) : nullptr;
}

json_ptr data_of(const std::vector<std::string> &members, value_form form)
{
    json_ptr data(cJSON_CreateObject());
    for (const std::string &text : members) {
        const assignment value = parse_assignment(text, form);
        if (json_ptr node = as_json_value(value, form))
            cJSON_AddItemToObject(data.get(), value.member.c_str(), node.release());
        else
            cJSON_AddItemToObject(data.get(), value.member.c_str(), value.as_node().release());
    }
    return data;
}

exit_code run(program &all, options &given)
{
    client host = all.connect();
    const json_ptr answer =
        host.call(given.type(), given.command,
                  given.members.empty() ? nullptr : data_of(given.members, given.value.form()));
    if (!answer)
        throw failure(REFUSED, "the host does not know the command \"" + given.command +
                                   "\", or refused it; it was sent as " + given.type() +
                                   ", see --set and --get");

    if (all.as_json)
        print_json_line(answer.get());
    else if (cJSON_GetArraySize(answer.get()) > 0)
        print_json(answer.get());
    return outcome_of(answer.get()).status();
}

} // namespace

void add_call(const arguments &words, program &all)
{
    const auto [call, given] =
        add_command<options>(words, all, {"call", "Run a command that the host offers", run});
    call.footer(
        R"(Hosts with the command kit, such as camparamd, offer: changes, check, confirm, describe, lens,
log, pages, reload, reset, save, status, style.

Examples:
  camparam call save
  camparam call lens zoom_value=1200)");
    call.text(given.command, {"command", "COMMAND", "Name of the command"}).required();
    call.texts(given.members,
               {"members", "MEMBER=VALUE",
                "Parameters; integers, arrays, objects, true and false are sent as such"});
    const argument set =
        call.flag(given.as_set, "--set", "Send it as api_set [default with parameters]");
    call.flag(given.as_get, "--get", "Send it as api_get [default without]").excludes(set);
    add_form_options(call, given.value);
}
