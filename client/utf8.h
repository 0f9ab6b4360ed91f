// UTF-8.
#pragma once

#include <string>

// Whether the bytes are UTF-8: complete, as short as can be, no surrogates.
bool is_utf8(const std::string &bytes);

// How many bytes the character at the position has; 0 when they are no UTF-8.
size_t utf8_length_at(const std::string &bytes, size_t position);

// With U+FFFD for each byte that is no UTF-8.
std::string as_utf8(const std::string &bytes);
