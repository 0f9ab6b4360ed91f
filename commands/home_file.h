// Files of the home folder that the commands read themselves.
#pragma once

#include "base/json.h"

struct home_file {
    json_ptr root;       // null: there is no such file, or what follows tells why
    const char *problem; // such as "cannot be read"; null: none
    bool starved;        // memory ran out
};

// Reads a JSON file of at most 1 MiB.
home_file read_home_file(const char *name);
