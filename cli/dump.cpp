#include "client/dump.h"

#include <algorithm>
#include <cstdio>

#include "client/utf8.h"
#include "commands.h"
#include "output.h"
#include "several.h"

namespace {

struct options {
    std::vector<std::string> patterns;
};

// JSON cannot hold other texts, and what it would hold instead is not to be loaded.
bool is_dumpable(const described_setting &setting)
{
    const bool is_text = is_utf8(setting.member->current);
    if (!is_text)
        print_failure({OTHER, setting.name().text() + " is no UTF-8, the dump leaves it out"});
    return is_text;
}

exit_code run(program &all, options &given)
{
    client host = all.connect();
    const description described = describe_selected(host, given.patterns, all.show_secrets);
    std::vector<described_setting> settings = select_settings(host, described, given.patterns);
    const auto dumped = std::stable_partition(settings.begin(), settings.end(), is_dumpable);
    const bool is_whole = dumped == settings.end();
    settings.erase(dumped, settings.end());
    print_json(dump_of(settings).get());
    return is_whole ? DONE : PARTLY_DONE;
}

exit_code compare(const program &, const host_results &results, const options &)
{
    return print_by_host(results);
}

} // namespace

void add_dump(const arguments &words, program &all)
{
    const auto [dump, given] = add_command<options>(
        words, all,
        {"dump", "Print the values of all that can be set, for \"load\" and \"diff\"", run, nullptr,
         compare, file_access::reads});
    dump.footer(R"(Values of secrets are left out, unless with --show-secrets.

Examples:
  camparam dump >camera.json
  camparam dump isp0 audio >picture_and_sound.json)");
    dump.texts(given.patterns, {"settings", "GLOB", "Only these modules or settings"});
}
