// Suggestions for misspelt names.
#pragma once

#include <string>
#include <vector>

// The most similar name, or an empty text if none is similar enough.
std::string most_similar(const std::string &word, const std::vector<std::string> &names);
