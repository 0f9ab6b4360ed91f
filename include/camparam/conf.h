/**
 * @file conf.h
 * Settings in ".conf" files that other programs own: "netport", "overlay", "ndi_config", and what
 * the web-name file's "conf_pattern_list" names.
 *
 * Every value is text. Defaults come from the file in the home directory, current values from it
 * and the file in the data directory over it. The store writes the latter only while the host has
 * set conf_save_hook in its profile.
 *
 * An unknown module, one whose defaults file could not be read, and NULL arguments give the error
 * result. Any thread, once the store has started.
 */
#ifndef CAMPARAM_CONF_H
#define CAMPARAM_CONF_H

#include <cjson/cJSON.h>

#include "camparam/api.h"

PARA_BEGIN_DECLS

/**
 * Read a module's files, the defaults and then the saved values over them, into the objects that
 * the module has: key changes are seen by para_conf_key_IsChanged(). Other threads that use the
 * module wait meanwhile. A reload keeps values that no file has any more, and overwrites those that
 * were set and not saved.
 *
 * With the guard on, a file that cannot be read, or is locked by another program for 2 s, leaves
 * the values as they are; one that is torn or of no use is treated as at start-up.
 *
 * @return 0, or -1: unknown module, or the defaults file cannot be read, which leaves the module
 *         without values until a reload succeeds; with the guard on, either file, or that there
 *         are changes to be saved, and the values stay unless memory ran out.
 */
PARA_API int para_init_single_conf(const char *name);

/**
 * Current value, not copied. It stays valid until that key is set or the module is reloaded.
 * @return The text, or NULL.
 */
PARA_API const char *para_conf_get_member(const char *module, const char *key);

/** Copy the current, or the default value's text. @return 0; -1 unknown, or too long for @p size.
 */
PARA_API int para_conf_get_member_safe(const char *module, const char *key, char *buffer, int size);
PARA_API int para_conf_get_def_member_safe(const char *module, const char *key, char *buffer,
                                           int size);

/**
 * Set a current value and mark the module changed; para_conf_set_member() tells
 * conf_member_notify_hook of a change.
 * @return 1 changed; 0 the same value; -1 unknown.
 */
PARA_API int _para_conf_set_member(const char *module, const char *key, const char *value);
PARA_API int para_conf_set_member(const char *module, const char *key, const char *value);

/** Reread a module's files, and tell conf_update_hook. Also the host work "netport", for that one.
 */
PARA_API void para_conf_need_update(const char *module);

/**
 * Whether any of the keys has changed since it was last asked about. Of a NULL list none has.
 * @return 1 yes; 0 no; -1 unknown.
 */
PARA_API int para_conf_key_IsChanged(const char *module, const char *const *keys,
                                     unsigned char count);

/**
 * Write the current values as conf lines, zero-terminated, into a buffer of @p size bytes.
 * @return Bytes used with the final zero; 0 when they do not fit (traced); -1 unknown.
 */
PARA_API int para_save_conf_2_buf(const char *module, char *buffer, int size);

/**
 * Rewrite the lines of a file that begin with the key and then a blank or "="; a key that no line
 * has is not added. Lines and files may have any length. The file is locked (flock) meanwhile. With
 * the guard on, the new text is first written to "<path>.bak", and a failure is traced.
 *
 * line is the whole new line, without line end. format is that of the new line: "%s = \"%s\"" or
 * "%s=%s" for a text, "%s = \"%d\"" or "%s=%d" for a number; another one is traced and changes
 * nothing.
 *
 * @return 0, also when no line matched; -1: the file cannot be opened, read or written, memory runs
 *         out, or the format is another.
 */
PARA_API int update_conf(const char *path, const char *key, const char *line);
PARA_API int update_line_conf(const char *path, const char *key, const char *line);
PARA_API int update_line_conf_str(const char *path, const char *key, const char *value,
                                  const char *format);
PARA_API int update_line_conf_int(const char *path, const char *key, int value, const char *format);

/** para_conf_get_member() of "overlay", "netport", "ndi_config". */
PARA_API const char *para_get_overlay_member(const char *key);
PARA_API const char *para_get_netport_member(const char *key);
PARA_API const char *para_get_ndi_config_member(const char *key);

/** para_conf_need_update() of "netport". */
PARA_API void para_need_update_netport(void);

/** para_conf_key_IsChanged() of "netport", "ndi_config", "devinfo"; the count is cut to 8 bits. */
PARA_API int para_key_IsChanged_netport(const char *const *keys, int count);
PARA_API int para_key_IsChanged_ndi(const char *const *keys, int count);
PARA_API int para_key_IsChanged_devinfo(const char *const *keys, int count);

/**
 * The row functions of these modules, see module.h.
 *
 * para_init_conf: 0 always. The first call starts the store and loads nothing.
 * para_set_conf_opt: the item is an object of texts; conf_update_hook is told once when any
 * changed.
 * para_get_conf_opt: the item is an array of keys, or of one that begins with "all", which answers
 * with the defaults when the item's own key contains "def".
 * para_need_save_conf: 1 when the last change is unsaved and at least 2000 ms old, else 0; -1 for
 * an unknown module.
 * para_save_conf: 0; -1 unknown. Nothing is written, and the module stays changed, while
 * conf_save_hook is NULL.
 */
PARA_API int para_init_conf(const char *name);
PARA_API int para_set_conf_opt(const char *key, const cJSON *item, const char *name);
PARA_API int para_get_conf_opt(const char *key, const cJSON *item, cJSON **answer,
                               const char *name);
PARA_API int para_need_save_conf(const char *name);
PARA_API int para_save_conf(const char *name);

PARA_END_DECLS

#endif
