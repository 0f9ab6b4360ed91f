// Describes modules of the host's own by what they answer.
#include <cerrno>

#include "description.h"

namespace {

void add(description &members, const cJSON *value, bool is_settable)
{
    const char *const name = value->string != nullptr ? value->string : "";
    if (cJSON_IsNumber(value)) {
        members.begin_number(name);
        members.add_current(value->valuedouble);
    } else if (cJSON_IsString(value)) {
        members.begin_text(name);
        members.add_current(value->valuestring);
    } else {
        members.begin_json(name);
        members.add_current(json_ptr(cJSON_Duplicate(value, 1)));
    }
    if (!is_settable)
        members.mark_read_only();
}

// Null when it answers nothing.
json_ptr ask(const para_module &row, bool &starved)
{
    json_builder asked;
    asked.append(asked.array(asked.root(), row.name), "all");
    const json_ptr request = asked.take();
    cJSON *answer = nullptr;
    starved =
        request == nullptr || row.get_opt(row.name, request->child, &answer, row.name) == -ENOMEM;
    return json_ptr(answer);
}

} // namespace

void describe_host_module(const para_module &row, member_sink &sink)
{
    bool starved = false;
    const json_ptr answer = ask(row, starved); // outlives the description, which needs the names
    description members(sink);
    if (starved)
        members.lack();
    if (answer == nullptr)
        return;
    const bool is_settable = row.set_opt != nullptr;
    if (!cJSON_IsObject(answer.get())) { // the module is its only setting
        add(members, answer.get(), is_settable);
        return;
    }
    const cJSON *value = nullptr;
    cJSON_ArrayForEach(value, answer.get())
    {
        add(members, value, is_settable);
    }
}
