// Keys and values in the order in which they came, and their text.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

class conf_values {
public:
    // Returns whether this changes anything.
    bool set(const std::string &key, const std::string &value);
    std::optional<std::string> get(const std::string &key) const;
    // As functions with a buffer of that size find it.
    std::optional<std::string> get_short(const std::string &key, size_t size = 256) const;

    // What a file of that text adds and overwrites.
    void read(const std::string &text);
    std::string text() const;

    const std::vector<std::pair<std::string, std::string>> &entries() const { return all; }

private:
    std::vector<std::pair<std::string, std::string>> all;
};
