// The files of the store: their paths, reading and writing them.
#pragma once

#include <cstddef>
#include <cstdio>

#include "base/json.h"
#include "camparam/platform.h"

// A path that does not fit is empty, and so a file that cannot be opened.
struct file_path {
    file_path() : text{} {}
    file_path(const char *dir, const char *name);
    char text[PARA_PATH_SIZE];
};

struct json_file {
    bool readable;
    json_ptr root;     // null when the file is not readable or not JSON
    const char *error; // then where parsing stopped; empty for a file that is not readable
    text_ptr text;     // the file as it was read, which error points into
};

json_file read_json_file(const char *path);

enum class file_lock {
    none,
    exclusive, // flock(LOCK_EX): the file keeps its contents until the lock is held
};

// Replaces the contents of a file, or makes it. Returns what fflush returned, EOF for a short
// write; 0 when the file cannot be opened.
int write_file(const char *path, const char *bytes, size_t length, file_lock lock);

// The same for a text and its final zero byte (SavedFile.EndsWithOneZeroByte). A null text (out of
// memory) writes nothing and returns 0.
int write_text_file(const char *path, const char *text);

// Takes the exclusive lock on an open file, and waits for it.
void lock_file(FILE *file);
void unlock_file(FILE *file);

// The same for a file that is open.
int replace_contents(FILE *file, const char *bytes, size_t length);
