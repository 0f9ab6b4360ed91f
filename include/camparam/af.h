/**
 * @file af.h
 * Focus and zoom: the module "af". Its members stand in af_members.def.
 *
 * The meaning and unit of every number belong to the lens driver; the limits and defaults come
 * from "af_range.json" and "af_def.json" in the home directory. Any thread, once the store has
 * started; there are no locks, each value is one 32-bit word.
 */
#ifndef CAMPARAM_AF_H
#define CAMPARAM_AF_H

#include "camparam/accessors.h"

PARA_BEGIN_DECLS

/** The slot of each member, PARA_AF_<m>, from 1: slot 0 is reserved. And how many slots there are.
 */
enum {
#define AF_MEMBER(slot, name) PARA_AF_##name = (slot),
#include "camparam/af_members.def"
    PARA_AF_SLOTS
};

/** The values by slot: para_af_def and its relatives, see accessors.h. A member is present when its
 * word in para_af_exist is not 0. */
PARA_DECLARE_TABLES(int, af, PARA_AF_SLOTS)

/** Time (CLOCK_MONOTONIC) of the last accepted change. */
PARA_API extern struct timespec af_item_start_time;

/**
 * For each member <m>:
 *
 * int para_get_af_<m>_def(void), _min, _max, _init, _cur: the member's value of that table,
 * whether the member is present or not.
 *
 * int para_set_af_<m>_cur(int value): take a value within [min, max] that differs from the
 * current one, mark the module changed and tell af_set_notify_hook. Returns 0 in every case; a
 * value that is not taken changes nothing.
 */
#define AF_MEMBER(slot, name)                                                                      \
    PARA_DECLARE_GETTERS(af, name, (void)) PARA_DECLARE_SETTER(af, name, (int value))
#include "camparam/af_members.def"

/**
 * Look a member up by its exact name.
 * @param[out] value  Its current value; untouched for an unknown name.
 * @param text        Ignored; may be NULL.
 * @return Its presence: nonzero when it is present, 0 when it is absent or unknown.
 */
PARA_API int para_get_af_member_json(const char *name, int *value, const char **text);

/**
 * The module's row functions, see module.h. The store calls them; a host saves with
 * platformparam_save(). Saving clears the mark of change whether or not the file opened.
 *
 * para_init_af: 0, or -1 when the range or the defaults file is missing or not JSON.
 * para_get_af_opt: the item is an array of member names, or of one name that begins with "all"; an
 * item whose own key is neither "af" nor a beginning of it is not answered.
 * para_need_save_af: 1 when the last change is unsaved and at least 2000 ms old, else 0.
 * para_save_af: writes "af_cur.json"; what fflush() returned, 0 when the file did not open.
 * af_page: traces the table at level 6: current, default and range of each member.
 */
PARA_DECLARE_ROW(af)

PARA_END_DECLS

#endif
