// With the guard on: files in a folder that came after they were looked for, as one that is mounted
// late. They hold what the store knows nothing of.
#pragma once

#include "base/save_state.h"

// is_missing(), of a file that is to be loaded; takes note of it.
bool is_missing_at_load(const char *path, save_state &state);

// Returns the error number for a late file, and for a place that cannot be looked at; 0 for none.
// What is no regular file is refused when it is opened.
int find_late_file(const char *path, const save_state &state);
