// Modules of a host's own.
#pragma once

#include <gtest/gtest.h>

#include "camparam/module.h"

// Before the store starts. Functions may be null.
inline void add_own_module(const char *name, decltype(para_module::get_opt) get,
                           decltype(para_module::set_opt) set)
{
    const para_module row = {.name = name,
                             .init = nullptr,
                             .init_stage2 = nullptr,
                             .set_opt = set,
                             .get_opt = get,
                             .need_save = nullptr,
                             .save = nullptr};
    ASSERT_EQ(register_para_handle_extern(&row), 0);
}
