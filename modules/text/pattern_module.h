// Shared by the source files of the pattern modules.
#pragma once

#include "camparam/misc.h"
#include "modules/text/text_module.h"

extern text_registry patterns;

// How a pattern module is loaded and saved; a row of the table in pattern_module.cpp.
struct file_set {
    const char *module;       // null: every module that has no row of its own
    bool keeps_failed_record; // else the next module takes it
    bool (*load)(text_module &module, const char *name, const trace_site &site);
    write_result (*save)(text_module &module);
};

// Loading and saving of "misc", in either of its file sets.
bool load_misc(text_module &module, const char *name, const trace_site &site);
write_result save_misc(text_module &module);

// A member's range, or null.
const cJSON *range_of(const text_module &module, const char *member);

// PARA_KIND_NUMBER, PARA_KIND_ENUM, or 0, traced.
int kind_of(const text_module &module, const char *member);

// Position of a text in a range, or -1.
int position_of(const cJSON *range, const char *text);

// The same for an enum member; -1 for any other.
int enum_position(const text_module &module, const char *member, const char *text);
