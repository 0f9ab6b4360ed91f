// The encoded streams: every member exists once for each.
#include "camparam/video.h"

#include <cstring>

#include "base/query.h"
#include "base/text.h"
#include "base/trace.h"
#include "camparam/control.h"
#include "camparam/platform.h"
#include "modules/fixed/fixed_module.h"
#include "modules/fixed/video_size.h"

constexpr int streams = 6; // that the table holds

int para_video_def[66], para_video_min[66], para_video_max[66];
int para_video_init[66], para_video_cur[66], para_video_exist[66];
int g_num_stream;
int video_init_done;
timespec video_item_start_time;
int video_save_param_time = save_delay_ms;
int video_item_changed;

static const char *const protocol[] = {"H264", "H265", "MJPEG"};
static const char *const rcMode[] = {"CBR", "VBR", "ABR", "FIXQP", "AVBR"};
static const char *const profile[] = {"baseline", "mainprofile", "highprofile", "svc-t"};

static constexpr param_names protocol_names = names_of(protocol);
static constexpr param_names rcMode_names = names_of(rcMode);
static constexpr param_names profile_names = names_of(profile);
#define VIDEO_MEMBER(slot, name) static constexpr const param_names &name##_names = null_names;
#define VIDEO_NAMED_MEMBER(slot, name)
#include "camparam/video_members.def"

static constexpr param_member members[] = {
#define VIDEO_MEMBER(slot, name) {slot, #name, &name##_names},
#include "camparam/video_members.def"
};

constexpr int stream_slots = sizeof members / sizeof members[0];
constexpr int slots = sizeof para_video_cur / sizeof para_video_cur[0];
static_assert(slots == streams * stream_slots, "a slot for each member of each stream");

static constexpr param_instances instances = {
    "video", streams, stream_slots, &g_num_stream, "check_video_num", "stream_", "",
};

static constexpr param_table table = {
    PARAM_ARRAYS(video),
    "video",
    second_form,
    slots,
    members,
    stream_slots,
    nullptr,
    0,
    &instances,
    {&video_item_start_time, &video_item_changed},
    &video_save_param_time,
    "VIDEO",
    "para_init_video",
    "video_page",
};

// Lets a stream equal to the count through (VideoStreams.CountItselfIsLetThrough), never one
// beyond the table.
static bool can_be_read(int stream)
{
    return static_cast<unsigned>(stream) < streams && stream <= g_num_stream;
}

static int read_slot(const int *values, int stream, int slot)
{
    return can_be_read(stream) ? load_word(values[stream * stream_slots + slot]) : -1;
}

static int read_if_present(const int *values, int stream, int slot)
{
    if (!can_be_read(stream))
        return -1;
    return value_if_present(values, para_video_exist, stream * stream_slots + slot);
}

[[gnu::always_inline]] static inline bool accepts(int stream, int slot, int value)
{
    return stream >= 0 && stream < g_num_stream &&
           param_accepts(table, stream * stream_slots + slot, value);
}

using stream_setter = int (*)(int, int);

static int set_by_name(int stream, const param_names &names, const char *text, stream_setter setter)
{
    const int value = exact_name(names, text);
    if (value < 0)
        return -1;
    setter(stream, value);
    return 0;
}

#define VIDEO_MEMBER(slot, name)                                                                   \
    int para_get_video_##name##_def(int stream)                                                    \
    {                                                                                              \
        return read_slot(para_video_def, stream, slot);                                            \
    }                                                                                              \
    int para_get_video_##name##_min(int stream)                                                    \
    {                                                                                              \
        return read_slot(para_video_min, stream, slot);                                            \
    }                                                                                              \
    int para_get_video_##name##_max(int stream)                                                    \
    {                                                                                              \
        return read_slot(para_video_max, stream, slot);                                            \
    }                                                                                              \
    int para_get_video_##name##_init(int stream)                                                   \
    {                                                                                              \
        return read_if_present(para_video_init, stream, slot);                                     \
    }                                                                                              \
    int para_get_video_##name##_cur(int stream)                                                    \
    {                                                                                              \
        return read_if_present(para_video_cur, stream, slot);                                      \
    }                                                                                              \
    int _para_set_video_##name##_cur(int stream, int value)                                        \
    {                                                                                              \
        if (!accepts(stream, slot, value))                                                         \
            return 0;                                                                              \
        return param_change(table, stream * stream_slots + slot, value);                           \
    }                                                                                              \
    int para_set_video_##name##_cur(int stream, int value)                                         \
    {                                                                                              \
        if (!accepts(stream, slot, value))                                                         \
            return 0;                                                                              \
        return param_take(table, stream * stream_slots + slot, value,                              \
                          para_profile.video_set_notify_hook, para_set_video_##name##_cur,         \
                          stream);                                                                 \
    }                                                                                              \
    int para_get_video_##name##_num(const char *text)                                              \
    {                                                                                              \
        return number_of_text(name##_names, text);                                                 \
    }
#include "camparam/video_members.def"

#define VIDEO_NAMED_MEMBER(slot, name)                                                             \
    const char *para_get_video_##name##_str(int value)                                             \
    {                                                                                              \
        return name_of_number(name##_names, value);                                                \
    }                                                                                              \
    int para_set_video_##name##_cur_bystr(int stream, const char *text)                            \
    {                                                                                              \
        return set_by_name(stream, name##_names, text, para_set_video_##name##_cur);               \
    }
#include "camparam/video_members.def"

int para_get_video_streamNum()
{
    return g_num_stream;
}

int check_video_num(const cJSON *root)
{
    return param_count_instances(instances, root);
}

static void trace_names(const char *function, const char *title, const param_names &names)
{
    PARA_TRACE_AS(function, PARA_INFO, "--%s:--------", title);
    for (int i = 0; i < names.count; i++)
        PARA_TRACE_AS(function, PARA_INFO, "--------%d:%s", i, names.names[i]);
}

int para_video_enum(void *, void *)
{
    trace_names(__func__, "size", size_names);
    trace_names(__func__, "protocol", protocol_names);
    trace_names(__func__, "rcMode", rcMode_names);
    trace_names(__func__, "profile", profile_names);
    return 0;
}

// The work queue calls with one argument what operators may call with two.
static int list_names(void *argument)
{
    return para_video_enum(argument, nullptr);
}
static int list_sizes(void *argument)
{
    return para_video_size_enum(argument, nullptr);
}

int para_init_video(const char *)
{
    if (video_init_done != 0)
        return 0;
    video_init_done = 1; // before anything can fail: the rows of other streams do not try again
    if (param_start(table) != 0)
        return -1;

    static const fifo_work listings[] = {
        {"para_video", "enum", list_names, nullptr},
        {"para_video_size", "enum", list_sizes, nullptr},
    };
    add_fifo_work(listings, 2);
    return 0;
}

cJSON *Create_Json_Video_Object(int stream)
{
    if (stream < 0 || stream >= streams)
        return cJSON_CreateObject();
    return param_answer_all(table, table.cur, stream);
}

int para_get_video_member(const char *name, int stream, int *value, const char **text)
{
    if (can_be_read(stream))
        return param_get_member(table, table.cur, stream, name, value, text);

    const param_member *const member = param_find(table, name);
    if (member != nullptr)
        *value = -1;
    if (member != nullptr && text != nullptr && is_named(*member))
        *text = nullptr;
    return 0;
}

// The first member whose key the name begins with, or null.
static const param_member *find_by_prefix(const char *name)
{
    for (const param_member &member : members) {
        if (begins_with(name, member.key))
            return &member;
    }
    return nullptr;
}

int para_set_video_member(const char *name, int stream, int value, const char *text)
{
    const param_member *const member = find_by_prefix(name);
    if (member == nullptr || stream < 0 || stream >= g_num_stream)
        return 0;
    return param_set_as_requested(table, stream, *member, value, text) ? 1 : 0;
}

// The first stream below the limit whose name the key is, or begins; -1 for none.
static int stream_of_key(const cJSON *item, int limit)
{
    for (int stream = 0; item->string != nullptr && stream < limit; stream++) {
        if (begins_with(instance_key(instances, stream).text, item->string))
            return stream;
    }
    return -1;
}

// The queries of this module are traced a level deeper than those of the others.
int para_get_video_opt(const char *, const cJSON *item, cJSON **answer, const char *)
{
    PARA_TRACE(PARA_DUMP, "inter");
    const int stream = stream_of_key(item, g_num_stream);
    if (stream >= 0) {
        *answer = asks_for_all(item) ? Create_Json_Video_Object(stream)
                                     : param_answer_listed(table, table.cur, stream, item);
    }
    PARA_TRACE(PARA_DUMP, "leave");
    return 0;
}

// Tells no hook: VideoSetRequest.NeverCallsTheRequestHook.
int para_set_video_opt(const char *, const cJSON *item, const char *)
{
    PARA_TRACE(PARA_INFO, "inter");
    const int stream = stream_of_key(item, streams);
    if (stream < 0)
        return 0;
    const cJSON *child = nullptr;
    cJSON_ArrayForEach(child, item)
    {
        if (child->string != nullptr)
            para_set_video_member(child->string, stream, child->valueint, child->valuestring);
    }
    return 0;
}

int para_need_save_video(const char *)
{
    return param_due(table) ? 1 : 0;
}

int save_cur_video_param_delay(int delay_ms)
{
    // Unlike audio's, the argument decides (VideoSave.HostDrivenSaveGoesByItsArgument).
    return param_save_after(table, delay_ms < 0 ? load_word(video_save_param_time) : delay_ms);
}

int para_set_video_save_param_time(int delay_ms)
{
    store_word(video_save_param_time, delay_ms);
    return 0;
}

int para_save_video(const char *)
{
    return param_save(table);
}

void video_page()
{
    param_page(table);
}
