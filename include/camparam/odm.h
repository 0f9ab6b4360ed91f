/**
 * @file odm.h
 * The ODM store: values of a device maker that override the files, kept apart from all settings.
 *
 * A flat JSON document, "odm.json" in the folder "persist" of the data directory. Hosts may keep
 * keys of their own; "version", "isp0_style_def" and "isp0_antiflicker_def" are the library's.
 * Keys are matched without regard to case. The module's row, by which platformparam_get_status()
 * and the change observer name it, is PARA_ODM_ROW. Any thread, once the store has started.
 */
#ifndef CAMPARAM_ODM_H
#define CAMPARAM_ODM_H

#include <time.h>

#include "camparam/api.h"

PARA_BEGIN_DECLS

struct timespec; /* strict C99 hides it in <time.h> */

/** Bytes that para_get_odm_string() may store, the final zero included. */
#define PARA_ODM_TEXT_MAX 256

/** Name of the store's row in the module table. */
#define PARA_ODM_ROW "odmInter"

/** Time (CLOCK_MONOTONIC) of the last change. */
PARA_API extern struct timespec odm_item_start_time;

/**
 * Read a number.
 * @param[out] value  The item's integer form, 0 for a text; untouched on failure.
 * @return 0; -1 when there is no document; -2 when the key is absent.
 */
PARA_API int para_get_odm_int(const char *key, int *value);

/**
 * Read a text.
 * @param[out] text  PARA_ODM_TEXT_MAX bytes. The text, cut to fit and zero-terminated; the empty
 *                   text for a number. Untouched on failure.
 * @return 0; -1 when there is no document; -2 when the key is absent.
 */
PARA_API int para_get_odm_string(const char *key, char *text);

/**
 * Set a number or a text; the text is copied. A new value calls odm_set_notify_hook with the key,
 * on the caller's thread, marks the store changed and is written two seconds later. An item keeps
 * its type: a number set on a text item is gone after a restart, and a text set on a number item is
 * never stored, nor is a NULL text, though every such call counts as a change. A NULL key changes
 * nothing, nor does a value for which there is no memory.
 * @return 0
 */
PARA_API int para_set_odm_int(const char *key, int value);
PARA_API int para_set_odm_string(const char *key, const char *text);

/**
 * The same without hook, mark and write. @return 1 when the document changed, else 0, also when
 * memory runs out.
 */
PARA_API int _para_set_odm_int(const char *key, int value);
PARA_API int _para_set_odm_string(const char *key, const char *text);

/**
 * The module's row functions, see module.h.
 *
 * para_init_odm: 0, or -1 when the file is not JSON (traced). No file is no error. A file that
 * holds no object has no keys, and keeps none that are set. para_init_stage2_odm: tells
 * conflict_hook when the document's version is not 1, and makes it 1; -1 when there is no document,
 * else 0. para_need_save_odm: 1 when the last change is unsaved and at least 2000 ms old, else 0.
 * para_save_odm: what fflush() returned; 0 when there is nothing to write or the file did not open.
 */
PARA_API int para_init_odm(const char *name);
PARA_API int para_init_stage2_odm(const char *name);
PARA_API int para_need_save_odm(const char *name);
PARA_API int para_save_odm(const char *name);

PARA_END_DECLS

#endif
