// Writing to standard error without waiting for whoever reads it.
#pragma once

#include <sys/types.h>

#include <string_view>

// One write of what standard error takes at once. Returns the number of bytes, or -1 and errno. A
// regular file takes all. The flags of the open file, which other processes share, stay as they
// are.
ssize_t write_to_standard_error(std::string_view bytes);
