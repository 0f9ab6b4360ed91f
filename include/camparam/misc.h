/**
 * @file misc.h
 * Modules whose members come from their files: "misc", and what the web-name file's
 * "json_pattern_list" names.
 *
 * A range file gives each member as an array: two numbers, minimum and maximum, or texts, the
 * values of an enum member, whose number is the text's position from 0. Default and current values
 * are kept as text of at most 255 characters; longer ones read as absent. Numbers are saturated to
 * int. A number member's range is reported, never enforced.
 *
 * Module and member are names; an unknown or NULL one gives the error result. Any thread, once the
 * store has started; the values stand in configure objects of the host platform, which must be
 * safe to use from several threads.
 */
#ifndef CAMPARAM_MISC_H
#define CAMPARAM_MISC_H

#include <cjson/cJSON.h>

#include "camparam/api.h"
#include "camparam/platform.h"

PARA_BEGIN_DECLS

/* --- Any such module -------------------------------------------------------------------------- */

/** Kinds of members, 0 for a member without a usable range. */
enum {
    PARA_KIND_NUMBER = 8, /**< its range is two numbers */
    PARA_KIND_ENUM = 16   /**< its range is the texts of its values */
};

/** Kind by the first element of a range array; 0 is traced. */
PARA_API int peek_array_enum_type(const cJSON *array);

/** Kind of a member; 0 is traced; -1 for an unknown module. */
PARA_API int peek_json_enum_type(const char *module, const char *member);

/** Text of an enum value, owned by the range tree; NULL when there is none. */
PARA_API const char *para_get_json_emum_str(const char *module, const char *member, int index);

/** Position of a text among an enum member's values; -1 when it is none of them. */
PARA_API int para_get_json_enum_index(const char *module, const char *member, const char *text);

/** A range element as a number: position of a text, or the number itself; else -1. */
PARA_API int para_get_json_item_number(const char *module, const cJSON *element,
                                       const char *member);

/** The text of a string node, owned by it; NULL for any other. */
PARA_API const char *para_get_item_str(const cJSON *node);

/**
 * First and last element of the range, default and current value, all as a number: an enum member's
 * as the position of its text. -1 when there is none.
 */
PARA_API int para_get_json_min(const char *module, const char *member);
PARA_API int para_get_json_max(const char *module, const char *member);
PARA_API int para_get_json_def(const char *module, const char *member);
PARA_API int para_get_json_cur(const char *module, const char *member);

/**
 * Copy the current value's text.
 * @return 0 copied; -1 when the module or member is unknown or @p size bytes are too few.
 */
PARA_API int para_get_json_string(const char *module, const char *member, char *buffer, int size);

/**
 * Set a value, mark the module changed: an enum member by one of its texts, a number member by a
 * number. A member without a current value cannot be set. No hook is told.
 * @return 1 changed; 0 not: the same value, a text that is none of the member's, the other kind, an
 *         unknown module or member, or no memory.
 */
PARA_API int para_set_json_cur_str(const char *module, const char *member, const char *text);
PARA_API int para_set_json_cur_number(const char *module, const char *member, int value);

/**
 * Set a value by number, an enum member by the position of its text; para_set_json_cur() tells
 * misc_set_notify_hook of a change.
 * @return 1 changed; 0 not; -1 for an unknown module.
 */
PARA_API int _para_set_json_cur(const char *module, const char *member, int value);
PARA_API int para_set_json_cur(const char *module, const char *member, int value);

/**
 * Add every value to an object: enum members as texts, all others as numbers.
 * @param defaults  Nonzero: default values; 0: current values.
 * @return What the configure object's loop returned; -1 for an unknown module; -ENOMEM when memory
 *         runs out, and values are missing.
 */
PARA_API int Create_Json_Misc_Object(const char *module, cJSON *object, int defaults);

/**
 * Write the current values as conf lines, zero-terminated, into a buffer of @p size bytes.
 * @return Bytes used with the final zero; 0 when they do not fit (traced); -1 for an unknown
 * module.
 */
PARA_API int para_save_misc_conf_2_buf(const char *module, char *buffer, int size);

/* --- The module "misc" ------------------------------------------------------------------------ */

/** How many texts misc_texts.def lists for each enum member. */
enum {
#define MISC_HDMIVIDEOFORMAT(text) +1
    PARA_MISC_HDMIVIDEOFORMATS = 0
#include "camparam/misc_texts.def"
    ,
#define MISC_VISTRATEGY(text) +1
    PARA_MISC_VISTRATEGIES = 0
#include "camparam/misc_texts.def"
    ,
#define MISC_NDI_MODE(text) +1
    PARA_MISC_NDI_MODES = 0
#include "camparam/misc_texts.def"
};

/** The texts of the enum members, in the order of their legacy numbers. */
PARA_API extern const char *const hdmivideoformat[PARA_MISC_HDMIVIDEOFORMATS];
PARA_API extern const char *const ViStrategy[PARA_MISC_VISTRATEGIES];
PARA_API extern const char *const ndi_mode[PARA_MISC_NDI_MODES];

/**
 * For each member <m>:
 *
 * int para_get_misc_<m>_min(void), _max, _def, _cur: as para_get_json_min() and its relatives.
 * int para_set_misc_<m>_cur(int value): as para_set_json_cur(); the hook gets this setter.
 */
#define MISC_MEMBER(name)                                                                          \
    PARA_API int para_get_misc_##name##_min(void);                                                 \
    PARA_API int para_get_misc_##name##_max(void);                                                 \
    PARA_API int para_get_misc_##name##_def(void);                                                 \
    PARA_API int para_get_misc_##name##_cur(void);                                                 \
    PARA_API int para_set_misc_##name##_cur(int value);
#include "camparam/misc_members.def"

/**
 * For each enum member <m>:
 *
 * const char *para_get_misc_<m>_str(int position): as para_get_json_emum_str().
 * int para_get_misc_<m>_num(const char *text): as para_get_json_enum_index().
 * int para_set_misc_<m>_cur_bystr(const char *text): as para_set_json_cur_str(), without a hook.
 */
#define MISC_ENUM_MEMBER(name)                                                                     \
    PARA_API const char *para_get_misc_##name##_str(int position);                                 \
    PARA_API int para_get_misc_##name##_num(const char *text);                                     \
    PARA_API int para_set_misc_##name##_cur_bystr(const char *text);
#include "camparam/misc_members.def"

/* --- Loading and saving "misc"; called by the row functions alone -------------------------------
 */

/**
 * Load "misc" from the file set that its range file tells: a nonzero "version" for the current set,
 * else the legacy one. Stores new objects in @p cur and @p def, and the range tree in @p range,
 * which is untouched when there is none; all of them live as long as the process. When memory runs
 * out while values are read, there are none: @p cur and @p def are NULL.
 * @param name  Not used: the files' names are fixed.
 * @return 0 loaded, -1 failed
 */
PARA_API int para_init_misc_legacy(const char *name, configure **cur, configure **def,
                                   cJSON **range);

/** Write "misc" into the set it came from. @return What fflush() returned; 0: nothing written. */
PARA_API int para_save_misc_legacy(const char *name, configure *cur);

/**
 * A legacy range tree with its enum members' ends widened into lists. The caller deletes it; NULL
 * when memory runs out.
 */
PARA_API cJSON *fix_old_misc_range_conf(const cJSON *old_range);

/**
 * Set every member of a JSON file in an object.
 * @return 0; -1 when the file is missing or not JSON; -ENOMEM when memory runs out, and members may
 *         be missing.
 */
PARA_API int fix_old_misc_def_cur_conf(const char *path, configure *conf);

/** Does nothing. @return 0 */
PARA_API int para_init_misc_legacy_test(void);

/**
 * The row functions of these modules, see module.h.
 *
 * para_init_misc: 0, also for a module that could not be loaded (traced). The first call starts the
 * store and loads nothing.
 * para_set_misc_opt: the item is an object of members, each a text for an enum member or a number
 * for a number member; misc_set_request_hook is told once when any changed.
 * para_get_misc_opt: the item is an array of member names, or of one name that begins with "all";
 * an item whose key contains "def" asks for defaults. -1 for an unknown module. Both give -ENOMEM
 * when memory runs out, see module.h.
 * para_need_save_misc: 1 when the last change is unsaved and at least 2000 ms old, else 0; -1 for
 * an unknown module.
 * para_save_misc: what fflush() returned, 0 when the file did not open; -1 for an unknown module. A
 * module whose range or defaults file could not be read at start is written like any other, with
 * the values that it has: none. "misc" without a range file is not written.
 */
PARA_API int para_init_misc(const char *name);
PARA_API int para_set_misc_opt(const char *key, const cJSON *item, const char *name);
PARA_API int para_get_misc_opt(const char *key, const cJSON *item, cJSON **answer,
                               const char *name);
PARA_API int para_need_save_misc(const char *name);
PARA_API int para_save_misc(const char *name);

PARA_END_DECLS

#endif
