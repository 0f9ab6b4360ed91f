// Paths of the files of a module with fixed members.
#pragma once

#include "base/file.h"
#include "modules/fixed/fixed_module.h"

// The file with that suffix in the home directory: "af_range.json".
file_path home_file(const fixed_module &module, const char *suffix);

file_path current_file(const fixed_module &module);
