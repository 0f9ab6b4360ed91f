// The settings of a device, as its files tell.
#pragma once

#include <deque>
#include <list>
#include <string>
#include <unordered_map>
#include <vector>

#include "client/files/member_tables.h"

enum class range_state { none, broken, usable };

struct setting_in_files {
    std::string name;
    value_name name_of = nullptr;
    bool is_asked = true;

    range_state range = range_state::none;
    int min = 0, max = 0;
    int range_line = 0;
    std::vector<std::string> texts; // of an enum member; min and max are then unused

    bool is_present = false; // it has a default
    int default_line = 0;
    bool has_text = false; // which is a name or a text

    // A value, or the range, for people.
    std::string shown(int value) const;
    std::string limits() const;
};

enum class module_kind {
    numbers, // fixed members, numbers in files
    named,   // fixed members, some of which have names in files
    pattern, // members from a range file
    conf,    // members from a conf file, all of them texts
};

class module_in_files {
public:
    module_in_files(const std::string &module, module_kind its_kind) : name(module), kind(its_kind)
    {
    }

    setting_in_files &add(const setting_in_files &setting);
    // But for the case of the letters; null for another name.
    setting_in_files *find(const std::string &setting);
    setting_in_files &find_or_add(const std::string &setting);

    const std::deque<setting_in_files> &settings() const { return all; }
    std::vector<std::string> names() const;

    const std::string name; // as requests and descriptions have it
    const module_kind kind;
    bool is_known = true; // else a file of it is broken, and its settings are not all here

private:
    std::deque<setting_in_files> all; // stay where they are
    std::unordered_map<std::string, setting_in_files *> by_key;
};

class device_model {
public:
    // A module with fixed members, none of them with range or default so far.
    template <size_t count>
    module_in_files &add(const std::string &name, module_kind kind,
                         const table_member (&table)[count])
    {
        module_in_files &added = add(name, kind);
        for (const table_member &member : table)
            added.add(
                {.name = member.name, .name_of = member.name_of, .is_asked = member.is_asked});
        return added;
    }
    module_in_files &add(const std::string &name, module_kind kind);

    module_in_files *find(const std::string &module); // by its exact name
    std::vector<std::string> names() const;

    // The module that a request with that key reaches, as a longer name may stand for a shorter
    // one; its name alone is also that of a module without files. Empty and null for none.
    std::string row_of(const std::string &key) const;
    module_in_files *find_for_request(const std::string &key) { return find(row_of(key)); }

    std::list<module_in_files> modules;

    // By the web-name file.
    std::vector<std::string> json_modules, conf_modules;
    bool has_json_list = false, has_conf_list = false; // else these are the usual ones

    std::vector<std::string> styles;
    bool has_legacy_misc = false;
};
