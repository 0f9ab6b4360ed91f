// Whole files as text.
#pragma once

#include <optional>
#include <string>

#include "platform/descriptor.h"

constexpr size_t largest_file = size_t{4} << 20;

// Opens a regular file of at most largest_file bytes, without waiting. Otherwise none, and errno is
// EISDIR for a directory, EINVAL for a null path or another file that is not regular, EFBIG for a
// larger one, or what stat() and open() say.
descriptor open_to_read(const char *path);

// Reads to the end of the file instead of trusting its size, which is 0 for files under /proc.
// Nothing, and errno, on a read error or when it is longer than largest_file.
std::optional<std::string> read_rest(const descriptor &file);

// Takes a shared flock(), which ends with the descriptor. Waits at most 2 s while a writer has the
// exclusive one, then false and EWOULDBLOCK. True without a lock on file systems that have none.
bool lock_to_read(const descriptor &file);
