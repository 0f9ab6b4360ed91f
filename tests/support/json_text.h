// JSON in tests: an apostrophe stands for a quote.
#pragma once

#include <cjson/cJSON.h>

#include <memory>
#include <string>

struct json_delete {
    void operator()(cJSON *node) const { cJSON_Delete(node); }
};
using json = std::unique_ptr<cJSON, json_delete>;

// Parses a text that must be JSON; an apostrophe stands for a quote.
json parse(std::string text);

// The tree without blanks; an apostrophe stands for a quote.
std::string compact(const cJSON *node);

// A text with another character in place of each of one kind.
std::string swap_quotes(std::string text, char from, char to);
