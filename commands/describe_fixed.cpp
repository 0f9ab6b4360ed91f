// Describes modules whose members are fixed: lens, sound, video streams, image processor.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "af_table.h"
#include "base/word.h"
#include "description.h"
#include "isp_table.h"
#include "named_table.h"

namespace {

// A member's values in the parameter tables.
struct member_values {
    int exist, min, max, def, start, cur;
};

// The parameter tables of a module, by slot.
struct parameter_tables {
    const int *exist, *min, *max, *def, *start, *cur;

    member_values at(int slot) const
    {
        return {.exist = load_word(exist[slot]),
                .min = load_word(min[slot]),
                .max = load_word(max[slot]),
                .def = load_word(def[slot]),
                .start = load_word(start[slot]),
                .cur = load_word(cur[slot])};
    }
};

constexpr parameter_tables af_tables = {.exist = para_af_exist,
                                        .min = para_af_min,
                                        .max = para_af_max,
                                        .def = para_af_def,
                                        .start = para_af_init,
                                        .cur = para_af_cur};
constexpr parameter_tables audio_tables = {.exist = para_audio_exist,
                                           .min = para_audio_min,
                                           .max = para_audio_max,
                                           .def = para_audio_def,
                                           .start = para_audio_init,
                                           .cur = para_audio_cur};
constexpr parameter_tables video_tables = {.exist = para_video_exist,
                                           .min = para_video_min,
                                           .max = para_video_max,
                                           .def = para_video_def,
                                           .start = para_video_init,
                                           .cur = para_video_cur};

member_values isp_values(int isp_record::*member)
{
    return {.exist = load_word(para_isp_exist[0].*member),
            .min = load_word(para_isp_min[0].*member),
            .max = load_word(para_isp_max[0].*member),
            .def = load_word(para_isp_def[0].*member),
            .start = load_word(para_isp_init[0].*member),
            .cur = load_word(para_isp_cur[0].*member)};
}

void add_number(description &members, const char *name, const member_values &values)
{
    members.begin_number(name, values.min, values.max);
    members.add_default(values.def);
    members.add_start(values.start);
    members.add_current(values.cur);
}

// With the names of the values within the range, which may extend past the last name.
void add_enum(description &members, const named_member &member, const member_values &values)
{
    members.begin_enum(member.name);
    const char *name = nullptr;
    for (int value = std::max(values.min, 0);
         value <= values.max && (name = member.value_name(value)) != nullptr; value++)
        members.add_name(name);
    members.add_default(member.value_name(values.def));
    members.add_start(member.value_name(values.start));
    members.add_current(member.value_name(values.cur));
}

// Set requests accept a named member by name only, so one that is exchanged as a number cannot be
// set.
void add_named_member(description &members, const named_member &member, const member_values &values)
{
    const bool has_names = member.value_name != nullptr;
    if ((values.exist & PARA_PRESENT_AS_NUMBER) != 0) {
        add_number(members, member.name, values);
        if (has_names)
            members.mark_read_only();
    } else if ((values.exist & PARA_PRESENT_AS_NAME) != 0 && has_names) {
        add_enum(members, member, values);
    }
}

// A set request finds the first member whose name is a prefix of the key: "rgain" shadows
// "rgain_tuning".
bool is_read_only(const isp_member &member)
{
    for (const isp_member &row : isp_members) {
        if (&row != &member && strncmp(member.name, row.name, strlen(row.name)) == 0)
            return true;
    }
    return false;
}

int stream_of(const char *module)
{
    return atoi(module + strlen("video"));
}

} // namespace

bool is_stream_in_use(const char *module)
{
    return stream_of(module) < para_get_video_streamNum();
}

void describe_af(const char *, member_sink &sink)
{
    description members(sink);
    for (const af_member &member : af_members) {
        if (is_present(member))
            add_number(members, member.name, af_tables.at(member.slot));
    }
}

void describe_audio(const char *, member_sink &sink)
{
    description members(sink);
    for (const named_member &member : audio_members)
        add_named_member(members, member, audio_tables.at(member.slot));
}

void describe_video(const char *module, member_sink &sink)
{
    description members(sink);
    const int stream = stream_of(module);
    for (const named_member &member : video_members)
        add_named_member(members, member,
                         video_tables.at(stream * PARA_VIDEO_STREAM_SLOTS + member.slot));
}

void describe_isp(const char *, member_sink &sink)
{
    description members(sink);
    for (const isp_member &member : isp_members) {
        const member_values values = isp_values(member.value);
        if (values.exist == 0)
            continue;
        add_number(members, member.name, values);
        if (is_read_only(member))
            members.mark_read_only();
    }
}
