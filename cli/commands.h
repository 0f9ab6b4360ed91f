// The commands of the program: each has a file of its own, which adds its arguments and runs it.
#pragma once

#include "program.h"

void add_call(CLI::App &app, program &all);
void add_get(CLI::App &app, program &all);
void add_list(CLI::App &app, program &all);
void add_raw(CLI::App &app, program &all);
void add_set(CLI::App &app, program &all);
void add_share(CLI::App &app, program &all);
void add_style(CLI::App &app, program &all);
void add_www(CLI::App &app, program &all);

using command_adder = void (*)(CLI::App &app, program &all);

// In the order of the help.
inline constexpr command_adder commands[] = {
    add_list, add_get, add_set, add_call, add_style, add_www, add_share, add_raw,
};
