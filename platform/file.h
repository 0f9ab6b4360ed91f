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

// Null when there is no path or the file cannot be opened for reading.
file_ptr open_to_read(const char *path);

// The rest of a file, whatever its size says: files under /proc tell none. Nothing when it cannot
// be read, as a directory cannot.
std::optional<std::string> read_rest(FILE *file);
