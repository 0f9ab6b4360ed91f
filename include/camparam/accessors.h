/**
 * @file accessors.h
 * The functions that each member of a module with fixed members has, for the headers that declare
 * them. Hosts need nothing of this file.
 */
#ifndef CAMPARAM_ACCESSORS_H
#define CAMPARAM_ACCESSORS_H

#include "camparam/api.h"

/** para_get_<module>_<m>_def, _min, _max, _init, _cur with these parameters, in parentheses. */
#define PARA_DECLARE_GETTERS(module, name, parameters)                                             \
    PARA_API int para_get_##module##_##name##_def parameters;                                      \
    PARA_API int para_get_##module##_##name##_min parameters;                                      \
    PARA_API int para_get_##module##_##name##_max parameters;                                      \
    PARA_API int para_get_##module##_##name##_init parameters;                                     \
    PARA_API int para_get_##module##_##name##_cur parameters;

/** para_set_<module>_<m>_cur, the public setter. */
#define PARA_DECLARE_SETTER(module, name, parameters)                                              \
    PARA_API int para_set_##module##_##name##_cur parameters;

/** The public setter, and the one that tells no hook: _para_set_<module>_<m>_cur. */
#define PARA_DECLARE_SETTERS(module, name, parameters)                                             \
    PARA_DECLARE_SETTER(module, name, parameters)                                                  \
    PARA_API int _para_set_##module##_##name##_cur parameters;

/** para_get_<module>_<m>_num: the value of a text. */
#define PARA_DECLARE_NUM(module, name)                                                             \
    PARA_API int para_get_##module##_##name##_num(const char *text);

#endif
