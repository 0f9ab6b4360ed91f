// The model of a module with fixed members: six parallel tables of values, three files.
//
// A fixed_module describes a module: its members, and where it differs from the others. The common
// code: loading.cpp reads the files, change.cpp sets values, answer.cpp answers queries, saving.cpp
// writes the current file, page.cpp dumps the tables.
#pragma once

#include <cjson/cJSON.h>

#include "base/answer.h"
#include "base/change.h"
#include "base/trace.h"
#include "base/word.h"
#include "camparam/presence.h"
#include "modules/fixed/file_order.h"
#include "modules/fixed/value_names.h"

// Each value of every slot.
struct value_tables {
    int *def, *min, *max, *init, *cur, *exist;
};
#define VALUE_TABLES(module)                                                                       \
    {                                                                                              \
        .def = para_##module##_def, .min = para_##module##_min, .max = para_##module##_max,        \
        .init = para_##module##_init, .cur = para_##module##_cur, .exist = para_##module##_exist   \
    }

// For modules whose members exist once for each instance; files hold an object for each instance.
struct module_instances {
    int capacity; // at most 10: the keys tell them by one digit
    int *count;   // in use; fixed after start-up
    int stride;   // slots from one instance to the next
    int (*count_in)(const cJSON *range_root);
    void (*page_title)(int instance, const trace_site &site);
    bool share_a_row = false; // that of the first; else each has its own
};

// Differences between modules; the defaults are those of audio and video.
struct module_rules {
    bool clears_presence = false;     // at start-up
    bool traces_unreadable = true;    // a file that cannot be read
    bool named_values = true;         // files may hold names for numbers
    bool range_is_array = true;       // a range that is an object is ignored
    bool set_needs_presence = true;   // setters refuse an absent member
    bool get_needs_presence = true;   // the current value of an absent member reads as -1
    bool page_needs_presence = false; // the dump leaves absent members out
    int presence_of_number = PARA_PRESENT | PARA_PRESENT_AS_NUMBER;
};

struct fixed_module {
    const char *name;  // "af": in file names, and before an instance's number
    const char *title; // of the dump
    void (*page)();    // dumps it
    value_tables values;
    fixed_members members;
    file_slots file_order;
    const module_instances *instances = nullptr; // null: the members stand at the top of the files
    change_stamp stamp;
    const int *save_delay_ms = &default_save_delay_ms;
    module_rules rules = {};
};

inline bool is_named(const fixed_member &member)
{
    return member.names != &null_names;
}

inline int first_slot(const fixed_module &module, int instance)
{
    return module.instances != nullptr ? instance * module.instances->stride : 0;
}

// Of each table; slots before the first member's are reserved.
inline int slot_count(const fixed_module &module)
{
    if (module.instances != nullptr)
        return module.instances->capacity * module.instances->stride;
    return module.members.first->slot + module.members.count;
}

inline int slot_of(const fixed_module &module, int instance, const fixed_member &member)
{
    return first_slot(module, instance) + member.slot;
}

inline int instance_count(const fixed_module &module)
{
    return module.instances != nullptr ? *module.instances->count : 1;
}

// The key of an instance's object: "video0".
struct instance_key {
    instance_key(const fixed_module &module, int instance);
    char text[32];
};

// The module-table row that holds a slot's value.
struct row_name {
    row_name(const fixed_module &module, int slot);
    char text[32];
};

// --- Loading ---

// Loads range, defaults and current file, in this order, and dumps the values. Returns 0, or -1
// when one of the first two is missing or not JSON.
int start_module(const fixed_module &module, const trace_site &site);

// The steps of start_module(), for modules that need another order. The load functions trace a
// missing or broken file and return null.
json_ptr load_range_file(const fixed_module &module, const trace_site &site);
json_ptr load_current_file(const fixed_module &module, const trace_site &site);
void read_ranges(const fixed_module &module, int instance, const cJSON *object);
void read_defaults(const fixed_module &module, int instance, const cJSON *object);
void read_values(const fixed_module &module, int *values, const cJSON *object); // of one instance
void keep_start_values(const fixed_module &module);

// How many of the objects "video0", "video1" ... a range file has, traced.
int count_instances(const fixed_module &module, const cJSON *root, const trace_site &site);

// --- Changes ---

// Whether a setter takes the value: it is within the slot's range and differs from the current one.
// Inlined where the module is a constant: most calls change nothing, and cost little more than the
// comparisons (bench/accessors).
[[gnu::always_inline]] inline bool accepts(const fixed_module &module, int slot, int value)
{
    if (value < load_word(module.values.min[slot]) || value > load_word(module.values.max[slot]))
        return false;
    if (value == load_word(module.values.cur[slot]))
        return false; // restamping would let a client that repeats itself hold off the save
    return !module.rules.set_needs_presence || load_word(module.values.exist[slot]) != 0;
}

// Tells the observers of a member that has changed.
struct slot_change {
    int before, after;
};
void tell_change_of(const fixed_module &module, int slot, const slot_change &values,
                    void (*tell)(const para_setting_change &change));

// Stores an accepted value and stamps the change. Returns 1, as setters do that tell of a change.
int change_value(const fixed_module &module, int slot, int value);

// The same, and tells the host: the hook gets the public setter that took the value, and its
// arguments. Returns 0, as public setters do.
template <typename hook, typename... setter_and_instance>
[[gnu::noinline]] int change_and_notify(const fixed_module &module, int slot, int value,
                                        hook notify, setter_and_instance... setter)
{
    change_value(module, slot, value);
    if (notify != nullptr)
        notify(setter..., value);
    return 0;
}

// An internal setter's work. Returns 1 when the value changed, else 0.
[[gnu::always_inline]] inline int set_value(const fixed_module &module, int slot, int value)
{
    return accepts(module, slot, value) ? change_value(module, slot, value) : 0;
}

// A public setter's work. Returns 0.
template <typename hook, typename... setter_and_instance>
[[gnu::always_inline]] inline int set_and_notify(const fixed_module &module, int slot, int value,
                                                 const hook &notify, setter_and_instance... setter)
{
    if (!accepts(module, slot, value))
        return 0;
    return change_and_notify(module, slot, value, notify, setter...);
}

// Sets a member as a request does: from the number or from the text, whichever form its default
// had. Returns 1 when the value changed, else 0.
int set_as_requested(const fixed_module &module, int instance, const fixed_member &member,
                     int number, const char *text);

// The same for the member of exactly that name; 0 for an unknown name, and for a named member
// without a text.
int set_member(const fixed_module &module, const char *name, int number, const char *text);

// Applies each member of a set request. Returns 1 when any value changed, else 0.
template <typename setter> int set_each(const cJSON *item, const setter &set)
{
    int changed = 0;
    const cJSON *child = nullptr;
    cJSON_ArrayForEach(child, item)
    {
        if (child->string != nullptr)
            changed |= set(child->string, child->valueint, child->valuestring);
    }
    return changed;
}

// --- Answers ---

// A value in the tables of current and of start-up values: -1 for an absent member, where the
// module has that rule.
[[gnu::always_inline]] inline int current_value(const fixed_module &module, const int *values,
                                                int slot)
{
    if (module.rules.get_needs_presence && load_word(module.values.exist[slot]) == 0)
        return -1;
    return load_word(values[slot]);
}

// The member of exactly that name, or null.
const fixed_member *find_member(const fixed_module &module, const char *name);

// The first member that can be set whose name the text begins with, or null.
const fixed_member *find_member_by_prefix(const fixed_module &module, const char *text);

// Stores a member's value in one of the tables, and, where a place for it is given, the name of a
// named member's value, null if it is exchanged as a number. Returns the member's presence.
int get_member(const fixed_module &module, const int *values, int instance, const char *name,
               int *value, const char **text);

// Answers with an object of an instance's values in one of the tables: every present member, or
// those among the names of the item of a query, under its key.
void answer_all(const fixed_module &module, const int *values, int instance, const char *key,
                answer_sink &sink);
void answer_listed(const fixed_module &module, const int *values, int instance, const cJSON *item,
                   answer_sink &sink);

// The first as a new tree; null when memory ran out.
cJSON *tree_of_all(const fixed_module &module, const int *values, int instance);

// A query's work: answers with all members or with the listed ones. The latter is traced as
// "leave". Returns 0.
int answer_query(const fixed_module &module, const int *values, int instance, const cJSON *item,
                 answer_sink &sink, const trace_site &site);

// --- Saving ---

// 1 when the last change is unsaved and as old as the save delay, else 0.
int module_due(const fixed_module &module);

// Saves at once when the last change is that old. Returns 0.
int save_after(const fixed_module &module, int delay_ms);

// Writes the current file and clears the mark of change, whether or not the file opened. Returns
// what fflush returned; 0 when the file did not open.
int save_module(const fixed_module &module);

// Traces the current value, default and range of every member.
void page_module(const fixed_module &module, const trace_site &site);
