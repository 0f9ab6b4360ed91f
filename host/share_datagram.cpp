#include "share_datagram.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

#include "camparam/audio.h"
#include "camparam/isp.h"
#include "camparam/video.h"
#include "json.h"
#include "member_names.h"

namespace {

// A module that share datagrams can set.
struct share_target {
    const char *name;
    int (*set_opt)(const char *key, const cJSON *item, const char *name);
    bool (*has)(const char *member);
    int (*instances)() = [] { return 1; };
    bool is_numbered = false; // requests append the instance to the name, as in "video0"
};

template <typename table> bool is_in(const table &members, const char *name)
{
    return std::any_of(std::begin(members), std::end(members),
                       [&](const char *member) { return strcmp(member, name) == 0; });
}

const share_target targets[] = {
    {.name = "video",
     .set_opt = para_set_video_opt,
     .has = [](const char *member) { return is_in(video_member_names, member); },
     .instances = para_get_video_streamNum,
     .is_numbered = true},
    {.name = "audio",
     .set_opt = para_set_audio_opt,
     .has = [](const char *member) { return is_in(audio_member_names, member); }},
    {.name = "isp",
     .set_opt = para_set_isp_opt,
     .has = [](const char *member) { return is_in(isp_member_names, member); },
     .instances = [] { return isp_num; },
     .is_numbered = true},
};

template <size_t size> bool ends_within(const char (&field)[size])
{
    return memchr(field, '\0', size) != nullptr;
}

const share_target *target_of(const para_share_datagram &datagram)
{
    const auto found =
        std::find_if(std::begin(targets), std::end(targets), [&](const share_target &target) {
            return strcmp(target.name, datagram.module) == 0;
        });
    return found != std::end(targets) ? found : nullptr;
}

bool is_known(const share_target &target, const para_share_datagram &datagram)
{
    return datagram.instance < static_cast<unsigned>(target.instances()) &&
           target.has(datagram.member);
}

void apply(const share_target &target, const para_share_datagram &datagram)
{
    std::string key = target.name;
    if (target.is_numbered)
        key += std::to_string(datagram.instance);

    const json_ptr request(cJSON_CreateObject());
    cJSON *const item = cJSON_AddObjectToObject(request.get(), key.c_str());
    if (datagram.type == PARA_SHARE_NUMBER)
        cJSON_AddNumberToObject(item, datagram.member, datagram.number);
    else
        cJSON_AddStringToObject(item, datagram.member, datagram.text);
    target.set_opt(key.c_str(), item, key.c_str());
}

} // namespace

int apply_share_datagram(const para_share_datagram *datagram)
{
    if (!ends_within(datagram->module) || !ends_within(datagram->member) ||
        !ends_within(datagram->text))
        return -1;
    const share_target *const target = target_of(*datagram);
    if (target == nullptr || !is_known(*target, *datagram))
        return -1;

    apply(*target, *datagram);
    return 0;
}
