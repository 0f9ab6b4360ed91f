#include "description_page.h"

#include <cstring>
#include <utility>

#include "page.h"

// Quotes, colons, braces and commas, and the names of the members.
static constexpr size_t frame_of_module = sizeof R"("":{"set":"","members":{}},)";
static constexpr size_t frame_of_member = sizeof R"("":,)";

description_page::description_page(json_builder &in, const cJSON *wanted_modules,
                                   const cJSON *wanted_member, page_cursor begin)
    : reply(in), list(wanted_modules), only(cJSON_GetStringValue(wanted_member)), from(begin),
      modules(in.object(in.root(), "modules"))
{
}

bool description_page::is_wanted(const char *module) const
{
    const cJSON *each = nullptr;
    cJSON_ArrayForEach(each, list)
    {
        if (cJSON_IsString(each) && strcmp(each->valuestring, module) == 0)
            return true;
    }
    return list == nullptr;
}

// By an earlier page.
bool description_page::is_told(int member) const
{
    return current.row < from.row || (current.row == from.row && member < from.member);
}

bool description_page::make_room_for(size_t bytes, bool always)
{
    if (!always && used + bytes > most_page_bytes)
        full = true;
    else
        used += bytes;
    return !full;
}

void description_page::add_module()
{
    cJSON *const module = reply.object(modules, name);
    if (command != nullptr)
        reply.text(module, "set", command);
    members = reply.object(module, "members");
}

void description_page::begin_module(int row, const para_module &module, const char *setter)
{
    wanted = !full && is_wanted(module.name);
    if (!wanted)
        return;
    current = {row, 0};
    name = module.name;
    command = setter;
    members = nullptr;
    // A module without members is told, too.
    if (!is_told(0) && make_room_for(frame_of_module + longest_in_json(name), used == 0))
        add_module();
}

// A value or text may be longer than a datagram. Null when memory runs out.
static printed_ptr print_to_fit(cJSON *member)
{
    static constexpr void (*const parts[])(cJSON *) = {drop_values, drop_texts, drop_names};
    printed_ptr text(cJSON_PrintUnformatted(member));
    for (const auto drop : parts) {
        if (text == nullptr || strlen(text.get()) <= most_listed_bytes)
            break;
        drop(member);
        text.reset(cJSON_PrintUnformatted(member));
    }
    return text;
}

void description_page::take(const char *member_name, json_ptr member)
{
    if (member == nullptr) {
        reply.lack();
        return;
    }
    if (!wanted || full || (only != nullptr && strcmp(only, member_name) != 0))
        return;
    if (is_told(current.member)) {
        current.member++;
        return;
    }
    const printed_ptr text = print_to_fit(member.get());
    if (text == nullptr) {
        reply.lack();
        return;
    }
    const size_t of_module = members == nullptr ? frame_of_module + longest_in_json(name) : 0;
    // A page holds one member at least.
    if (!make_room_for(of_module + frame_of_member + longest_in_json(member_name) +
                           strlen(text.get()),
                       !has_members))
        return;
    has_members = true;
    if (members == nullptr)
        add_module();
    reply.value(members, member_name, std::move(member));
    current.member++;
}
