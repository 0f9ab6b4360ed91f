#include "client/dump.h"

#include <cstdio>

#include "commands.h"
#include "output.h"
#include "several.h"

namespace {

struct options {
    std::vector<std::string> patterns;
};

exit_code run(program &all, options &given)
{
    client host = all.connect();
    const description described = describe_selected(host, given.patterns, all.show_secrets);
    const json_ptr dump = dump_of(select_settings(host, described, given.patterns));
    print_json(dump.get());
    return DONE;
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
