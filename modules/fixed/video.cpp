// The encoded streams: every member exists once for each.
#include "camparam/video.h"

#include "base/query.h"
#include "base/text.h"
#include "camparam/platform.h"
#include "modules/fixed/accessors.h"
#include "modules/fixed/video_size.h"

DEFINE_TABLES(video, PARA_VIDEO_SLOTS)
int g_num_stream;
int video_init_done;
timespec video_item_start_time;
int video_save_param_time = default_save_delay_ms;
int video_item_changed;
static save_state saves;

// Value names, one array for each named member; those of "size" are in video_size.h.
static const char *const protocol[] = {"H264", "H265", "MJPEG"};
static const char *const rcMode[] = {"CBR", "VBR", "ABR", "FIXQP", "AVBR"};
static const char *const profile[] = {"baseline", "mainprofile", "highprofile", "svc-t"};

#define VIDEO_MEMBER(slot, name) static constexpr const value_names &name##_names = null_names;
#define VIDEO_NAMED_MEMBER(slot, name) static constexpr value_names name##_names = names_of(name);
#include "camparam/video_members.def"

static constexpr fixed_member members[] = {
#define VIDEO_MEMBER(number, name)                                                                 \
    {.slot = PARA_VIDEO_##name, .key = #name, .names = &name##_names},
#include "camparam/video_members.def"
};
static constexpr auto order = order_of(members);

static void page_title(int stream, const trace_site &site)
{
    PARA_TRACE_AT(site, PARA_INFO, "stream_%d param:", stream);
}

static constexpr module_instances streams = {
    .capacity = PARA_VIDEO_STREAMS,
    .count = &g_num_stream,
    .stride = PARA_VIDEO_STREAM_SLOTS,
    .count_in = check_video_num,
    .page_title = page_title,
};

static constexpr fixed_module video = {
    .name = "video",
    .title = "VIDEO",
    .page = video_page,
    .values = VALUE_TABLES(video),
    .members = list_of(members),
    .file_order = order.list(),
    .instances = &streams,
    .stamp = {.time = &video_item_start_time, .changed = &video_item_changed, .saves = &saves},
    .save_delay_ms = &video_save_param_time,
};

static bool is_stream(int stream)
{
    return stream >= 0 && stream < PARA_VIDEO_STREAMS;
}

// A stream equal to the count is accepted (VideoStreams.CountItselfIsLetThrough), one beyond the
// tables is not.
static bool can_be_read(int stream)
{
    return is_stream(stream) && stream <= g_num_stream;
}

static int read(int stream, const int *values, int slot)
{
    return can_be_read(stream) ? load_word(values[stream * PARA_VIDEO_STREAM_SLOTS + slot]) : -1;
}

static int read_current(int stream, const int *values, int slot)
{
    if (!can_be_read(stream))
        return -1;
    return current_value(video, values, stream * PARA_VIDEO_STREAM_SLOTS + slot);
}

static bool is_in_use(int stream)
{
    return stream >= 0 && stream < g_num_stream;
}

[[gnu::noinline]] static int change(int stream, int slot, int value)
{
    if (!is_in_use(stream))
        return 0;
    return set_value(video, stream * PARA_VIDEO_STREAM_SLOTS + slot, value);
}

using stream_setter = int (*)(int, int);

[[gnu::noinline]] static int set(int stream, int slot, int value, stream_setter setter)
{
    if (!is_in_use(stream))
        return 0;
    return set_and_notify(video, stream * PARA_VIDEO_STREAM_SLOTS + slot, value,
                          para_profile.video_set_notify_hook, setter, stream);
}

static int set_by_name(int stream, const value_names &names, const char *text, stream_setter setter)
{
    const int value = exact_name(names, text);
    if (value < 0)
        return -1;
    setter(stream, value);
    return 0;
}

#define VIDEO_MEMBER(slot, name)                                                                   \
    DEFINE_INSTANCE_GETTERS(video, name, PARA_VIDEO_##name)                                        \
    DEFINE_INSTANCE_SETTERS(video, name, PARA_VIDEO_##name)                                        \
    DEFINE_NUM(video, name, name##_names)
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
    return count_instances(video, root, PARA_HERE);
}

static void trace_names(const trace_site &site, const char *title, const value_names &names)
{
    PARA_TRACE_AT(site, PARA_INFO, "--%s:--------", title);
    for (int i = 0; i < names.count; i++)
        PARA_TRACE_AT(site, PARA_INFO, "--------%d:%s", i, names.names[i]);
}

int para_video_enum(void *, void *)
{
    trace_names(PARA_HERE, "size", size_names);
    trace_names(PARA_HERE, "protocol", protocol_names);
    trace_names(PARA_HERE, "rcMode", rcMode_names);
    trace_names(PARA_HERE, "profile", profile_names);
    return 0;
}

// Work handlers have one argument, the exported functions two.
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
    video_init_done = 1; // first: the rows of the other streams must not retry a failed start
    if (start_module(video, PARA_HERE) != 0)
        return -1;

    static const fifo_work listings[] = {
        {.name = "para_video", .type = "enum", .handler = list_names},
        {.name = "para_video_size", .type = "enum", .handler = list_sizes},
    };
    add_fifo_work(listings, sizeof listings / sizeof listings[0]);
    return 0;
}

cJSON *Create_Json_Video_Object(int stream)
{
    if (!is_stream(stream))
        return cJSON_CreateObject();
    return tree_of_all(video, para_video_cur, stream);
}

// The presence is the slot's for every stream that the tables hold; a value is that of a stream in
// use (VideoMember.PresenceIsTheSlotsForEveryStream).
int para_get_video_member(const char *name, int stream, int *value, const char **text)
{
    if (can_be_read(stream))
        return get_member(video, para_video_cur, stream, name, value, text);

    const fixed_member *const member = find_member(video, name);
    if (member == nullptr)
        return 0;
    *value = -1;
    if (text != nullptr && is_named(*member))
        *text = nullptr;
    return is_stream(stream) ? load_word(para_video_exist[slot_of(video, stream, *member)]) : 0;
}

int para_set_video_member(const char *name, int stream, int value, const char *text)
{
    const fixed_member *const member = find_member_by_prefix(video, name);
    if (member == nullptr || !is_in_use(stream))
        return 0;
    return set_as_requested(video, stream, *member, value, text);
}

// The first stream below the limit whose name begins with the key; -1 for none.
static int stream_of_key(const cJSON *item, int limit)
{
    for (int stream = 0; item->string != nullptr && stream < limit; stream++) {
        if (begins_with(instance_key(video, stream).text, item->string))
            return stream;
    }
    return -1;
}

// Traced at level 7; other modules trace queries at level 6.
int answer_video(const char *key, const cJSON *item, const char *, answer_sink &sink)
{
    const trace_site site = PARA_IN(para_get_video_opt);
    PARA_TRACE_AT(site, PARA_DUMP, "inter");
    const int stream = stream_of_key(item, g_num_stream);
    if (stream >= 0 && asks_for_all(item))
        answer_all(video, para_video_cur, stream, key, sink);
    else if (stream >= 0)
        answer_listed(video, para_video_cur, stream, item, sink);
    PARA_TRACE_AT(site, PARA_DUMP, "leave");
    return 0;
}
DEFINE_GET_OPT(video)

// Calls no hook (VideoSetRequest.NeverCallsTheRequestHook).
int para_set_video_opt(const char *, const cJSON *item, const char *)
{
    PARA_TRACE(PARA_INFO, "inter");
    const int stream = stream_of_key(item, PARA_VIDEO_STREAMS);
    if (stream < 0)
        return 0;
    set_each(item, [stream](const char *name, int value, const char *text) {
        return para_set_video_member(name, stream, value, text);
    });
    return 0;
}

int save_cur_video_param_delay(int delay_ms)
{
    // Unlike audio's, the argument decides (VideoSave.HostDrivenSaveGoesByItsArgument).
    return save_after(video, delay_ms < 0 ? load_word(video_save_param_time) : delay_ms);
}

int para_set_video_save_param_time(int delay_ms)
{
    store_word(video_save_param_time, delay_ms);
    return 0;
}

DEFINE_ROW(video)
