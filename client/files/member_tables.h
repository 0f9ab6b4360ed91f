// The members that modules have in files, from the lists of the interface.
#pragma once

#include "camparam/audio.h"
#include "camparam/isp.h"
#include "camparam/video.h"

using value_name = const char *(*)(int value);

struct table_member {
    const char *name;
    value_name name_of = nullptr; // null: the values have no names
    bool is_asked = true;         // requests can ask for it by name
};

inline constexpr table_member af_table[] = {
#define AF_MEMBER(slot, member) {.name = #member},
#include "camparam/af_members.def"
};

inline constexpr table_member audio_table[] = {
#define AUDIO_MEMBER(slot, member) {.name = #member},
#define AUDIO_NAMED_MEMBER(slot, member)                                                           \
    {.name = #member, .name_of = para_get_audio_##member##_str},
#include "camparam/audio_members.def"
};

inline constexpr table_member video_table[] = {
#define VIDEO_MEMBER(slot, member) {.name = #member},
#define VIDEO_NAMED_MEMBER(slot, member)                                                           \
    {.name = #member, .name_of = para_get_video_##member##_str},
#include "camparam/video_members.def"
};

inline constexpr table_member isp_table[] = {
#define IN_FILES_yes(member, accessor) {.name = #member, .is_asked = #accessor[0] == 'y'},
#define IN_FILES_no(member, accessor)
#define ISP_MEMBER(slot, member, loaded, accessor, by_name, written)                               \
    IN_FILES_##loaded(member, accessor)
#include "camparam/isp_members.def"
#undef IN_FILES_yes
#undef IN_FILES_no
};
