// Walking the module table.
#pragma once

#include "camparam/module.h"

// Counts the static rows; 0 when none is named "end".
int count_static_modules();

// The rows in use. A row without a name belongs to no module: every walk skips it.
template <typename action> void for_each_module(const action &act)
{
    for (int i = 0; i < module_para_handle_num; i++) {
        if (module_para_handle[i].name != nullptr)
            act(module_para_handle[i]);
    }
}
