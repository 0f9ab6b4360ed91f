// Rows of the module table by their names: where a row stands is the table's business.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "camparam/module.h"

// The row of that name; the static rows are there before start-up too.
inline para_module &row_named(const std::string &name)
{
    for (para_module &row : module_para_handle) {
        if (row.name != nullptr && row.name == name)
            return row;
    }
    ADD_FAILURE() << "no row " << name;
    static para_module none;
    return none;
}

// Names of the rows in use, in order.
inline std::vector<std::string> row_names()
{
    std::vector<std::string> names;
    for (int i = 0; i < module_para_handle_num; i++)
        names.emplace_back(module_para_handle[i].name);
    return names;
}

// Names of those that start-up has appended to the static ones.
inline std::vector<std::string> appended_rows()
{
    const std::vector<std::string> names = row_names();
    auto row = names.begin();
    while (row != names.end() && *row++ != "end") {
        // "end" is the last of the static rows.
    }
    return {row, names.end()};
}
