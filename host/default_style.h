// The picture style that the image processor gets its defaults from.
#pragma once

#include <cjson/cJSON.h>

#include <string>

// Why the store would have no defaults: empty, or a reason. The data folder's ODM file may name
// another style than the style file; without a readable one it names none.
std::string default_style_fault(const cJSON *style_file, const std::string &data);
