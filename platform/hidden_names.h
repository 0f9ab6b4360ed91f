// Names of settings whose values stand in no trace.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Of the names, all in small letters.
class hidden_names {
public:
    void add(std::string_view name);

    // The message up to the end of the first such name in it, and "..." for the rest; whole, if
    // there is none.
    std::string shown(std::string_view message) const;

private:
    std::vector<std::string> names;
};
