#include "report.h"

#include <cstdio>

#include "output.h"

namespace {

// The same text in another type: "the number 5".
std::string with_type(const cJSON *value)
{
    if (cJSON_IsNumber(value))
        return "the number " + value_text(value);
    return cJSON_IsString(value) ? "the text \"" + value_text(value) + "\"" : value_text(value);
}

// Empty for a secret.
std::string present_value(const change &wanted, const cJSON *found)
{
    if (wanted.described != nullptr && wanted.described->secret)
        return "";
    if (value_text(found) != wanted.value.value)
        return ", the value is \"" + value_text(found) + "\"";
    const char *const type = wanted.value.type == value_type::json ? "number" : "text";
    return std::string(" as a ") + type + ", the value is " + with_type(found);
}

std::string refusal(const change &wanted, const cJSON *found)
{
    std::string text = wanted.name.text() + ": " +
                       shown_value(wanted.value.value, wanted.described) + " was not taken" +
                       present_value(wanted, found);
    if (wanted.described != nullptr)
        text += " (" + wanted.described->limits() + ")";
    return text;
}

} // namespace

void report_refusals(const cJSON *answer)
{
    const cJSON *reason = nullptr;
    cJSON_ArrayForEach(reason, member_of(answer, "refused"))
    {
        print_failure({REFUSED, std::string(reason->string) + ": " + string_of(reason)});
    }
    report_omitted(answer);
}

void report_omitted(const cJSON *answer)
{
    if (const int omitted = omitted_in(answer))
        print_message("and " + std::to_string(omitted) + " more");
}

bool report_change(client &host, const change &wanted, const cJSON *values, outcome &result)
{
    const cJSON *const found = value_in(values, wanted.name);
    const bool is_module = member_of(values, wanted.name.module.c_str()) != nullptr;
    if (found == nullptr && wanted.is_new && is_module) { // as with the guard on
        result.refused++;
        print_failure(
            {REFUSED, wanted.name.text() + ": the host takes no new settings by request"});
        return false;
    }
    if (found == nullptr) {
        result.missing++;
        print_failure({NO_SUCH_SETTING, no_such_setting(host, wanted.name)});
        return false;
    }
    if (!is_taken(wanted, found)) {
        result.refused++;
        print_failure({REFUSED, refusal(wanted, found)});
        return false;
    }
    result.done++;
    return true;
}

void report_changes(client &host, const std::vector<change> &changes, const cJSON *values,
                    bool as_json, outcome &result)
{
    for (const change &one : changes) {
        if (report_change(host, one, values, result) && !as_json)
            print_value(one.name.text(), value_in(values, one.name));
    }
    if (as_json)
        print_json(values);
}
