#include "modules/fixed/video_fixture.h"

const std::vector<Video::accessors> Video::all_members = {
#define VIDEO_MEMBER(slot, name)                                                                   \
    {slot,                                                                                         \
     #name,                                                                                        \
     para_get_video_##name##_def,                                                                  \
     para_get_video_##name##_min,                                                                  \
     para_get_video_##name##_max,                                                                  \
     para_get_video_##name##_init,                                                                 \
     para_get_video_##name##_cur,                                                                  \
     para_set_video_##name##_cur,                                                                  \
     _para_set_video_##name##_cur,                                                                 \
     para_get_video_##name##_num},
#include "camparam/video_members.def"
};

const std::vector<Video::named_accessors> Video::named_members = {
#define VIDEO_NAMED_MEMBER(slot, name)                                                             \
    {#name, para_get_video_##name##_str, para_get_video_##name##_num,                              \
     para_set_video_##name##_cur_bystr, para_get_video_##name##_cur},
#include "camparam/video_members.def"
};

const std::map<std::string, int> Video::name_counts = {
    {"protocol", 3}, {"size", 47}, {"rcMode", 5}, {"profile", 4}};

std::string Video::streams_of(const std::vector<std::string> &objects)
{
    std::string text = "{";
    for (size_t i = 0; i < objects.size(); i++)
        text += (i > 0 ? ",'video" : "'video") + std::to_string(i) + "':" + objects[i];
    return text + "}";
}
