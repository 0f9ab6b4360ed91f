// What the guard does about files: a backup beside each current file, and its use at start-up.
#pragma once

#include <climits>
#include <cstddef>

#include "base/file.h"
#include "base/json.h"
#include "base/save_state.h"
#include "camparam/platform.h"

// A file beside another one: "<path>.bak".
struct file_beside {
    file_beside(const char *path, const char *suffix);
    char text[PATH_MAX + 16]; // update_conf() takes any path
};

// The folder of a file, "." for a path without one.
struct folder_of {
    explicit folder_of(const char *path);
    char text[sizeof(file_beside::text)];
};

// Writes "<path>.bak" so that it is on disk, whole, before the call returns; until then the one
// before stays. Returns 0, or the error number.
int write_backup(const char *path, const char *bytes, size_t length);

enum class file_form { json, json_object, conf };

// What to load as a current file.
struct recovered_file {
    explicit recovered_file(const char *file, const char *suffix = "") : path(file, suffix) {}
    file_beside path;     // the file itself, or its backup
    text_ptr text;        // what it holds; null for none, and with the guard off
    bool starved = false; // memory ran out: nothing is recovered, and the text may be missing
    bool missing = false; // there is no file
    bool written = false; // another program keeps it locked, and may be writing it
    bool unknown = false; // it is of no use, and its backup is there but cannot be read
};

// With the guard on, a current file that is torn is restored from its backup, and one that is of no
// use is renamed to "<path>.bad" first (base/bad_file.h); the state tells what was done. A file
// that is missing stays missing, and one that was edited is left alone. Where the backup that is
// needed is there but cannot be read, both stay, and the module is not saved.
recovered_file recover_file(const char *path, file_form form, save_state &state);

// Reads a current file that has to be JSON, recovered. It is read once: what was judged is loaded.
json_file read_current_json(const char *path, file_form form, save_state &state);
