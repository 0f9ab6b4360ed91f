#include <cstdio>

#include "client/outcome.h"
#include "commands.h"
#include "output.h"
#include "report.h"

namespace {

struct options {
    bool show = false;
};

exit_code run(program &all, options &given)
{
    client host = all.connect();
    const json_ptr answer = host.call(given.show ? "api_get" : "api_set", "confirm", nullptr);
    const cJSON *const names = member_of(answer.get(), given.show ? "waiting" : "confirmed");
    if (!cJSON_IsArray(names))
        throw failure(OTHER, "the host takes no values back");
    if (all.as_json)
        print_json_line(answer.get());
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, names)
    {
        if (!all.as_json)
            puts(visible(string_of(name)).c_str());
    }
    report_omitted(answer.get());
    if (!given.show && cJSON_GetArraySize(names) == 0 && omitted_in(answer.get()) == 0)
        throw failure(REFUSED, "nothing waits to be confirmed");
    return DONE;
}

} // namespace

void add_confirm(const arguments &words, program &all)
{
    const auto [confirm, given] = add_command<options>(
        words, all, {"confirm", "Keep what \"camparam set --confirm\" has set", run});
    confirm.footer(R"(Example:
  camparam set netport.ip=192.168.1.9 --confirm 60
  camparam --host 192.168.1.9 confirm)");
    confirm.flag(given.show, "--show", "Only show what waits to be confirmed");
}
