// What the data folder holds after each write, whole or failed.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

enum class text_form { json, json_object, conf };

// The folder is there or gone, and takes files up to a size.
class model_disk {
public:
    bool guard = false;
    bool gone = false;
    std::optional<size_t> limit;
    bool has_persist_folder = false;
    std::map<std::string, std::string> files; // by their names in the folder

    // As a save writes: returns whether everything is written.
    bool write(const std::string &name, const std::string &bytes);

    // The bytes of a file, if it is there.
    std::optional<std::string> look_for(const std::string &name);

    // What a start reads, and the flags of the module's status that it leaves.
    std::optional<std::string> recover(const std::string &name, text_form form, unsigned &flags);

    // Files whose folder was not there when last looked for: with the guard on, what is there now
    // stays.
    std::set<std::string> missed;

    unsigned opened = 0; // how many files were opened to write

private:
    bool can_open(const std::string &name) const;
    bool fits(const std::string &bytes) const { return !limit || bytes.size() <= *limit; }
    bool write_in_place(const std::string &name, const std::string &bytes);
};
