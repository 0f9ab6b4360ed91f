#include "modules/text/misc_fixture.h"

#include <iterator>

const std::vector<Misc::accessors> Misc::all_members = {
#define MISC_MEMBER(name)                                                                          \
    {#name,                                                                                        \
     para_get_misc_##name##_min,                                                                   \
     para_get_misc_##name##_max,                                                                   \
     para_get_misc_##name##_def,                                                                   \
     para_get_misc_##name##_cur,                                                                   \
     para_set_misc_##name##_cur},
#include "camparam/misc_members.def"
};

const std::vector<Misc::enum_accessors> Misc::enum_members = {
#define MISC_ENUM_MEMBER(name)                                                                     \
    {#name,                                                                                        \
     {std::begin(name), std::end(name)},                                                           \
     para_get_misc_##name##_str,                                                                   \
     para_get_misc_##name##_num,                                                                   \
     para_set_misc_##name##_cur,                                                                   \
     para_set_misc_##name##_cur_bystr,                                                             \
     para_get_misc_##name##_cur},
#include "camparam/misc_members.def"
};

bool Misc::is_enum(const std::string &key)
{
    for (const enum_accessors &member : enum_members) {
        if (key == member.key)
            return true;
    }
    return false;
}

const std::map<std::string, int> Misc::number_defaults = {
    {"mirror", 0},   {"flip", 1},         {"vi_framerate", 50}, {"ezoom_limit", 4}, {"lock", 0},
    {"telnetEn", 0}, {"privacyCover", 1}, {"netStream", 2},     {"trackMode", 3},
};
const std::map<std::string, std::pair<int, int>> Misc::number_ranges = {
    {"mirror", {0, 1}},    {"flip", {0, 1}},         {"vi_framerate", {1, 60}},
    {"lock", {0, 1}},      {"ezoom_limit", {1, 16}}, {"telnetEn", {0, 1}},
    {"netStream", {0, 3}}, {"privacyCover", {0, 1}}, {"trackMode", {0, 4}},
};

std::string Misc::list_of(const std::vector<std::string> &names, size_t first, size_t last)
{
    std::string list = "[";
    for (size_t i = first; i <= last; i++)
        list += (i > first ? ",'" : "'") + names[i] + "'";
    return list + "]";
}
