/**
 * @file video.h
 * The encoded video streams: the modules "video0" to "video6", of which a device uses at most the
 * first six. The members of a stream stand in video_members.def.
 *
 * Limits and defaults come from "video_range.json" and "video_def.json" in the home directory, an
 * object for each stream. Any thread, once the store has started; there are no locks, each value
 * is one 32-bit word.
 *
 * Streams are numbered from 0; those in use are 0 to para_get_video_streamNum() - 1, at most six.
 * A member is reported to clients in the form that its default had: as a number, or, for the named
 * members protocol, size, rcMode and profile, as a name. Requests set it in that form too; a named
 * member whose default was a number cannot be set by a request.
 *
 * The current file holds named members as names, and a value without a name as a number.
 */
#ifndef CAMPARAM_VIDEO_H
#define CAMPARAM_VIDEO_H

#include "camparam/accessors.h"

PARA_BEGIN_DECLS

/** The place of each member within a stream, PARA_VIDEO_<m>, from 0, and how many there are. */
enum {
#define VIDEO_MEMBER(slot, name) PARA_VIDEO_##name = (slot),
#include "camparam/video_members.def"
    PARA_VIDEO_STREAM_SLOTS
};

/** Streams that the tables hold, and their slots: member m of stream s is in slot
 * s * PARA_VIDEO_STREAM_SLOTS + m. */
enum { PARA_VIDEO_STREAMS = 6, PARA_VIDEO_SLOTS = PARA_VIDEO_STREAMS * PARA_VIDEO_STREAM_SLOTS };

/** The values by slot: para_video_def and its relatives, see accessors.h. */
PARA_DECLARE_TABLES(int, video, PARA_VIDEO_SLOTS)

/** Streams in use, 0 to 6; fixed after start-up. */
PARA_API extern int g_num_stream;
/** Nonzero once start-up has begun. */
PARA_API extern int video_init_done;
/** Time (CLOCK_MONOTONIC) of the last accepted change to any stream. */
PARA_API extern struct timespec video_item_start_time;
/** 1: a change is accepted and not yet saved. The store's own; hosts only read it. */
PARA_API extern int video_item_changed;
/** Save delay in milliseconds, 2000 until set with para_set_video_save_param_time(). */
PARA_API extern int video_save_param_time;

/**
 * For each member <m>:
 *
 * int para_get_video_<m>_def(int stream), _min, _max: the member's value of that table; -1 for a
 * negative stream, one beyond the stream count, and one beyond the table. A stream equal to the
 * count is let through.
 * int para_get_video_<m>_init(int stream), _cur: the same; -1 also when the member is absent.
 *
 * int para_set_video_<m>_cur(int stream, int value): take a value within [min, max] that differs
 * from the current one, mark the module changed and tell video_set_notify_hook. Returns 0 in every
 * case; a stream not in use, an absent member, or a value that is not taken changes nothing.
 * int _para_set_video_<m>_cur(int stream, int value): the same without the hook. Returns 1 when
 * the value changed, else 0.
 *
 * int para_get_video_<m>_num(const char *text): the value of the first name that begins with the
 * text, else of the number that the text begins with (saturated to int), else -1000, also for
 * NULL. Members without names know the one name "null", of value 0.
 */
#define VIDEO_MEMBER(slot, name)                                                                   \
    PARA_DECLARE_GETTERS(video, name, (int stream))                                                \
    PARA_DECLARE_SETTER(video, name, (int stream, int value))                                      \
    PARA_DECLARE_INTERNAL_SETTER(video, name, (int stream, int value))                             \
    PARA_DECLARE_NUM(video, name)
#include "camparam/video_members.def"

/**
 * For each named member <m>:
 *
 * const char *para_get_video_<m>_str(int value): the name of a value, a constant text; NULL for a
 * value without a name.
 * int para_set_video_<m>_cur_bystr(int stream, const char *text): the public setter with the value
 * of exactly that name. Returns 0; -1 when no name equals the text, or it is NULL.
 */
#define VIDEO_NAMED_MEMBER(slot, name)                                                             \
    PARA_API const char *para_get_video_##name##_str(int value);                                   \
    PARA_API int para_set_video_##name##_cur_bystr(int stream, const char *text);
#include "camparam/video_members.def"

/** Streams in use. */
PARA_API int para_get_video_streamNum(void);

/**
 * Count the streams of a range document: how many of "video0" to "video5" it holds. Traced.
 * @return 0 to 6
 */
PARA_API int check_video_num(const cJSON *root);

/**
 * The present members of a stream, named members as names. The caller deletes the object, which is
 * empty for a stream that does not exist.
 */
PARA_API cJSON *Create_Json_Video_Object(int stream);

/**
 * Look a member of a stream up by its exact name.
 * @param[out] value  Its current value, -1 when it is absent or the stream is not in use; untouched
 *                    for an unknown name.
 * @param[out] text   May be NULL. For a named member the name of the value when it is exchanged as
 *                    a name, else NULL; untouched for the other members.
 * @return Its presence in para_video_exist, also for a stream that the tables hold but the device
 * does not use; 0 when it is absent or unknown, or the tables hold no such stream.
 */
PARA_API int para_get_video_member(const char *name, int stream, int *value, const char **text);

/**
 * Set a member of a stream as a request does, without the notify hook: from @p value when it is
 * exchanged as a number, from @p text when as a name; NULL counts as the value -1000.
 * @param name  Chooses the first member whose key it begins with: "gopX" is "gop".
 * @return 1 when the value changed, else 0.
 */
PARA_API int para_set_video_member(const char *name, int stream, int value, const char *text);

/**
 * For hosts that drive saving themselves: save now if the last change is unsaved and at least this
 * old. It does not wait for a save that is under way on another thread: not while "Para_Process"
 * runs.
 * @param delay_ms  Milliseconds; negative: the module's own delay.
 * @return 0
 */
PARA_API int save_cur_video_param_delay(int delay_ms);

/** Set the save delay in milliseconds, without a test; it counts from the next check. @return 0 */
PARA_API int para_set_video_save_param_time(int delay_ms);

/**
 * Look up the picture dimensions of a size name. Reads constant tables only.
 *
 * @param name         Such as "PIC_HD1080"; exact match. Borrowed for the call.
 * @param mains        1 for 50 Hz mains, 0 for 60 Hz. Only "PIC_D1" depends on it, and fails with
 *                     any other.
 * @param[out] width   Pixels. Untouched on failure.
 * @param[out] height  Pixels. Untouched on failure.
 * @return 0, or -1 (traced) when @p name is NULL, unknown or has no fixed dimensions.
 */
PARA_API int para_get_video_size_byname(const char *name, int mains, int *width, int *height);

/**
 * Trace the names of the named members' values, and the picture sizes with their dimensions, at
 * level 6. Start-up offers both to the host's work queue, as "para_video" and "para_video_size" of
 * type "enum". The arguments are ignored. @return 0
 */
PARA_API int para_video_enum(void *unused1, void *unused2);
PARA_API int para_video_size_enum(void *unused1, void *unused2);

/**
 * The module's row functions, see module.h. The store calls them; a host saves with
 * platformparam_save(). Saving clears the mark of change whether or not the file opened.
 *
 * para_init_video: the first call starts all streams: 0, or -1 when the range or the defaults file
 * is missing or not JSON (traced). Later calls return 0 at once.
 * para_set_video_opt: the item's own key names the stream, its value is an object of members. No
 * hook is told of the change.
 * para_get_video_opt: the item's own key names a stream in use, its value is an array of member
 * names, or of one name that begins with "all". Another key leaves the answer NULL.
 * Both take a key that is cut short: "video" is stream 0.
 * para_need_save_video: 1 when the last change is unsaved and as old as the save delay, else 0.
 * para_save_video: writes "video_cur.json" with all streams; what fflush() returned, 0 when the
 * file did not open.
 * video_page: traces the table at level 6: those of each stream.
 */
PARA_DECLARE_SETTABLE_ROW(video)

PARA_END_DECLS

#endif
