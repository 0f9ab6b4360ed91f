// Whether the store can use a home folder. With one that it cannot read in part, it would start
// without settings, and clients would see a camera that has none.
#pragma once

#include <string>

#include "device_files.h"

struct home_check {
    std::string fault; // a sentence that names the path and the reason; empty: usable
    device_files files;
};

// web_names: the name of the web-name file; data: the data folder, which may choose the default
// style. It is unusable when it cannot be read, holds none of the store's files, one of them cannot
// be read or, for JSON, holds no object, or the default picture style has no values.
home_check check_home(const std::string &home, const std::string &web_names,
                      const std::string &data);
