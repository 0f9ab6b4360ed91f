// Whole files as text.
#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

struct file_close {
    void operator()(FILE *file) const { fclose(file); }
};
using file_ptr = std::unique_ptr<FILE, file_close>;

// Null when the path is null or the file cannot be opened for reading.
file_ptr open_to_read(const char *path);

// Reads to the end of the file instead of trusting its size, which is 0 for files under /proc.
// Nothing on a read error, such as for a directory.
std::optional<std::string> read_rest(FILE *file);
