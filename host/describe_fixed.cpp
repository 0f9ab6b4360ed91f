// Describes modules whose members are fixed: lens, sound, video streams, image processor.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "af_table.h"
#include "description.h"
#include "isp_table.h"
#include "named_table.h"
#include "word.h"

namespace {

// A member's values in the parameter tables.
struct member_values {
    int exist, min, max, def, cur;
};

// The parameter tables of a module, by slot.
struct parameter_tables {
    const int *exist, *min, *max, *def, *cur;

    member_values at(int slot) const
    {
        return {.exist = load_word(exist[slot]),
                .min = load_word(min[slot]),
                .max = load_word(max[slot]),
                .def = load_word(def[slot]),
                .cur = load_word(cur[slot])};
    }
};

constexpr parameter_tables af_tables = {.exist = para_af_exist,
                                        .min = para_af_min,
                                        .max = para_af_max,
                                        .def = para_af_def,
                                        .cur = para_af_cur};
constexpr parameter_tables audio_tables = {.exist = para_audio_exist,
                                           .min = para_audio_min,
                                           .max = para_audio_max,
                                           .def = para_audio_def,
                                           .cur = para_audio_cur};
constexpr parameter_tables video_tables = {.exist = para_video_exist,
                                           .min = para_video_min,
                                           .max = para_video_max,
                                           .def = para_video_def,
                                           .cur = para_video_cur};

member_values isp_values(int isp_record::*member)
{
    return {.exist = load_word(para_isp_exist[0].*member),
            .min = load_word(para_isp_min[0].*member),
            .max = load_word(para_isp_max[0].*member),
            .def = load_word(para_isp_def[0].*member),
            .cur = load_word(para_isp_cur[0].*member)};
}

cJSON *add_number(cJSON *members, const char *name, const member_values &values)
{
    cJSON *const member = add_number_member(members, name, values.min, values.max);
    add_values(member, cJSON_CreateNumber(values.def), cJSON_CreateNumber(values.cur));
    return member;
}

// The names of the values within the range, which may extend past the last name.
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

// Set requests accept a named member by name only, so one that is exchanged as a number cannot be
// set.
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

// A set request finds the first member whose name is a prefix of the key: "rgain" shadows
// "rgain_tuning".
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
        if (is_present(member))
            add_number(members.get(), member.name, af_tables.at(member.slot));
    }
    return members;
}

json_ptr describe_audio(const char *)
{
    json_ptr members(cJSON_CreateObject());
    for (const named_member &member : audio_members)
        add_named_member(members.get(), member, audio_tables.at(member.slot));
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
                         video_tables.at(stream * PARA_VIDEO_STREAM_SLOTS + member.slot));
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
