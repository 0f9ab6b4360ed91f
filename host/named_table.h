// The audio and the video members as tables. Values of some members have names.
#pragma once

#include "camparam/audio.h"
#include "camparam/video.h"

struct named_member {
    const char *name;
    int slot;                       // within a stream, for video
    const char *(*value_name)(int); // null: its values have no names
};

inline constexpr named_member audio_members[] = {
#define AUDIO_MEMBER(slot, name) {#name, slot, nullptr},
#define AUDIO_NAMED_MEMBER(slot, name) {#name, slot, para_get_audio_##name##_str},
#include "camparam/audio_members.def"
};

inline constexpr named_member video_members[] = {
#define VIDEO_MEMBER(slot, name) {#name, slot, nullptr},
#define VIDEO_NAMED_MEMBER(slot, name) {#name, slot, para_get_video_##name##_str},
#include "camparam/video_members.def"
};
