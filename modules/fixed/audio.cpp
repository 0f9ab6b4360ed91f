// Sound capture, encoding and output.
#include "camparam/audio.h"

#include "modules/fixed/accessors.h"

DEFINE_TABLES(audio, PARA_AUDIO_SLOTS)
timespec audio_item_start_time;
int audio_save_param_time = default_save_delay_ms;
int audio_item_changed;
static save_state saves;

// Value names, one array for each named member.
static const char *const aeFormat[] = {"AAC", "G711A"};
static const char *const audioInput[] = {"linein", "micin"};
static const char *const audioOut[] = {"lineout", "hdmi"};

#define AUDIO_MEMBER(slot, name) static constexpr const value_names &name##_names = null_names;
#define AUDIO_NAMED_MEMBER(slot, name) static constexpr value_names name##_names = names_of(name);
#include "camparam/audio_members.def"

static constexpr fixed_member members[] = {
#define AUDIO_MEMBER(number, name)                                                                 \
    {.slot = PARA_AUDIO_##name, .key = #name, .names = &name##_names},
#include "camparam/audio_members.def"
};

static constexpr file_move moves[] = {
    {.slot = PARA_AUDIO_adtsFlag, .before = PARA_AUDIO_aeFormat, .if_present = PARA_AUDIO_adtsFlag},
    {.slot = PARA_AUDIO_audioOut,
     .before = PARA_AUDIO_audioInputVol,
     // On purpose: AudioSave.OutputFollowsThePresenceOfTheInput.
     .if_present = PARA_AUDIO_audioInput},
};
static constexpr auto order = order_of(members, moves);

static constexpr fixed_module audio = {
    .name = "audio",
    .title = "AUDIO",
    .page = audio_page,
    .values = VALUE_TABLES(audio),
    .members = list_of(members),
    .file_order = order.list(),
    .stamp = {.time = &audio_item_start_time, .changed = &audio_item_changed, .saves = &saves},
    .save_delay_ms = &audio_save_param_time,
};

DEFINE_CHANGE(audio)
DEFINE_SET(audio)
#define AUDIO_MEMBER(slot, name)                                                                   \
    DEFINE_GETTERS(audio, name, PARA_AUDIO_##name)                                                 \
    DEFINE_SETTER(audio, name, PARA_AUDIO_##name)                                                  \
    DEFINE_INTERNAL_SETTER(audio, name, PARA_AUDIO_##name)                                         \
    DEFINE_NUM(audio, name, name##_names)
#include "camparam/audio_members.def"

#define AUDIO_NAMED_MEMBER(slot, name)                                                             \
    const char *para_get_audio_##name##_str(int value)                                             \
    {                                                                                              \
        return name_of_number(name##_names, value);                                                \
    }
#include "camparam/audio_members.def"

DEFINE_START(audio)

int para_get_audio_member_json(const char *name, int *value, const char **text)
{
    return get_member(audio, para_audio_cur, 0, name, value, text);
}

int para_set_audio_member_json(const char *name, int value, const char *text)
{
    return set_member(audio, name, value, text);
}

int answer_audio(const char *, const cJSON *item, const char *, answer_sink &sink)
{
    const trace_site site = PARA_IN(para_get_audio_opt);
    PARA_TRACE_AT(site, PARA_INFO, "inter");
    return answer_query(audio, para_audio_cur, 0, item, sink, site);
}
DEFINE_GET_OPT(audio)

int para_set_audio_opt(const char *, const cJSON *item, const char *)
{
    PARA_TRACE(PARA_INFO, "inter");
    const int changed = set_each(item, para_set_audio_member_json);
    if (changed != 0 && para_profile.audio_set_request_hook != nullptr)
        para_profile.audio_set_request_hook(item);
    return 0;
}

int save_cur_audio_param_delay(int)
{
    return save_after(audio, load_word(audio_save_param_time));
}

int para_set_audio_save_param_time(int delay_ms)
{
    store_word(audio_save_param_time, delay_ms);
    return 0;
}

DEFINE_ROW(audio)
