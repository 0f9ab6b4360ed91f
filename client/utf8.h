// UTF-8.
#pragma once

#include <string>

// Whether the bytes are UTF-8: complete, as short as can be, no surrogates.
bool is_utf8(const std::string &bytes);
