// Target: a datagram that may be a share datagram, to a store on the sample device.
//   input: the datagram
#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

#include "camparam/camparam.h"
#include "fuzz/support/device.h"
#include "fuzz/support/start_state.h"
#include "fuzz/support/target.h"
#include "host/share_datagram.h"
#include "share/datagram.h"

namespace {

void start()
{
    install_sample_home();
    register_share_datagram_handler(apply_share_datagram);
    start_store();
    keep_start_state();
}

// The tables of a module, and the names of the members of its first instance.
struct settable {
    const char *module;
    const int *current, *lowest, *highest;
    int slots;
    const char *const *members;
    int stride;
};

const char *const audio_members[] = {
#define AUDIO_MEMBER(slot, name) #name,
#include "camparam/audio_members.def"
};
const char *const video_members[] = {
#define VIDEO_MEMBER(slot, name) #name,
#include "camparam/video_members.def"
};
const char *const isp_members[] = {
    "size",
#define ISP_MEMBER(slot, name, loaded, accessor, by_name, written) #name,
#include "camparam/isp_members.def"
};

const settable modules[] = {
    {"audio", para_audio_cur, para_audio_min, para_audio_max, PARA_AUDIO_SLOTS, audio_members,
     PARA_AUDIO_SLOTS},
    {"video", para_video_cur, para_video_min, para_video_max, PARA_VIDEO_SLOTS, video_members,
     PARA_VIDEO_STREAM_SLOTS},
    {"isp", &para_isp_cur[0].size, &para_isp_min[0].size, &para_isp_max[0].size,
     PARA_ISP_INSTANCES *PARA_ISP_SLOTS, isp_members, PARA_ISP_SLOTS},
};

// Of a text field that may lack its final zero.
template <size_t size> std::string text_of(const char (&field)[size])
{
    return std::string(field, strnlen(field, size));
}

void check_change(const settable &module, int slot, const para_share_datagram &sent)
{
    const int value = module.current[slot];
    const std::string member = module.members[slot % module.stride];
    require(text_of(sent.module) == module.module && text_of(sent.member).rfind(member, 0) == 0,
            "%s.%s was not meant", module.module, member.c_str());
    require(sent.instance == static_cast<unsigned>(slot / module.stride), "another instance");
    require(module.lowest[slot] <= value && value <= module.highest[slot], "%s: %d is out of range",
            member.c_str(), value);
    require(sent.type == PARA_SHARE_TEXT || sent.number == value, "%s: another number",
            member.c_str());
}

std::string copy_of(const settable &module)
{
    return std::string(reinterpret_cast<const char *>(module.current),
                       static_cast<size_t>(module.slots) * sizeof(int));
}

int count_changes(const settable &module, const std::string &before,
                  const para_share_datagram &sent)
{
    int changes = 0;
    for (int slot = 0; slot < module.slots; slot++) {
        int value = 0;
        memcpy(&value, before.data() + static_cast<size_t>(slot) * sizeof value, sizeof value);
        if (value != module.current[slot]) {
            check_change(module, slot, sent);
            changes++;
        }
    }
    return changes;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const bool started = (start(), true);
    if (!started)
        return 0;
    std::string before[std::size(modules)];
    std::transform(std::begin(modules), std::end(modules), std::begin(before), copy_of);

    para_share_datagram sent = {};
    memcpy(&sent, data, std::min(size, sizeof sent));
    const bool taken =
        take_share_datagram(reinterpret_cast<const char *>(data), static_cast<ssize_t>(size));
    require(taken == (size == sizeof sent && sent.type <= PARA_SHARE_TEXT),
            "another form of datagram was taken");

    int changes = 0;
    for (size_t i = 0; i < std::size(modules); i++)
        changes += count_changes(modules[i], before[i], sent);
    require(changes <= (taken ? 1 : 0), "%d changes", changes);
    restore_start_state();
    return 0;
}
