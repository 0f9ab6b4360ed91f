// A conf file of a device, a "key = value" on each line.
#pragma once

#include <unordered_map>

#include "client/files/checked_file.h"

struct conf_line {
    std::string key, value;
    int line;
};

class conf_document : public checked_file {
public:
    conf_document(device_folder &folder, const std::string &name);

    // Each key once, with its last value.
    const std::vector<conf_line> &lines() const { return entries; }

private:
    void take(const std::string &line, int number);
    void add(const conf_line &entry);

    std::vector<conf_line> entries;
    std::unordered_map<std::string, size_t> places; // of the keys among the entries
};

// Of any text of a module: longer ones cannot be read.
constexpr size_t most_text_bytes = 255;
