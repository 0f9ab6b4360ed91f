// Help with misspelt names.
#pragma once

#include <string>
#include <vector>

// The name that a misspelt word most likely stands for; empty when none is similar.
std::string most_similar(const std::string &word, const std::vector<std::string> &names);
