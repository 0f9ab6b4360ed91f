#include <cstdio>

#include "client/outcome.h"
#include "commands.h"
#include "output.h"

namespace {

json_ptr data_of(const std::vector<std::string> &members, value_form form)
{
    json_ptr data(cJSON_CreateObject());
    for (const std::string &text : members)
        add_value(data.get(), parse_assignment(text, form));
    return data;
}

} // namespace

exit_code call_command(client &host, const std::string &command, const char *type,
                       const std::vector<std::string> &members, value_form form, bool as_json)
{
    const json_ptr answer =
        host.call(type, command, members.empty() ? nullptr : data_of(members, form));
    if (!answer)
        throw failure(REFUSED, "the host does not know the command \"" + command +
                                   "\", or refused it; it was sent as " + type +
                                   ", see --set and --get");

    if (as_json || cJSON_GetArraySize(answer.get()) > 0)
        puts(as_json ? print_line(answer.get()).c_str() : print_pretty(answer.get()).c_str());
    return outcome_of(answer.get()).status();
}
