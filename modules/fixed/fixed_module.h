// The model of a module with fixed members: six parallel arrays of values, three files.
//
// A module is a param_table: its members and what is particular to it, as data. Reading the files,
// checking changes, answering queries, saving and dumping are written once, in param_table.cpp.
#pragma once

#include <cjson/cJSON.h>

#include <ctime>

#include "base/change.h"
#include "base/file.h"
#include "base/word.h"
#include "modules/fixed/value_names.h"

// The presence of a member, 0 when the defaults file does not name it.
enum {
    PRESENT = 1,
    PRESENT_AS_NUMBER = 0x80,
    PRESENT_AS_NAME = 0x100,
};

struct param_member {
    int slot; // within its instance
    const char *key;
    const param_names *names; // null_names when its values have none
    bool loaded = true;       // from the files
    bool queried = true;      // by its name, and dumped
};

// A member of the current file: which one is written, and whose presence decides that it is.
struct param_written {
    int slot;
    int if_present;
};

// Where forms of the model differ.
struct param_rules {
    bool clears_presence;     // start-up forgets who was present
    bool traces_unreadable;   // a file that cannot be read is traced
    bool named_values;        // files may hold names for numbers
    bool range_is_array;      // a range of another type with two elements is ignored
    bool set_needs_presence;  // setters refuse an absent member
    bool get_needs_presence;  // the current value of an absent member reads as -1
    bool page_needs_presence; // the dump leaves absent members out
    int number_bit;           // of the presence of a member that is exchanged as a number
};

constexpr param_rules first_form = {true, false, false, false, false, false, false, PRESENT};
constexpr param_rules second_form = {false, true, true, true, true, true, false, PRESENT_AS_NUMBER};

// A module whose members exist several times, in the files an object for each.
struct param_instances {
    const char *noun; // "video": the objects are "video0", "video1" ...
    int capacity;
    int stride; // slots from one instance to the next
    int *count; // in use; fixed after start-up
    const char *check_function;
    const char *page_noun;  // in the trace dump
    const char *page_break; // there, behind its title
};

// The key of an instance's object: the noun and the number.
struct instance_key {
    instance_key(const param_instances &instances, int instance);
    char text[32];
};

// Each value of every slot.
struct param_arrays {
    int *def, *min, *max, *init, *cur, *exist;
};
#define PARAM_ARRAYS(module)                                                                       \
    {                                                                                              \
        para_##module##_def, para_##module##_min, para_##module##_max, para_##module##_init,       \
            para_##module##_cur, para_##module##_exist                                             \
    }

struct param_table : param_arrays {
    const char *module; // as in its file names, "af" for "af_range.json"
    param_rules rules;

    int slots; // of each array

    const param_member *members; // in slot order
    int member_count;
    const param_written *written; // null: the members in slot order
    int written_count;
    const param_instances *instances; // null: the members stand at the top of the files

    change_stamp stamp;
    const int *save_delay_ms;

    const char *banner;        // of the trace dump
    const char *init_function; // as which start-up is traced
    const char *page_function; // as which the dump is traced
};

// Loads range, defaults and current file, in this order. Returns 0, or -1 when one of the first
// two is missing or not JSON.
int param_start(const param_table &table);

// The parts of start-up, for modules with an order of their own. A missing or broken file gives
// null, after the trace that its failure gets.
json_ptr param_load_home_file(const param_table &table, const char *suffix, const char *unreadable);
json_ptr param_load_current_file(const param_table &table);
void param_read_range(const param_table &table, int instance, const cJSON *object);
void param_read_defaults(const param_table &table, int instance, const cJSON *object);
// Into the values of one instance.
void param_read_values(const param_table &table, int *values, const cJSON *object);
// Takes the current values as those of start-up, and dumps the table.
void param_end_start(const param_table &table);

// How many of the objects "video0", "video1" ... the range file has, and traces it.
int param_count_instances(const param_instances &instances, const cJSON *range_root);

// Stores an accepted value and stamps the change. Returns 1, as setters do that tell of a change.
int param_change(const param_table &table, int slot, int value);

// The same, and tells the host: the hook gets the public setter that took the value, and its
// arguments. Returns 0.
template <typename hook, typename... setter_and_instance>
[[gnu::noinline]] int param_take(const param_table &table, int slot, int value, hook notify,
                                 setter_and_instance... setter)
{
    param_change(table, slot, value);
    if (notify != nullptr)
        notify(setter..., value);
    return 0;
}

// Sets a member as a request does: from the number or from the text, whichever form its default
// had. Returns whether the value changed.
bool param_set_as_requested(const param_table &table, int instance, const param_member &member,
                            int number, const char *text);

// The member of exactly that name, or null.
const param_member *param_find(const param_table &table, const char *name);

// Stores a member's value in one of the tables, and, where a place for it is given, the name of a
// named member's value, null if it is exchanged as a number. Returns the member's presence.
int param_get_member(const param_table &table, const int *values, int instance, const char *name,
                     int *value, const char **text);

// The answers to a query, new objects: every present member, or those among the item's names, with
// their values in one of the tables.
cJSON *param_answer_all(const param_table &table, const int *values, int instance);
cJSON *param_answer_listed(const param_table &table, const int *values, int instance,
                           const cJSON *item);

bool param_due(const param_table &table);

// Saves at once when the last change is that old. Returns 0.
int param_save_after(const param_table &table, int delay_ms);

// Writes the current file and clears the changed flag, whether or not the file opened. Returns what
// fflush returned; 0 when the file did not open.
int param_save(const param_table &table);

// Traces the current value, default and range of every member.
void param_page(const param_table &table);

inline bool is_named(const param_member &member)
{
    return member.names != &null_names;
}

inline int first_slot(const param_table &table, int instance)
{
    return table.instances != nullptr ? instance * table.instances->stride : 0;
}

inline int param_slot(const param_table &table, int instance, const param_member &member)
{
    return first_slot(table, instance) + member.slot;
}

// Whether a setter takes the value: it is within the slot's range and differs from the current one.
// Inlined into every setter, where the table is a constant: most calls change nothing, and cost
// little more than the comparisons (bench/accessors).
[[gnu::always_inline]] inline bool param_accepts(const param_table &table, int slot, int value)
{
    if (value < load_word(table.min[slot]) || value > load_word(table.max[slot]))
        return false;
    if (value == load_word(table.cur[slot]))
        return false; // restamping would let a client that repeats itself hold off the save
    return !table.rules.set_needs_presence || load_word(table.exist[slot]) != 0;
}

// The value, or -1 when the member is absent.
inline int value_if_present(const int *values, const int *exist, int slot)
{
    return load_word(exist[slot]) != 0 ? load_word(values[slot]) : -1;
}
