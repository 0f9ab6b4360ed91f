#include "report.h"

#include <cstdio>

#include "client/outcome.h"
#include "output.h"

namespace {

std::string refusal(const change &wanted, const cJSON *found)
{
    std::string text = wanted.name.text() + ": \"" + wanted.value.value + "\" was not taken, ";
    text += "the value is \"" + value_text(found) + "\"";
    if (wanted.described != nullptr)
        text += " (" + wanted.described->limits() + ")";
    return text;
}

} // namespace

exit_code report_changes(client &host, const std::vector<change> &changes, const cJSON *values,
                         bool as_json)
{
    outcome result;
    for (const change &one : changes) {
        const cJSON *const module = member_of(values, one.name.module.c_str());
        const cJSON *const found = member_of(module, one.name.member.c_str());
        if (found == nullptr) {
            result.missing++;
            print_message(no_such_setting(host, one.name));
        } else if (!is_taken(one, found)) {
            result.refused++;
            print_message(refusal(one, found));
        } else {
            result.done++;
            if (!as_json)
                print_value(one.name.text(), found);
        }
    }
    if (as_json)
        puts(print_pretty(values).c_str());
    return result.status();
}
