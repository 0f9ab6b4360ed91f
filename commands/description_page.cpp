#include "description_page.h"

#include <cstring>
#include <utility>

#include "page.h"

// Of a member alone: what a datagram holds, less the reply's other members. A conf value may be
// longer than everything else together.
static constexpr size_t longest_member = 65000;
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

// Bytes as they stand in JSON text, at the most.
static size_t longest_text(const char *text)
{
    size_t length = 0;
    for (; *text != '\0'; text++) {
        const auto byte = static_cast<unsigned char>(*text);
        length += byte < ' ' || byte == '"' || byte == '\\' ? 6 : 1;
    }
    return length;
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
    if (!is_told(0) && make_room_for(frame_of_module + longest_text(name), used == 0))
        add_module();
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
    printed_ptr text(cJSON_PrintUnformatted(member.get()));
    if (text != nullptr && strlen(text.get()) > longest_member) {
        drop_values(member.get());
        text.reset(cJSON_PrintUnformatted(member.get()));
    }
    if (text == nullptr) {
        reply.lack();
        return;
    }
    const size_t of_module = members == nullptr ? frame_of_module + longest_text(name) : 0;
    // A page holds one member at least.
    if (!make_room_for(of_module + frame_of_member + longest_text(member_name) + strlen(text.get()),
                       !has_members))
        return;
    has_members = true;
    if (members == nullptr)
        add_module();
    reply.value(members, member_name, std::move(member));
    current.member++;
}
