// The commands of the program: each has a file of its own, which adds its arguments and runs it.
#pragma once

#include "program.h"

void add_call(const arguments &words, program &all);
void add_check(const arguments &words, program &all);
void add_confirm(const arguments &words, program &all);
void add_describe(const arguments &words, program &all);
void add_diff(const arguments &words, program &all);
void add_dump(const arguments &words, program &all);
void add_get(const arguments &words, program &all);
void add_list(const arguments &words, program &all);
void add_load(const arguments &words, program &all);
void add_log(const arguments &words, program &all);
void add_raw(const arguments &words, program &all);
void add_record(const arguments &words, program &all);
void add_replay(const arguments &words, program &all);
void add_reset(const arguments &words, program &all);
void add_set(const arguments &words, program &all);
void add_share(const arguments &words, program &all);
void add_status(const arguments &words, program &all);
void add_style(const arguments &words, program &all);
void add_test(const arguments &words, program &all);
void add_wait(const arguments &words, program &all);
void add_watch(const arguments &words, program &all);
void add_www(const arguments &words, program &all);

using command_adder = void (*)(const arguments &words, program &all);

// In the order of the help.
inline constexpr command_adder commands[] = {
    add_list,  add_get,  add_set,    add_describe, add_diff,    add_reset, add_dump, add_load,
    add_watch, add_test, add_status, add_log,      add_confirm, add_style, add_www,  add_share,
    add_call,  add_raw,  add_wait,   add_record,   add_replay,  add_check,
};
