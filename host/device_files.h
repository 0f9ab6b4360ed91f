// The files that the store looks for, by the names that docs/file-formats.md gives them.
#pragma once

#include <cjson/cJSON.h>

#include <string>
#include <vector>

struct device_files {
    std::vector<std::string> json_files; // ranges and defaults, in the home folder
    std::vector<std::string> conf_files; // in the home folder
    std::vector<std::string> saved;      // in the data folder
};

// By the module names that the web-name file lists; null: those of a device without one.
device_files files_of(const cJSON *web_names);
