// What the modules that keep their values in configure objects share.
#pragma once

#include <cjson/cJSON.h>

#include <cstring>

#include "base/file.h"
#include "base/query.h"
#include "camparam/platform.h"

constexpr int module_name_size = 64;
constexpr int value_size = 256; // of a value that is read

// "<dir>/<module><suffix>"
file_path module_path(const char *dir, const char *module, const char *suffix);

// Copies a value of at most value_size - 1 characters. Returns whether the object has one.
bool read_conf_value(configure *conf, const char *key, char (&value)[value_size]);

// Waits until the exclusive lock on an open file is ours.
void lock_file(int descriptor);

// Writes an object's entries to a file under an exclusive lock, which another process may hold: its
// contents stand until then. Returns what fflush returned; 0 when the file cannot be opened.
int write_conf_locked(const char *path, configure *conf);

// Writes an object's entries to a buffer. Returns the bytes used with the final zero; 0, traced as
// the function's, when they do not fit.
int write_conf_to_buffer(const char *function, const char *module, configure *conf, char *buffer,
                         int size);
