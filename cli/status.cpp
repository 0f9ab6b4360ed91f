#include <cstdio>

#include "commands.h"
#include "host_table.h"
#include "output.h"
#include "several.h"
#include "time_text.h"

namespace {

struct options {};

long long number_of(const cJSON *object, const char *name)
{
    const cJSON *const number = member_of(object, name);
    return cJSON_IsNumber(number) ? static_cast<long long>(number->valuedouble) : 0;
}

std::string state_of(const cJSON *module)
{
    const bool saved = number_of(module, "changes") == number_of(module, "saved");
    std::string state = string_of(member_of(module, "error"));
    if (state.empty())
        state = saved ? "saved" : string_of(member_of(module, "cannot_be_saved"));
    if (state.empty())
        state = "not saved yet";
    for (const char *flag : {"load_failed", "restored", "kept_bad"}) {
        if (cJSON_IsTrue(member_of(module, flag)))
            state += std::string(", ") + flag;
    }
    return state;
}

void print_modules_of(const cJSON *modules)
{
    std::vector<std::vector<std::string>> rows = {
        {"MODULE", "CHANGES", "SAVED", "LAST SAVE", "STATE"}};
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, modules)
    {
        const long long saved_at = number_of(module, "saved_at");
        rows.push_back({visible(module->string), std::to_string(number_of(module, "changes")),
                        std::to_string(number_of(module, "saved")),
                        saved_at != 0 ? time_text(saved_at) : "-", visible(state_of(module))});
    }
    print_table(rows);
}

exit_code run(program &all, options &)
{
    client host = all.connect();
    const json_ptr answer = host.call("api_get", "status", nullptr);
    const cJSON *const modules = member_of(answer.get(), "modules");
    if (!cJSON_IsObject(modules))
        throw failure(OTHER, "the host does not tell its status");
    if (all.as_json) {
        print_json(answer.get());
        return DONE;
    }
    const cJSON *const counters = member_of(answer.get(), "counters");
    printf("version %s, up %s\n", visible(string_of(member_of(answer.get(), "version"))).c_str(),
           span_text(number_of(answer.get(), "uptime")).c_str());
    printf("%lld datagrams, %lld dropped, %lld replies; %lld saves, %lld failed\n",
           number_of(counters, "received"), number_of(counters, "dropped"),
           number_of(counters, "replies"), number_of(counters, "saves"),
           number_of(counters, "failed_saves"));
    const std::string texts = string_of(member_of(answer.get(), "descriptions"));
    if (!texts.empty())
        printf("%s\n", visible(texts).c_str());
    print_modules_of(modules);
    return DONE;
}

std::vector<std::string> summary(const cJSON *answer)
{
    const cJSON *const counters = member_of(answer, "counters");
    std::string unsaved;
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, member_of(answer, "modules"))
    {
        if (state_of(module) != "saved")
            unsaved += (unsaved.empty() ? "" : ", ") + std::string(module->string);
    }
    return {value_cell(member_of(answer, "version")),
            span_text(number_of(answer, "uptime")),
            std::to_string(number_of(counters, "received")),
            std::to_string(number_of(counters, "saves")),
            std::to_string(number_of(counters, "failed_saves")),
            unsaved.empty() ? "-" : visible(unsaved)};
}

exit_code compare(const program &all, const host_results &results, const options &)
{
    if (all.as_json)
        return print_by_host(results);
    print_rows_by_host(
        results, {"VERSION", "UP", "DATAGRAMS", "SAVES", "FAILED SAVES", "NOT AS SAVED"}, summary);
    return status_of(results);
}

} // namespace

void add_status(const arguments &words, program &all)
{
    add_command<options>(words, all,
                         {"status", "Show what is saved of each module, and how the host fares",
                          run, nullptr, compare});
}
