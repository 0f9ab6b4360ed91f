/**
 * @file isp.h
 * The image signal processor: exposure, white balance, colour, noise reduction, picture styles.
 * The module "isp0"; its members stand in isp_members.def.
 *
 * Limits come from "isp_range.json" and defaults from the default style in "isp_def.json", both in
 * the home directory; after a start with another style saved, defaults are those of that style. The
 * meaning and unit of every number belong to the image processor. Two instances, 0 and 1; another
 * one reads as 0 and cannot be set. Any thread, once the store has started; there are no locks,
 * each value is one 32-bit word.
 */
#ifndef CAMPARAM_ISP_H
#define CAMPARAM_ISP_H

#include "camparam/accessors.h"

PARA_BEGIN_DECLS

/** The word of each member in a record, PARA_ISP_<m>, from 1: word 0 is the size. And how many
 * words there are. */
enum {
#define ISP_MEMBER(slot, name, loaded, accessor, by_name, written) PARA_ISP_##name = (slot),
#include "camparam/isp_members.def"
    PARA_ISP_SLOTS
};

/** Instances that the tables hold. */
enum { PARA_ISP_INSTANCES = 2 };

/** The values of one instance, an int for each slot. */
typedef struct isp_record {
    int size; /**< bytes of the record, 156 */
#define ISP_MEMBER(slot, name, loaded, accessor, by_name, written) int name;
#include "camparam/isp_members.def"
} isp_record;

/** The values by instance: para_isp_def and its relatives, see accessors.h. */
PARA_DECLARE_TABLES(isp_record, isp, PARA_ISP_INSTANCES)

/** Instances in use, 0 to 2; fixed after start-up. */
PARA_API extern int isp_num;
/** Nonzero once start-up has begun. */
PARA_API extern int isp_inited;
/** Time (CLOCK_MONOTONIC) of the last accepted change. */
PARA_API extern struct timespec isp_item_start_time;
/** 1: a change is accepted and not yet saved. The store's own; hosts only read it. */
PARA_API extern int isp_item_changed;

/**
 * For each member <m> with accessors:
 *
 * int para_get_isp_<m>_def(int instance), _min, _max, _init, _cur: the member's value of that
 * table, whether the member is present or not.
 *
 * int para_set_isp_<m>_cur(int instance, int value): take a value within [min, max] that differs
 * from the current one, mark the module changed and tell isp_set_notify_hook. Returns 0 in every
 * case; an absent member, or a value that is not taken, changes nothing.
 * int _para_set_isp_<m>_cur(int instance, int value): the same without the hook. Returns 1 when
 * the value changed, else 0.
 *
 * Setting the style changes that value alone: see para_get_isp_style_param().
 */
#define ISP_ACCESSORS_yes(name)                                                                    \
    PARA_DECLARE_GETTERS(isp, name, (int instance))                                                \
    PARA_DECLARE_SETTER(isp, name, (int instance, int value))                                      \
    PARA_DECLARE_INTERNAL_SETTER(isp, name, (int instance, int value))
#define ISP_ACCESSORS_no(name)
#define ISP_MEMBER(slot, name, loaded, accessor, by_name, written) ISP_ACCESSORS_##accessor(name)
#include "camparam/isp_members.def"
#undef ISP_ACCESSORS_yes
#undef ISP_ACCESSORS_no

/**
 * For each member <m> that files hold: int para_get_isp_<m>_num(const char *text), 0 when "null"
 * begins with the text (the empty one too), else, when the text begins with a digit, the number
 * that it begins with (saturated to int), else -1000, also for NULL.
 */
#define ISP_NUM_yes(name) PARA_DECLARE_NUM(isp, name)
#define ISP_NUM_no(name)
#define ISP_MEMBER(slot, name, loaded, accessor, by_name, written) ISP_NUM_##loaded(name)
#include "camparam/isp_members.def"
#undef ISP_NUM_yes
#undef ISP_NUM_no

/** Count the instances of a range document, "isp0" and "isp1". Traced. @return 0 to 2 */
PARA_API int check_isp_num(const cJSON *root);

/**
 * Look a member with accessors up by its exact name: its current, or its default value.
 * @param[out] value  Untouched for an unknown name or instance.
 * @param text        Ignored; may be NULL.
 * @return Its presence; 0 when it is absent or unknown.
 */
PARA_API int para_get_isp_cur_member(const char *name, int instance, int *value, const char **text);
PARA_API int para_get_isp_def_member(const char *name, int instance, int *value, const char **text);

/**
 * The present members of an instance as an object, which the caller deletes; NULL when memory runs
 * out.
 * @param use_defaults  Nonzero: their defaults; 0: their current values.
 */
PARA_API cJSON *isp_param_to_json(int instance, int use_defaults);

/**
 * Set a member as a request does, without the notify hook.
 * @param key   Chooses the first member whose name it begins with: "rgain_tuning" is "rgain".
 * @param text  Ignored; may be NULL.
 * @return 1 when the value changed, else 0.
 */
PARA_API int isp_set_member_by_name(const char *key, int instance, int number, const char *text);

/**
 * Make every default the current value, without range check or hook. The module counts as changed
 * at the time of its last change, so it may be saved at once. @return 0
 */
PARA_API int para_isp_cur_restore_isp_def(void);

/**
 * Change the default of antiflicker, here and in the ODM store, if the member is present and the
 * value is within [min, max] and differs from the default. The current value stays. The ODM store
 * has one key for all instances: at the next start the value is instance 0's. @return 0
 */
PARA_API int para_set_isp_antiflicker_def(int instance, int value);

/* --- Picture styles: named sets of values, numbered from 0 in the order of the style file --------
 */

/** Load the style file, once. @return 0; -1 when it is missing, not JSON (traced) or has no list.
 */
PARA_API int para_init_isp_style(void);

/** The style's object in the style document, owned by it; NULL when there is none. */
PARA_API cJSON *get_isp_style_json(int index);

/** The default style, one for all instances; the argument is ignored. */
PARA_API int para_get_isp_style_def_index(int instance);

/**
 * Make a style the default one until the process ends, and load nothing. The instance is ignored.
 * @return 0, or -1 when there is no such style.
 */
PARA_API int para_set_isp_style_def_index(int instance, int index);

/**
 * Make a style the default one for good (in the ODM store), and load its values into the
 * instance's defaults. Current values stay: para_isp_cur_restore_isp_def() adopts the defaults. For
 * antiflicker the ODM store's default, as start-up found it, wins over the style's and over what
 * para_set_isp_antiflicker_def() has set since.
 * @return 0, or -1 when there is no such style or instance.
 */
PARA_API int para_set_isp_style_def(int instance, int index);

/** A style's name, owned by the style document; NULL when there is none. */
PARA_API const char *para_get_isp_style_string(int index);

/** The first style of exactly that name, or -1. */
PARA_API int para_get_isp_style_index(const char *name);

/**
 * A style's values, for a host that applies them through the setters: selecting a style with
 * para_set_isp_style_cur() does not. antiflicker is the instance's current value, so a style never
 * changes it; members that the style does not name are 0.
 * @return The library's own record, which the next call for the same style changes; NULL when there
 *         is no such style or instance.
 */
PARA_API isp_record *para_get_isp_style_param(int instance, int index);

/** The style file's "style_excute_by_arm", for the host. */
PARA_API int para_isp_style_excute_by_arm(void);

/** Write the ODM store's default of antiflicker, as start-up found it, into a record. @return 0 */
PARA_API int parse_isp_def_odm(isp_record *record);

/**
 * The module's row functions, see module.h. The store calls them; a host saves with
 * platformparam_save(). Saving clears the mark of change whether or not the file opened.
 *
 * para_init_isp: the first call starts the module: 0, or -1 when the range file is missing or not
 * JSON. Later calls return 0 at once.
 * para_set_isp_opt: the item's own key names the instance, its value is an object of members. No
 * hook is told of the change.
 * para_get_isp_opt: the key "isp0" or "isp0_cur_all" asks for current values, "isp0_def" for
 * defaults; the item is an array of member names, or of one name that begins with "all".
 * para_need_save_isp: 1 when the last change is unsaved and at least 2000 ms old, else 0.
 * para_save_isp: writes "isp_cur.json"; what fflush() returned, 0 when the file did not open.
 * isp_page: traces the table at level 6: the present members of each instance.
 */
PARA_DECLARE_SETTABLE_ROW(isp)

PARA_END_DECLS

#endif
