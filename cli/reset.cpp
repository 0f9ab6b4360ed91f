#include <algorithm>
#include <cstdio>
#include <map>

#include "client/outcome.h"
#include "client/selection.h"
#include "commands.h"
#include "output.h"
#include "report.h"

namespace {

struct options {
    std::vector<std::string> patterns;
    bool everything = false;
};

using names_by_module = std::map<std::string, std::vector<std::string>>;

// What differs from its default and can be set; of what is named exactly the host says the rest.
names_by_module choose(const std::vector<described_setting> &settings,
                       const std::vector<std::string> &patterns)
{
    names_by_module chosen;
    for (const described_setting &setting : settings) {
        const bool is_named =
            std::find(patterns.begin(), patterns.end(), setting.name().text()) != patterns.end();
        const bool may_differ = setting.member->secret || differs_from_default(*setting.member);
        if (is_named || (may_differ && !setting.member->read_only))
            chosen[setting.module->name].push_back(setting.member->name);
    }
    return chosen;
}

json_ptr reset(client &host, const std::string &module, const std::string *first, size_t count)
{
    json_ptr data(cJSON_CreateObject());
    cJSON *const names = cJSON_AddArrayToObject(data.get(), module.c_str());
    std::for_each(first, first + count, [&](const std::string &name) {
        cJSON_AddItemToArray(names, cJSON_CreateString(name.c_str()));
    });
    json_ptr answer = host.call("api_set", "reset", std::move(data));
    if (!answer)
        throw failure(OTHER, "the host does not reset settings");
    return answer;
}

void report(const cJSON *answer, bool as_json)
{
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, member_of(answer, "accepted"))
    {
        if (!as_json)
            puts(visible(string_of(name)).c_str());
    }
    report_refusals(answer);
}

void append(cJSON *to, const cJSON *from)
{
    const cJSON *item = nullptr;
    cJSON_ArrayForEach(item, from)
    {
        json_ptr copy(cJSON_Duplicate(item, 1));
        if (item->string != nullptr)
            cJSON_AddItemToObject(to, item->string, copy.release());
        else
            cJSON_AddItemToArray(to, copy.release());
    }
}

exit_code run(program &all, options &given)
{
    if (given.patterns.empty() != given.everything)
        throw failure(USAGE, "name settings, or everything with --all");
    client host = all.connect();
    const description described = describe_selected(host, given.patterns, false);
    const std::vector<described_setting> settings =
        select_settings(host, described, given.patterns);
    const size_t most = 50; // names fit into a datagram, and so does the answer
    const json_ptr together(cJSON_CreateObject());
    cJSON *const accepted = cJSON_AddArrayToObject(together.get(), "accepted");
    cJSON *const refused = cJSON_AddObjectToObject(together.get(), "refused");
    int omitted = 0;
    for (const auto &[module, names] : choose(settings, given.patterns)) {
        for (size_t first = 0; first < names.size(); first += most) {
            const json_ptr answer =
                reset(host, module, &names[first], std::min(most, names.size() - first));
            report(answer.get(), all.as_json);
            append(accepted, member_of(answer.get(), "accepted"));
            append(refused, member_of(answer.get(), "refused"));
            omitted += omitted_in(answer.get());
        }
    }
    if (omitted > 0)
        cJSON_AddNumberToObject(together.get(), "omitted", omitted);
    if (all.as_json)
        print_json(together.get());
    return outcome_of(together.get()).status();
}

} // namespace

void add_reset(const arguments &words, program &all)
{
    const auto [reset, given] = add_command<options>(
        words, all,
        {"reset", "Set settings to their defaults", run, nullptr, nullptr, file_access::changes});
    reset.footer(R"(Examples:
  camparam reset isp0.hue         a setting
  camparam reset isp0 'video?.gop'
  camparam reset --all)");
    reset.texts(given.patterns, {"settings", "GLOB", "Modules or settings"});
    reset.flag(given.everything, "--all", "Every setting");
}
