// Modules whose members are fixed: lens, sound, video streams, image processor.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "af_table.h"
#include "description.h"
#include "isp_table.h"
#include "named_table.h"

namespace {

// One place of the parameter tables.
struct member_values {
    int exist, min, max, def, cur;
};

member_values audio_values(int slot)
{
    return {para_audio_exist[slot], para_audio_min[slot], para_audio_max[slot],
            para_audio_def[slot], para_audio_cur[slot]};
}

member_values video_values(int slot)
{
    return {para_video_exist[slot], para_video_min[slot], para_video_max[slot],
            para_video_def[slot], para_video_cur[slot]};
}

member_values isp_values(int isp_record::*value)
{
    return {para_isp_exist[0].*value, para_isp_min[0].*value, para_isp_max[0].*value,
            para_isp_def[0].*value, para_isp_cur[0].*value};
}

cJSON *add_number(cJSON *members, const char *name, const member_values &values)
{
    cJSON *const member = add_number_member(members, name, values.min, values.max);
    add_values(member, cJSON_CreateNumber(values.def), cJSON_CreateNumber(values.cur));
    return member;
}

// The names within the range; it may reach beyond the names.
std::vector<std::string> names_of(const named_member &member, const member_values &values)
{
    std::vector<std::string> names;
    for (int value = std::max(values.min, 0); value <= values.max; value++) {
        const char *const name = member.value_name(value);
        if (name == nullptr)
            break;
        names.emplace_back(name);
    }
    return names;
}

cJSON *name_node(const named_member &member, int value)
{
    const char *const name = member.value_name(value);
    return name != nullptr ? cJSON_CreateString(name) : nullptr;
}

// Requests set a member whose values have names by name alone, so one that is exchanged as a number
// is out of their reach.
void add_named_member(cJSON *members, const named_member &member, const member_values &values)
{
    const bool has_names = member.value_name != nullptr;
    if ((values.exist & PARA_PRESENT_AS_NUMBER) != 0) {
        cJSON *const added = add_number(members, member.name, values);
        if (has_names)
            mark_read_only(added);
    } else if ((values.exist & PARA_PRESENT_AS_NAME) != 0 && has_names) {
        cJSON *const added = add_enum_member(members, member.name, names_of(member, values));
        add_values(added, name_node(member, values.def), name_node(member, values.cur));
    }
}

// A set request goes to the first member whose name the key begins with, so it cannot reach
// "rgain_tuning" behind "rgain".
bool is_read_only(const isp_member &member)
{
    return std::any_of(std::begin(isp_members), std::end(isp_members), [&](const isp_member &row) {
        return &row != &member && strncmp(member.name, row.name, strlen(row.name)) == 0;
    });
}

} // namespace

json_ptr describe_af(const char *)
{
    json_ptr members(cJSON_CreateObject());
    for (const af_member &member : af_members) {
        const int slot = member.slot;
        if (is_present(member))
            add_number(members.get(), member.name,
                       {para_af_exist[slot], para_af_min[slot], para_af_max[slot],
                        para_af_def[slot], para_af_cur[slot]});
    }
    return members;
}

json_ptr describe_audio(const char *)
{
    json_ptr members(cJSON_CreateObject());
    for (const named_member &member : audio_members)
        add_named_member(members.get(), member, audio_values(member.slot));
    return members;
}

json_ptr describe_video(const char *module)
{
    const int stream = atoi(module + strlen("video"));
    if (stream >= para_get_video_streamNum())
        return nullptr;

    json_ptr members(cJSON_CreateObject());
    for (const named_member &member : video_members)
        add_named_member(members.get(), member,
                         video_values(stream * PARA_VIDEO_STREAM_SLOTS + member.slot));
    return members;
}

json_ptr describe_isp(const char *)
{
    json_ptr members(cJSON_CreateObject());
    for (const isp_member &member : isp_members) {
        const member_values values = isp_values(member.value);
        if (values.exist == 0)
            continue;
        cJSON *const added = add_number(members.get(), member.name, values);
        if (is_read_only(member))
            mark_read_only(added);
    }
    return members;
}
