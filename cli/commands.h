// The commands of the program: each has a file of its own, which adds its arguments and runs it.
#pragma once

#include "program.h"

void add_call(const arguments &words, program &all);
void add_get(const arguments &words, program &all);
void add_list(const arguments &words, program &all);
void add_raw(const arguments &words, program &all);
void add_set(const arguments &words, program &all);
void add_share(const arguments &words, program &all);
void add_style(const arguments &words, program &all);
void add_www(const arguments &words, program &all);

using command_adder = void (*)(const arguments &words, program &all);

// In the order of the help.
inline constexpr command_adder commands[] = {
    add_list, add_get, add_set, add_call, add_style, add_www, add_share, add_raw,
};
