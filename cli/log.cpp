#include "client/log.h"

#include <cstdio>

#include "client/selection.h"
#include "commands.h"
#include "output.h"
#include "time_text.h"

namespace {

struct options {
    std::vector<std::string> patterns;
};

exit_code run(program &all, options &given)
{
    client host = all.connect();
    bool any = false;
    for (const logged_change &change : read_log(host, 0).changes) {
        if (!is_meant(given.patterns, change.name))
            continue;
        any = true;
        if (all.as_json) {
            print_json_line(change.entry.get());
            continue;
        }
        printf("%s  %s: %s -> %s  by %s\n", time_text(change.time_ms).c_str(),
               visible(change.name.text()).c_str(), visible(change.value("old")).c_str(),
               visible(change.value("new")).c_str(), visible(change.sender()).c_str());
    }
    if (!any)
        check_patterns(host, given.patterns);
    return DONE;
}

} // namespace

void add_log(const arguments &words, program &all)
{
    const auto [log, given] = add_command<options>(
        words, all,
        {"log", "Show the last changes, and who made them: the last 256 at the most", run});
    log.footer(R"(Examples:
  camparam log
  camparam log netport 'isp0.*gain*')");
    log.texts(given.patterns, {"settings", "GLOB", "Only these modules or settings"});
}
