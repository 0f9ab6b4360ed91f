// A device with a module of each kind, and one number in each of them that can be set.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "support/store.h"

struct module_kind {
    std::string name; // of the kind, in names of tests
    const char *row;
    const char *file;        // in the data folder
    const char *text;        // of the file that holds the number @ alone
    int (*get)();            // the number in force
    void (*set)(int number); // by the host
    const char *def;         // the file in the home folder without which it cannot be loaded
};
inline constexpr int default_number = 40; // of each kind, but -1 in the ODM store

extern const std::vector<module_kind> all_kinds;
const module_kind &kind_named(const std::string &name);

inline std::ostream &operator<<(std::ostream &stream, const module_kind &kind)
{
    return stream << kind.name;
}
inline std::string name_of_kind(const testing::TestParamInfo<module_kind> &kind)
{
    return kind.param.name;
}

class EveryKind : public Store {
protected:
    // Conf files are written, and the guard is off.
    EveryKind();

    // "misc" gets its files of the earlier generation.
    void use_legacy_misc();

    // The kind's file text with this number, an apostrophe for a quote.
    static std::string text_with(const module_kind &kind, int number);

    // In a process of its own, which must end by itself and without a stop: this one never starts a
    // store, so that it can look at what others left.
    static void in_child(const std::function<void()> &steps);

    std::string path_of(const module_kind &kind, const std::string &suffix = "") const
    {
        return data + "/" + kind.file + suffix;
    }
};
