// A file of a device, and the faults that are found in it.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "client/files/finding.h"

struct device_folder {
    std::string path;
    std::vector<finding> &found;
    std::set<std::string> asked_for{}; // names of files
};

class checked_file {
public:
    // Reads the file. That it is missing is no fault, that it cannot be
    // read is one.
    checked_file(device_folder &folder, const std::string &name);

    bool exists() const { return is_there; }
    const std::string &text() const { return bytes; }

    void fault(int line, const std::string &member, const std::string &reason);
    void warn(int line, const std::string &member, const std::string &reason);

protected:
    bool is_read = false;

private:
    void read();

    std::string path;
    std::vector<finding> &found;
    std::string bytes;
    bool is_there = false;
};

// The store takes the keys "AF" and "af" for the same.
std::string in_small_letters(std::string text);

// "; did you mean "gop"?", or nothing.
std::string hint(const std::string &word, const std::vector<std::string> &names);

std::string in_quotes(const std::string &text);
