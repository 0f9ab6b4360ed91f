// The modules with fixed members: af, audio, and two video streams.
#pragma once

#include <cjson/cJSON.h>

#include <optional>
#include <string>
#include <vector>

#include "fuzz/model/module.h"

using name_list = std::vector<std::string>;

// A member, as the device's files have it.
struct fixed_traits {
    const char *name;
    int min = 0, max = 0;
    std::optional<int> def = std::nullopt; // absent without one
    const name_list *names = nullptr;
    bool default_as_name = false;
};

// Where the modules differ.
struct fixed_rules {
    const char *name;             // of the files
    bool lenient = false;         // absent members have a value, and can be set
    bool numbered = false;        // requests and files have an object for each instance
    bool keys_by_prefix = false;  // a request's key may be longer than the member's
    const char *moved = nullptr;  // this member stands in the files
    const char *before = nullptr; // before that one
    const char *second_moved = nullptr, *second_before = nullptr, *second_if = nullptr;
};

struct fixed_value {
    int def = 0, min = 0, max = 0, init = 0, cur = 0;
    bool present = false, as_name = false;
};

class model_fixed : public model_module {
public:
    model_fixed(model_disk &disk, const long long &clock, const fixed_rules &with,
                std::vector<std::vector<fixed_traits>> of);

    void start() override;
    bool save() override;
    void set_delay(int milliseconds) { delay = milliseconds; }

    // What the files of the home folder hold.
    std::string range_file() const;
    std::string defaults_file() const;

    int instances() const { return static_cast<int>(all_traits.size()); }
    const std::vector<fixed_traits> &members(int instance) const
    {
        return all_traits[at(instance)];
    }
    const fixed_value &value(int instance, int member) const
    {
        return values[at(instance)][at(member)];
    }
    // As the getters of start-up and current values answer.
    int answered(int instance, int member, int value) const;

    // A setter. Returns whether the value changed.
    bool set(int instance, int member, int value);
    // A member of a set request.
    bool request(int instance, const std::string &key, const cJSON *value);

    // Answers to get requests.
    cJSON *answer_all(int instance) const;
    cJSON *answer_listed(int instance, const std::vector<std::string> &names) const;

private:
    std::string file_of(void (*add_member)(cJSON *, const fixed_traits &)) const;
    static size_t at(int index) { return static_cast<size_t>(index); }
    std::vector<int> file_order() const;
    int index_of(const char *name) const;
    bool is_written(int instance, int member) const;
    void load(const cJSON *root);
    void load_instance(int instance, const cJSON *object);

    const fixed_rules rules;
    const std::vector<std::vector<fixed_traits>> all_traits; // by instance
    std::vector<std::vector<fixed_value>> values;
};
