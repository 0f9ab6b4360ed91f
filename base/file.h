// The files of the store: their paths, reading and writing them.
#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdio>

#include "base/json.h"
#include "base/save_state.h"
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
    bool starved;      // root is null because memory ran out
};

json_file read_json_file(const char *path);
json_file parse_json_text(text_ptr text); // null: of a file that is not readable

enum class file_lock {
    none,
    exclusive, // flock(LOCK_EX): the file keeps its contents until the lock is held
};

// Whether there is no file. With the guard on, one that cannot be looked at is there. A link to a
// missing file is missing, and is followed by the first save.
bool is_missing(const char *path);

// What errno says of a step that failed; 0 for one that is done.
inline int error_of(bool done)
{
    if (done)
        return 0;
    return errno != 0 ? errno : EIO;
}

// What came of writing a file.
struct write_result {
    int returned; // what fflush returned, EOF for a short write; 0 when the file cannot be opened
    int error;    // errno of the step that failed; 0: everything is written
    bool torn;    // it failed when the old contents were gone
};

// Replaces the contents of a module's file, or makes it; without bytes (out of memory) nothing is
// written. With the guard on, its backup is written first, only a regular file is written, none
// that came late (base/late_file.h), and a failure is traced.
write_result write_file(const char *path, const char *bytes, size_t length, file_lock lock,
                        save_state &state);

// The same without any of this, with the guard on or off, but for the regular file.
write_result write_in_place(const char *path, const char *bytes, size_t length, file_lock lock);

// write_file() for a text and its final zero byte (SavedFile.EndsWithOneZeroByte).
write_result write_text_file(const char *path, const char *text, save_state &state);

// How many files write_file() has opened to write. Any thread.
unsigned files_written();

// Takes the exclusive lock on an open file, and waits for it. Returns 0, also where the file system
// has no locks; with the guard on, EWOULDBLOCK when another program has kept the lock for 2 s.
int lock_file(FILE *file);
void unlock_file(FILE *file);

// Replaces the contents of a file that is open for writing. Returns what fflush returned, or EOF.
int replace_contents(FILE *file, const char *bytes, size_t length);
