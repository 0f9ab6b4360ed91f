/**
 * @file audio.h
 * Sound capture, encoding and output: the module "audio". Its members stand in audio_members.def.
 *
 * Limits and defaults come from "audio_range.json" and "audio_def.json" in the home directory. Any
 * thread, once the store has started; there are no locks, each value is one 32-bit word.
 *
 * A member is reported to clients in the form that its default had: as a number, or, for the named
 * members aeFormat, audioInput and audioOut, as a name. Requests set it in that form too; a named
 * member whose default was a number cannot be set by a request.
 *
 * The current file holds named members as names, a value without a name as a number, and audioOut
 * exactly when audioInput is present.
 */
#ifndef CAMPARAM_AUDIO_H
#define CAMPARAM_AUDIO_H

#include "camparam/accessors.h"

PARA_BEGIN_DECLS

/** The slot of each member, PARA_AUDIO_<m>, from 0, and how many slots there are. */
enum {
#define AUDIO_MEMBER(slot, name) PARA_AUDIO_##name = (slot),
#include "camparam/audio_members.def"
    PARA_AUDIO_SLOTS
};

/** The values by slot: para_audio_def and its relatives, see accessors.h. */
PARA_DECLARE_TABLES(int, audio, PARA_AUDIO_SLOTS)

/** Time (CLOCK_MONOTONIC) of the last accepted change. */
PARA_API extern struct timespec audio_item_start_time;
/** 1: a change is accepted and not yet saved. The store's own; hosts only read it. */
PARA_API extern int audio_item_changed;
/** Save delay in milliseconds, 2000 until set with para_set_audio_save_param_time(). */
PARA_API extern int audio_save_param_time;

/**
 * For each member <m>:
 *
 * int para_get_audio_<m>_def(void), _min, _max: the member's value of that table.
 * int para_get_audio_<m>_init(void), _cur: the same; -1 when the member is absent.
 *
 * int para_set_audio_<m>_cur(int value): take a value within [min, max] that differs from the
 * current one, mark the module changed and tell audio_set_notify_hook. Returns 0 in every case; an
 * absent member, or a value that is not taken, changes nothing.
 * int _para_set_audio_<m>_cur(int value): the same without the hook. Returns 1 when the value
 * changed, else 0.
 *
 * int para_get_audio_<m>_num(const char *text): the value of the first name that begins with the
 * text, else of the number that the text begins with (saturated to int), else -1000, also for
 * NULL. Members without names know the one name "null", of value 0.
 */
#define AUDIO_MEMBER(slot, name)                                                                   \
    PARA_DECLARE_GETTERS(audio, name, (void))                                                      \
    PARA_DECLARE_SETTER(audio, name, (int value))                                                  \
    PARA_DECLARE_INTERNAL_SETTER(audio, name, (int value))                                         \
    PARA_DECLARE_NUM(audio, name)
#include "camparam/audio_members.def"

/**
 * For each named member <m>: const char *para_get_audio_<m>_str(int value), the name of a value,
 * a constant text; NULL for a value without a name.
 */
#define AUDIO_NAMED_MEMBER(slot, name) PARA_API const char *para_get_audio_##name##_str(int value);
#include "camparam/audio_members.def"

/**
 * Look a member up by its exact name.
 * @param[out] value  Its current value, -1 when it is absent; untouched for an unknown name.
 * @param[out] text   May be NULL. For a named member the name of the value when it is exchanged as
 *                    a name, else NULL; untouched for the other members.
 * @return Its presence as in para_audio_exist, 0 when it is absent or unknown.
 */
PARA_API int para_get_audio_member_json(const char *name, int *value, const char **text);

/**
 * Set a member by its exact name as a request does, without the notify hook: from @p value when it
 * is exchanged as a number, from @p text (may be NULL: nothing changes) when as a name.
 * @return 1 when the value changed, else 0.
 */
PARA_API int para_set_audio_member_json(const char *name, int value, const char *text);

/**
 * For hosts that drive saving themselves: save now if the last change is unsaved and at least as
 * old as the module's own delay. It does not wait for a save that is under way on another thread:
 * not while "Para_Process" runs.
 * @param delay_ms  Plays no part.
 * @return 0
 */
PARA_API int save_cur_audio_param_delay(int delay_ms);

/** Set the save delay in milliseconds, without a test; it counts from the next check. @return 0 */
PARA_API int para_set_audio_save_param_time(int delay_ms);

/**
 * The module's row functions, see module.h. The store calls them; a host saves with
 * platformparam_save(). Saving clears the mark of change whether or not the file opened.
 *
 * para_init_audio: 0, or -1 when the range or the defaults file is missing or not JSON (traced). A
 * second call keeps the presence of members that the defaults file no longer names.
 * para_set_audio_opt: the item is an object of members; audio_set_request_hook is told once when
 * any changed.
 * para_get_audio_opt: the item is an array of member names, or of one name that begins with "all".
 * para_need_save_audio: 1 when the last change is unsaved and as old as the save delay, else 0.
 * para_save_audio: writes "audio_cur.json"; what fflush() returned, 0 when the file did not open.
 * audio_page: traces the table at level 6: current, default and range of each member.
 */
PARA_DECLARE_SETTABLE_ROW(audio)

PARA_END_DECLS

#endif
