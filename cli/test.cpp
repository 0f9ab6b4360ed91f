#include <cstdio>

#include "client/change.h"
#include "client/outcome.h"
#include "commands.h"
#include "output.h"

namespace {

struct options {
    std::string setting, value;
    form_options form;
};

// What the host says of it; a host without the command is not asked.
void ask_host(client &host, const change &planned)
{
    json_ptr data(cJSON_CreateObject());
    add_setting(data.get(), planned.name, planned.value.as_node());
    const json_ptr answer = host.call("api_get", "check", std::move(data));
    const cJSON *const refused = member_of(answer.get(), "refused");
    const int omitted = omitted_in(answer.get());
    const std::string more = omitted > 0 ? "and " + std::to_string(omitted) + " more" : "";
    if (cJSON_GetArraySize(refused) > 0)
        throw failure(REFUSED, std::string(refused->child->string) + ": " +
                                   string_of(refused->child) + (more.empty() ? "" : ", " + more));
    if (omitted > 0)
        throw failure(OTHER, "the host's answer leaves out what it says of " + planned.name.text());
}

exit_code run(program &all, options &given)
{
    client host = all.connect();
    const setting_name name = parse_setting_name(given.setting);
    const change planned = plan_change(host, {name, given.value}, describe(host, {name.module}),
                                       {given.form.form(), false});
    ask_host(host, planned);
    if (all.as_json) {
        const json_ptr result(cJSON_CreateObject());
        cJSON_AddStringToObject(result.get(), "setting", name.text().c_str());
        cJSON_AddItemToObject(result.get(), "value", planned.value.as_node().release());
        print_json_line(result.get());
    } else {
        printf("%s=%s would be taken\n", visible(name.text()).c_str(),
               visible(planned.value.value).c_str());
    }
    return DONE;
}

} // namespace

void add_test(const arguments &words, program &all)
{
    const auto [test, given] =
        add_command<options>(words, all,
                             {"test", "Tell whether a value would be taken, and set nothing", run,
                              nullptr, nullptr, file_access::reads});
    test.footer(R"(Example:
  camparam test video0.bitRate 4096)");
    test.text(given.setting, {"setting", "MODULE.MEMBER", "The setting"}).required();
    test.text(given.value, {"value", "VALUE", "Its value"}).required();
    add_form_options(test, given.form);
}
