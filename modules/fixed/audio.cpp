// Sound capture, encoding and output.
#include "camparam/audio.h"

#include "base/query.h"
#include "base/trace.h"
#include "camparam/control.h"
#include "modules/fixed/fixed_module.h"

int para_audio_def[15], para_audio_min[15], para_audio_max[15];
int para_audio_init[15], para_audio_cur[15], para_audio_exist[15];
timespec audio_item_start_time;
int audio_save_param_time = save_delay_ms;
int audio_item_changed;

static const char *const aeFormat[] = {"AAC", "G711A"};
static const char *const audioInput[] = {"linein", "micin"};
static const char *const audioOut[] = {"lineout", "hdmi"};

#define AUDIO_NAMED_MEMBER(slot, name) static constexpr param_names name##_names = names_of(name);
#include "camparam/audio_members.def"
#define AUDIO_MEMBER(slot, name) static constexpr const param_names &name##_names = null_names;
#define AUDIO_NAMED_MEMBER(slot, name)
#include "camparam/audio_members.def"

// The slots by name.
enum {
#define AUDIO_MEMBER(slot, name) slot_##name = slot,
#include "camparam/audio_members.def"
};

static constexpr param_member members[] = {
#define AUDIO_MEMBER(slot, name) {slot, #name, &name##_names},
#include "camparam/audio_members.def"
};
constexpr int slots = sizeof members / sizeof members[0];
static_assert(sizeof para_audio_cur / sizeof para_audio_cur[0] == slots, "a slot for each member");

static constexpr param_written written[] = {
    {slot_audioEnable, slot_audioEnable},
    {slot_adtsFlag, slot_adtsFlag},
    {slot_aeFormat, slot_aeFormat},
    {slot_sampleRate, slot_sampleRate},
    {slot_streamRate, slot_streamRate},
    {slot_audioInput, slot_audioInput},
    {slot_volLeftIn, slot_volLeftIn},
    {slot_volRightIn, slot_volRightIn},
    {slot_audioOut, slot_audioInput}, // on purpose: AudioSave.OutputFollowsThePresenceOfTheInput
    {slot_audioInputVol, slot_audioInputVol},
    {slot_audioOutVol, slot_audioOutVol},
    {slot_mute, slot_mute},
    {slot_denoise, slot_denoise},
    {slot_agcEnable, slot_agcEnable},
    {slot_audioOutMute, slot_audioOutMute},
};

static_assert(sizeof written / sizeof written[0] == slots, "every member is saved");

static constexpr param_table table = {
    PARAM_ARRAYS(audio),
    "audio",
    second_form,
    slots,
    members,
    slots,
    written,
    sizeof written / sizeof written[0],
    nullptr,
    {&audio_item_start_time, &audio_item_changed},
    &audio_save_param_time,
    "AUDIO",
    "para_init_audio",
    "audio_page",
};

static int if_present(const int *values, int slot)
{
    return value_if_present(values, para_audio_exist, slot);
}

#define AUDIO_MEMBER(slot, name)                                                                   \
    int para_get_audio_##name##_def()                                                              \
    {                                                                                              \
        return load_word(para_audio_def[slot]);                                                    \
    }                                                                                              \
    int para_get_audio_##name##_min()                                                              \
    {                                                                                              \
        return load_word(para_audio_min[slot]);                                                    \
    }                                                                                              \
    int para_get_audio_##name##_max()                                                              \
    {                                                                                              \
        return load_word(para_audio_max[slot]);                                                    \
    }                                                                                              \
    int para_get_audio_##name##_init()                                                             \
    {                                                                                              \
        return if_present(para_audio_init, slot);                                                  \
    }                                                                                              \
    int para_get_audio_##name##_cur()                                                              \
    {                                                                                              \
        return if_present(para_audio_cur, slot);                                                   \
    }                                                                                              \
    int _para_set_audio_##name##_cur(int value)                                                    \
    {                                                                                              \
        return param_accepts(table, slot, value) ? param_change(table, slot, value) : 0;           \
    }                                                                                              \
    int para_set_audio_##name##_cur(int value)                                                     \
    {                                                                                              \
        if (!param_accepts(table, slot, value))                                                    \
            return 0;                                                                              \
        return param_take(table, slot, value, para_profile.audio_set_notify_hook,                  \
                          para_set_audio_##name##_cur);                                            \
    }                                                                                              \
    int para_get_audio_##name##_num(const char *text)                                              \
    {                                                                                              \
        return number_of_text(name##_names, text);                                                 \
    }
#include "camparam/audio_members.def"

#define AUDIO_NAMED_MEMBER(slot, name)                                                             \
    const char *para_get_audio_##name##_str(int value)                                             \
    {                                                                                              \
        return name_of_number(name##_names, value);                                                \
    }
#include "camparam/audio_members.def"

int para_init_audio(const char *)
{
    return param_start(table);
}

int para_get_audio_member_json(const char *name, int *value, const char **text)
{
    return param_get_member(table, table.cur, 0, name, value, text);
}

int para_set_audio_member_json(const char *name, int value, const char *text)
{
    const param_member *const member = param_find(table, name);
    if (member == nullptr || (is_named(*member) && text == nullptr))
        return 0;
    return param_set_as_requested(table, 0, *member, value, text) ? 1 : 0;
}

int para_get_audio_opt(const char *, const cJSON *item, cJSON **answer, const char *)
{
    PARA_TRACE(PARA_INFO, "inter");
    if (asks_for_all(item)) {
        *answer = param_answer_all(table, table.cur, 0);
        return 0;
    }
    *answer = param_answer_listed(table, table.cur, 0, item);
    PARA_TRACE(PARA_INFO, "leave");
    return 0;
}

int para_set_audio_opt(const char *, const cJSON *item, const char *)
{
    PARA_TRACE(PARA_INFO, "inter");
    int changed = 0;
    const cJSON *child = nullptr;
    cJSON_ArrayForEach(child, item)
    {
        if (child->string != nullptr)
            changed |=
                para_set_audio_member_json(child->string, child->valueint, child->valuestring);
    }
    if (changed != 0 && para_profile.audio_set_request_hook != nullptr)
        para_profile.audio_set_request_hook(item);
    return 0;
}

int para_need_save_audio(const char *)
{
    return param_due(table) ? 1 : 0;
}

int save_cur_audio_param_delay(int)
{
    return param_save_after(table, load_word(audio_save_param_time));
}

int para_set_audio_save_param_time(int delay_ms)
{
    store_word(audio_save_param_time, delay_ms);
    return 0;
}

int para_save_audio(const char *)
{
    return param_save(table);
}

void audio_page()
{
    param_page(table);
}
