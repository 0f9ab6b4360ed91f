#include "client/dump.h"

#include <cstdio>

#include "commands.h"

namespace {

struct options {
    std::vector<std::string> patterns;
};

exit_code run(program &all, options &given)
{
    client host(all.server);
    const description described = describe_selected(host, given.patterns, all.show_secrets);
    const json_ptr dump = dump_of(select_settings(host, described, given.patterns));
    puts(print_pretty(dump.get()).c_str());
    return DONE;
}

} // namespace

void add_dump(const arguments &words, program &all)
{
    const auto [dump, given] = add_command(
        words, all, {"dump", "Print the values of all that can be set, for \"load\" and \"diff\""},
        run);
    dump.texts(given.patterns, {"settings", "GLOB", "Only these modules or settings"});
}
