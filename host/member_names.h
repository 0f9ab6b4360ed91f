// The names of the members that share datagrams can set.
#pragma once

inline constexpr const char *audio_member_names[] = {
#define AUDIO_MEMBER(slot, name) #name,
#include "camparam/audio_members.def"
};

inline constexpr const char *video_member_names[] = {
#define VIDEO_MEMBER(slot, name) #name,
#include "camparam/video_members.def"
};

inline constexpr const char *isp_member_names[] = {
#define ISP_ROW_yes(name) #name,
#define ISP_ROW_no(name)
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written) ISP_ROW_##accessor(name)
#include "camparam/isp_members.def"
#undef ISP_ROW_yes
#undef ISP_ROW_no
};
