// The model of a module with fixed members: six parallel arrays of values, three files.
//
// A module is a param_table: its members and what is particular to it, as data. Reading the files,
// checking changes, answering queries, saving and dumping are written once, in param_table.cpp.
#pragma once

#include <cjson/cJSON.h>

#include <ctime>

#include "core/change.h"

// The texts that stand for the values 0, 1, 2 ... of a member.
struct param_names {
    const char *const *names;
    int count;
};

struct param_member {
    int slot;
    const char *key;
};

struct param_table {
    const char *module; // as in its file names, "af" for "af_range.json"

    int *def, *min, *max, *init, *cur, *exist;
    int slots; // of each array

    const param_member *members; // in slot order
    int member_count;

    change_stamp stamp;
    const int *save_delay_ms;

    const char *banner;        // of the trace dump
    const char *init_function; // as which start-up is traced
    const char *page_function; // as which the dump is traced
};

// Loads range, defaults and current file, in this order. Returns 0, or -1 when one of the first
// two is missing or not JSON.
int param_start(const param_table &table);

// Takes a value that is within the slot's range and differs from the current one. Returns whether
// it did, and then has stamped the change.
bool param_set(const param_table &table, int slot, int value);

// Stores a member's current value by its exact name. Returns its presence, 0 for an unknown name.
int param_get_member(const param_table &table, const char *name, int *value);

// The answers to a query, new objects: every present member, or those among the item's names.
cJSON *param_answer_all(const param_table &table);
cJSON *param_answer_listed(const param_table &table, const cJSON *item);

bool param_due(const param_table &table);

// Writes the current file and clears the changed flag, whether or not the file opened. Returns what
// fflush returned; 0 when the file did not open.
int param_save(const param_table &table);

// Traces the current value, default and range of every member.
void param_page(const param_table &table);
