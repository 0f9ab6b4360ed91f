#include "report.h"

#include <cstdio>

#include "output.h"

namespace {

// Such as: the number 5
std::string shown(const cJSON *value)
{
    if (cJSON_IsNumber(value))
        return "the number " + value_text(value);
    return cJSON_IsString(value) ? "the text \"" + value_text(value) + "\"" : value_text(value);
}

std::string refusal(const change &wanted, const cJSON *found)
{
    const bool same_text = value_text(found) == wanted.value.value;
    std::string text = wanted.name.text() + ": \"" + wanted.value.value + "\" was not taken";
    if (same_text)
        text += std::string(wanted.value.number ? " as a number" : " as a text");
    text += ", the value is " + (same_text ? shown(found) : "\"" + value_text(found) + "\"");
    if (wanted.described != nullptr)
        text += " (" + wanted.described->limits() + ")";
    return text;
}

} // namespace

void report_changes(client &host, const std::vector<change> &changes, const cJSON *values,
                    bool as_json, outcome &result)
{
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
}
