// Settings of a module, for commands that look at them and change them.
#pragma once

#include "description.h"
#include "outcome.h"

// A row of the module table with the descriptions of its members, values and all. Modules of the
// host's own are asked, which the store's thread alone may do.
class module_settings {
public:
    // The row of that name among those that are described; none for another name.
    module_settings(const char *name, const descriptions &texts);

    bool exists() const { return row >= 0; }
    bool is_complete() const { return members != nullptr; } // else memory ran out
    const para_module &module() const { return module_para_handle[row]; }

    // The description of a member; null for another name.
    const cJSON *find(const char *member) const;
    const cJSON *first() const;

    // The value of a member; null when there is none.
    const cJSON *current(const char *member) const;
    // Whether it is the value of the member of its name.
    bool is_in_force(const cJSON *value) const;

    // Whether the store holds the values, and not a module of the host's own.
    bool is_of_store() const;

private:
    int row;
    json_ptr members;
};

// Why a request would not bring the value into force; no reason when it would.
reason fault_of(const cJSON *member, const cJSON *value);

// Sets members as a set request does, or the command that sets the module. Returns false when
// memory ran out.
bool set_members(const para_module &row, const cJSON *values);

// "MODULE.MEMBER", cut behind a character.
struct setting_name {
    setting_name(const char *module, const char *member);
    char text[320];
};
