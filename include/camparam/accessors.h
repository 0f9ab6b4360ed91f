/**
 * @file accessors.h
 * The tables of a module with fixed members, and the functions that each member has, for the
 * headers that declare them.
 */
#ifndef CAMPARAM_ACCESSORS_H
#define CAMPARAM_ACCESSORS_H

#include <cjson/cJSON.h>
#include <time.h>

#include "camparam/api.h"
#include "camparam/presence.h"

struct timespec; /* strict C99 hides it in <time.h> */

/**
 * The six tables of a module, with a place for each slot (or, of the ISP, for each instance). Hosts
 * read them, as single words, and write through the setters.
 *
 * para_<module>_def: default; _min, _max: lowest and highest accepted value; _init: current value
 * as start-up left it; _cur: current value; _exist: presence, the bits of presence.h.
 */
#define PARA_DECLARE_TABLES(type, module, places)                                                  \
    PARA_API extern type para_##module##_def[places];                                              \
    PARA_API extern type para_##module##_min[places];                                              \
    PARA_API extern type para_##module##_max[places];                                              \
    PARA_API extern type para_##module##_init[places];                                             \
    PARA_API extern type para_##module##_cur[places];                                              \
    PARA_API extern type para_##module##_exist[places];

/** para_get_<module>_<m>_def, _min, _max, _init, _cur with these parameters, in parentheses. */
#define PARA_DECLARE_GETTERS(module, name, parameters)                                             \
    PARA_API int para_get_##module##_##name##_def parameters;                                      \
    PARA_API int para_get_##module##_##name##_min parameters;                                      \
    PARA_API int para_get_##module##_##name##_max parameters;                                      \
    PARA_API int para_get_##module##_##name##_init parameters;                                     \
    PARA_API int para_get_##module##_##name##_cur parameters;

/** para_set_<module>_<m>_cur: the public setter. */
#define PARA_DECLARE_SETTER(module, name, parameters)                                              \
    PARA_API int para_set_##module##_##name##_cur parameters;

/** _para_set_<module>_<m>_cur: the setter that tells no hook. */
#define PARA_DECLARE_INTERNAL_SETTER(module, name, parameters)                                     \
    PARA_API int _para_set_##module##_##name##_cur parameters;

/** para_get_<module>_<m>_num: the value of a text. */
#define PARA_DECLARE_NUM(module, name)                                                             \
    PARA_API int para_get_##module##_##name##_num(const char *text);

/** The functions of the module's row, see module.h, and the one that traces the table. */
#define PARA_DECLARE_ROW(module)                                                                   \
    PARA_API int para_init_##module(const char *name);                                             \
    PARA_API int para_get_##module##_opt(const char *key, const cJSON *item, cJSON **answer,       \
                                         const char *name);                                        \
    PARA_API int para_need_save_##module(const char *name);                                        \
    PARA_API int para_save_##module(const char *name);                                             \
    PARA_API void module##_page(void);

/** The same of a module that can be set by requests. */
#define PARA_DECLARE_SETTABLE_ROW(module)                                                          \
    PARA_DECLARE_ROW(module)                                                                       \
    PARA_API int para_set_##module##_opt(const char *key, const cJSON *item, const char *name);

#endif
