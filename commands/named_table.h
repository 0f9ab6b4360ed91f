// The audio and video members as tables.
#pragma once

#include "camparam/audio.h"
#include "camparam/video.h"

struct named_member {
    const char *name;
    int slot;                                 // of video: within the stream
    const char *(*value_name)(int) = nullptr; // null: the values have no names
};

inline constexpr named_member audio_members[] = {
#define AUDIO_MEMBER(number, member) {.name = #member, .slot = PARA_AUDIO_##member},
#define AUDIO_NAMED_MEMBER(number, member)                                                         \
    {.name = #member, .slot = PARA_AUDIO_##member, .value_name = para_get_audio_##member##_str},
#include "camparam/audio_members.def"
};

inline constexpr named_member video_members[] = {
#define VIDEO_MEMBER(number, member) {.name = #member, .slot = PARA_VIDEO_##member},
#define VIDEO_NAMED_MEMBER(number, member)                                                         \
    {.name = #member, .slot = PARA_VIDEO_##member, .value_name = para_get_video_##member##_str},
#include "camparam/video_members.def"
};
