// What the device tells of its settings: the file "descriptions.json" in the home folder.
#pragma once

#include "base/json.h"

class descriptions {
public:
    // Reads the file, which need not be there.
    descriptions();

    // Adds unit, label, help, names of numbers and "secret" to a member's description. Of a secret
    // one the values are taken out, unless they are to be shown. Returns false when memory ran out.
    bool complete(const char *module, const char *name, cJSON *member, bool show_secrets) const;

    // Where the file is there and cannot be used, everything that is or holds a text may be a
    // secret.
    bool is_secret(const char *module, const char *member, bool may_hold_text) const;

    // Why the file cannot be used, such as "cannot be read"; null: it can, or is not there.
    const char *fault() const { return problem; }

    // Memory ran out: there is nothing to be told.
    bool is_starved() const { return starved; }

private:
    const cJSON *find(const char *module, const char *member) const;

    json_ptr modules;
    const char *problem = nullptr;
    bool starved = false;
};

// Of a member's description.
bool is_kind(const cJSON *member, const char *kind);
bool is_read_only(const cJSON *member);

// What of a description is a value: "default", "start" and "current".
bool is_value(const char *key);
void drop_values(cJSON *member);
void drop_texts(cJSON *member); // "unit", "label" and "help"
void drop_names(cJSON *member);
