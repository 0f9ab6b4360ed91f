// Definitions that modules with fixed members share. Each function is one call.
#pragma once

#include "base/answer_tree.h"
#include "camparam/control.h"
#include "modules/fixed/fixed_module.h"
#include "modules/fixed/rows.h"

// The tables of values.
#define DEFINE_TABLES(module, slots)                                                               \
    int para_##module##_def[slots], para_##module##_min[slots], para_##module##_max[slots];        \
    int para_##module##_init[slots], para_##module##_cur[slots], para_##module##_exist[slots];

// para_init_<module>, for modules with the common start-up sequence.
#define DEFINE_START(module)                                                                       \
    int para_init_##module(const char *)                                                           \
    {                                                                                              \
        return start_module(module, PARA_HERE);                                                    \
    }

// para_need_save_<module>, para_save_<module>, <module>_status and <module>_page.
#define DEFINE_ROW(module)                                                                         \
    int para_need_save_##module(const char *)                                                      \
    {                                                                                              \
        return module_due(module);                                                                 \
    }                                                                                              \
    int para_save_##module(const char *)                                                           \
    {                                                                                              \
        return save_module(module);                                                                \
    }                                                                                              \
    para_module_status module##_status(const char *)                                               \
    {                                                                                              \
        return status_of(saves);                                                                   \
    }                                                                                              \
    void module##_page()                                                                           \
    {                                                                                              \
        page_module(module, PARA_HERE);                                                            \
    }

#define DEFINE_GETTERS(module, name, slot)                                                         \
    int para_get_##module##_##name##_def()                                                         \
    {                                                                                              \
        return load_word(para_##module##_def[slot]);                                               \
    }                                                                                              \
    int para_get_##module##_##name##_min()                                                         \
    {                                                                                              \
        return load_word(para_##module##_min[slot]);                                               \
    }                                                                                              \
    int para_get_##module##_##name##_max()                                                         \
    {                                                                                              \
        return load_word(para_##module##_max[slot]);                                               \
    }                                                                                              \
    int para_get_##module##_##name##_init()                                                        \
    {                                                                                              \
        return current_value(module, para_##module##_init, slot);                                  \
    }                                                                                              \
    int para_get_##module##_##name##_cur()                                                         \
    {                                                                                              \
        return current_value(module, para_##module##_cur, slot);                                   \
    }

// The work of a module's setters, not inlined into each of them.
#define DEFINE_CHANGE(module)                                                                      \
    [[gnu::noinline]] static int change(int slot, int value)                                       \
    {                                                                                              \
        return set_value(module, slot, value);                                                     \
    }
#define DEFINE_SET(module)                                                                         \
    [[gnu::noinline]] static int set(int slot, int value, int (*setter)(int))                      \
    {                                                                                              \
        return set_and_notify(module, slot, value, para_profile.module##_set_notify_hook, setter); \
    }

#define DEFINE_SETTER(module, name, slot)                                                          \
    int para_set_##module##_##name##_cur(int value)                                                \
    {                                                                                              \
        return set(slot, value, para_set_##module##_##name##_cur);                                 \
    }

#define DEFINE_INTERNAL_SETTER(module, name, slot)                                                 \
    int _para_set_##module##_##name##_cur(int value)                                               \
    {                                                                                              \
        return change(slot, value);                                                                \
    }

#define DEFINE_NUM(module, name, names)                                                            \
    int para_get_##module##_##name##_num(const char *text)                                         \
    {                                                                                              \
        return number_of_text(names, text);                                                        \
    }

// For modules with instances. The module defines the functions that check the instance:
//   read(instance, values, slot)           a value of one of the tables
//   read_current(instance, values, slot)   the same of the tables "init" and "cur"
//   change(instance, slot, value)          an internal setter's work
//   set(instance, slot, value, setter)     a public setter's
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
        return read_current(instance, para_##module##_init, slot);                                 \
    }                                                                                              \
    int para_get_##module##_##name##_cur(int instance)                                             \
    {                                                                                              \
        return read_current(instance, para_##module##_cur, slot);                                  \
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
