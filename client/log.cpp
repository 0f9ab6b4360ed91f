#include "client/log.h"

#include "client/failure.h"

namespace {

logged_change read_change(const cJSON *entry)
{
    logged_change change;
    const cJSON *const number = member_of(entry, "number"), *const time = member_of(entry, "time");
    change.number = cJSON_IsNumber(number) ? static_cast<unsigned>(number->valuedouble) : 0;
    change.time_ms = cJSON_IsNumber(time) ? static_cast<long long>(time->valuedouble) : 0;
    change.name = {string_of(member_of(entry, "module")), string_of(member_of(entry, "member"))};
    change.secret = cJSON_IsTrue(member_of(entry, "secret")) != 0;
    change.entry.reset(cJSON_Duplicate(entry, 1));
    return change;
}

json_ptr ask(client &host, unsigned after)
{
    json_ptr data(cJSON_CreateObject());
    cJSON_AddNumberToObject(data.get(), "after", after);
    json_ptr answer = host.call("api_get", "log", std::move(data));
    if (!cJSON_IsArray(member_of(answer.get(), "changes")))
        throw failure(OTHER, "the host keeps no log of changes");
    return answer;
}

} // namespace

std::string logged_change::value(const char *which) const
{
    if (secret)
        return "secret";
    const cJSON *const found = member_of(entry.get(), which);
    return found != nullptr ? value_text(found) : "-";
}

std::string logged_change::sender() const
{
    return string_of(member_of(entry.get(), "by"));
}

change_log read_log(client &host, unsigned after)
{
    change_log log;
    bool has_more = true;
    while (has_more) {
        const json_ptr page = ask(host, after);
        log.run = value_text(member_of(page.get(), "started"));
        const cJSON *entry = nullptr;
        cJSON_ArrayForEach(entry, member_of(page.get(), "changes"))
        {
            log.changes.push_back(read_change(entry));
            after = log.changes.back().number;
        }
        has_more = member_of(page.get(), "next") != nullptr;
    }
    return log;
}
