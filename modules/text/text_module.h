// The model of a module whose values are texts, kept in two configure objects of the host: pattern
// modules, whose range files tell their members, and conf-file modules, which have no ranges.
//
// registry.cpp finds modules and tells which are due, conf_file.cpp loads and saves their values,
// answer.cpp answers queries.
#pragma once

#include <cjson/cJSON.h>

#include <ctime>

#include "base/answer.h"
#include "base/change.h"
#include "base/file.h"
#include "base/trace.h"
#include "camparam/platform.h"

constexpr int module_name_size = 64;
constexpr int value_size = 256; // of a value that is read

struct file_set;

struct text_module {
    // Fixed after start-up.
    char name[module_name_size];
    bool listed;           // the record is in use; the name may be empty
    const file_set *files; // of a pattern module
    cJSON *range;          // of a pattern module whose range file could be read
    // Fixed after start-up in a pattern module; guarded by a lock in a conf-file module.
    configure *def;
    configure *cur;
    // Any thread.
    timespec change_time;
    int changed;
    save_state saves;
};

// --- Records ---

// The modules of one kind. The first init call comes from the row of the kind itself ("json",
// "conf"): it starts the registry and takes no record.
struct text_registry {
    text_module *records;
    int capacity;
    int next; // 0: not started; else the index of the next free record, plus one
};

// Empties the next record and gives it the name. Null when all of them are taken.
text_module *take_record(text_registry &registry, const char *name);

// The module of that name, or null.
text_module *find_module(const text_registry &registry, const char *name);

change_stamp stamp_of(text_module &module);

// Of a module that has no record, that it could not be loaded.
para_module_status status_in(const text_registry &registry, const char *name);

// 1: the module is due; 0: it is not; -1: there is none of that name.
int need_save(const text_registry &registry, const char *name);

// --- Values ---

// Frees the objects of a module, which then has no values.
void free_values(text_module &module);
void free_objects(configure *&def, configure *&cur);

// Copies a value of at most value_size - 1 characters. Returns whether the object has one.
bool read_value(configure *conf, const char *key, char (&value)[value_size]);

// "<dir>/<module><suffix>"
file_path module_path(const char *dir, const char *module, const char *suffix);

// Stores a value. False when memory ran out; a value that the object refuses is none of the store's
// business.
bool store_text(configure *conf, const char *key, const char *text);

// Reads the defaults into both objects, and the saved values over them into the current one. A
// saved file that cannot be read leaves the defaults. Returns whether there is a defaults file.
// When memory runs out, also for one of the objects, there are no values: it frees both, makes them
// null and returns false.
bool load_conf_files(const char *name, configure *&def, configure *&cur, save_state &state);

// The same for objects with values, which stay in force when a file cannot be read: then it returns
// false. When memory does not suffice for that either, there are no values, and it frees both.
bool reload_conf_files(const char *name, configure *&def, configure *&cur, save_state &state);

// The lines of a saved file, for the caller to free(); null when there is no object, or memory ran
// out.
text_ptr conf_lines(configure *cur);

write_result save_conf_lines(const char *name, const text_ptr &lines, file_lock lock,
                             save_state &state);

// Writes an object's entries to a buffer. Returns the bytes used with the final zero; 0, traced,
// when they do not fit.
int write_conf_to_buffer(const char *module, configure *conf, char *buffer, int size,
                         const trace_site &site);

// --- Answers ---

// The form of answers: all values as texts, or as texts and numbers by the range file.
enum class answer_form { texts, by_range };

// Answers with every entry of a configure object. Returns what its loop returned; -1 when there is
// no object; no_memory when the answer is not complete.
int answer_all(const text_module &module, configure *values, answer_form form, answer_sink &sink);

// Answers with the listed members that the object has; by_range leaves out members without a range.
void answer_listed(const text_module &module, configure *values, answer_form form,
                   const cJSON *item, answer_sink &sink);
