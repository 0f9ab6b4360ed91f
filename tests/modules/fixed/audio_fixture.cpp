#include "modules/fixed/audio_fixture.h"

const std::vector<Audio::accessors> Audio::all_members = {
#define AUDIO_MEMBER(slot, name)                                                                   \
    {slot,                                                                                         \
     #name,                                                                                        \
     para_get_audio_##name##_def,                                                                  \
     para_get_audio_##name##_min,                                                                  \
     para_get_audio_##name##_max,                                                                  \
     para_get_audio_##name##_init,                                                                 \
     para_get_audio_##name##_cur,                                                                  \
     para_set_audio_##name##_cur,                                                                  \
     _para_set_audio_##name##_cur,                                                                 \
     para_get_audio_##name##_num},
#include "camparam/audio_members.def"
};

const std::vector<Audio::named_accessors> Audio::named_members = {
#define AUDIO_NAMED_MEMBER(slot, name)                                                             \
    {#name, para_get_audio_##name##_str, para_get_audio_##name##_num},
#include "camparam/audio_members.def"
};

const std::map<std::string, std::vector<std::string>> Audio::names = {
    {"aeFormat", {"AAC", "G711A"}},
    {"audioInput", {"linein", "micin"}},
    {"audioOut", {"lineout", "hdmi"}},
};
