// What of the settings is not in the files.
#pragma once

#include "camparam/guard.h"
#include "camparam/module.h"

// Whether a save would write nothing new. Any thread.
bool all_is_written();

// Why the module's changes will not be written; null: they will.
const char *obstacle_of(const char *module, const para_module_status &status);

// Calls for each module that has a file, in the order of the module table.
template <typename function> void for_each_saved_module(const function &call)
{
    for (int i = 0; i < module_para_handle_num; i++) {
        const para_module &row = module_para_handle[i];
        para_module_status status = {};
        if (row.save != nullptr && platformparam_get_status(row.name, &status) == 0)
            call(row.name, status);
    }
}
