// What the files of modules with fixed members define alike.
#pragma once

#include "modules/fixed/value_names.h"

// The tables of values.
#define DEFINE_TABLES(module, slots)                                                               \
    int para_##module##_def[slots], para_##module##_min[slots], para_##module##_max[slots];        \
    int para_##module##_init[slots], para_##module##_cur[slots], para_##module##_exist[slots];

// Defines the accessors of a member, each as one call of a function of the including file:
//   read(values, slot)           a value of one of the tables
//   read_present(values, slot)   the same for the tables "init" and "cur"
//   change(slot, value)          an internal setter's work
//   set(slot, value, setter)     a public setter's
// In a module with instances, each takes the instance first.

#define DEFINE_GETTERS(module, name, slot)                                                         \
    int para_get_##module##_##name##_def()                                                         \
    {                                                                                              \
        return read(para_##module##_def, slot);                                                    \
    }                                                                                              \
    int para_get_##module##_##name##_min()                                                         \
    {                                                                                              \
        return read(para_##module##_min, slot);                                                    \
    }                                                                                              \
    int para_get_##module##_##name##_max()                                                         \
    {                                                                                              \
        return read(para_##module##_max, slot);                                                    \
    }                                                                                              \
    int para_get_##module##_##name##_init()                                                        \
    {                                                                                              \
        return read_present(para_##module##_init, slot);                                           \
    }                                                                                              \
    int para_get_##module##_##name##_cur()                                                         \
    {                                                                                              \
        return read_present(para_##module##_cur, slot);                                            \
    }

#define DEFINE_SETTER(module, name, slot)                                                          \
    int para_set_##module##_##name##_cur(int value)                                                \
    {                                                                                              \
        return set(slot, value, para_set_##module##_##name##_cur);                                 \
    }

#define DEFINE_SETTERS(module, name, slot)                                                         \
    DEFINE_SETTER(module, name, slot)                                                              \
    int _para_set_##module##_##name##_cur(int value)                                               \
    {                                                                                              \
        return change(slot, value);                                                                \
    }

#define DEFINE_INSTANCE_GETTERS(module, name, slot)                                                \
    int para_get_##module##_##name##_def(int instance)                                             \
    {                                                                                              \
        return read(instance, para_##module##_def, slot);                                          \
    }                                                                                              \
    int para_get_##module##_##name##_min(int instance)                                             \
    {                                                                                              \
        return read(instance, para_##module##_min, slot);                                          \
    }                                                                                              \
    int para_get_##module##_##name##_max(int instance)                                             \
    {                                                                                              \
        return read(instance, para_##module##_max, slot);                                          \
    }                                                                                              \
    int para_get_##module##_##name##_init(int instance)                                            \
    {                                                                                              \
        return read_present(instance, para_##module##_init, slot);                                 \
    }                                                                                              \
    int para_get_##module##_##name##_cur(int instance)                                             \
    {                                                                                              \
        return read_present(instance, para_##module##_cur, slot);                                  \
    }

#define DEFINE_INSTANCE_SETTERS(module, name, slot)                                                \
    int para_set_##module##_##name##_cur(int instance, int value)                                  \
    {                                                                                              \
        return set(instance, slot, value, para_set_##module##_##name##_cur);                       \
    }                                                                                              \
    int _para_set_##module##_##name##_cur(int instance, int value)                                 \
    {                                                                                              \
        return change(instance, slot, value);                                                      \
    }

#define DEFINE_NUM(module, name, names)                                                            \
    int para_get_##module##_##name##_num(const char *text)                                         \
    {                                                                                              \
        return number_of_text(names, text);                                                        \
    }
