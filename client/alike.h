// Comparison of answers.
#pragma once

#include <string>

// Whether two answers are the same: as JSON without identifiers and times, in any order of members;
// else byte for byte.
bool are_alike(const std::string &one, const std::string &other);
