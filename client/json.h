// JSON trees: ownership, parsing and printing.
#pragma once

#include <cjson/cJSON.h>

#include <memory>
#include <optional>
#include <string>

struct json_delete {
    void operator()(cJSON *node) const { cJSON_Delete(node); }
};
using json_ptr = std::unique_ptr<cJSON, json_delete>;

// The tree, or null when the text is not JSON.
json_ptr parse_json(const std::string &text);

// As parse_json(); null, too, when anything but blanks follows.
json_ptr parse_whole_json(const std::string &text);

// As one line, or with line breaks and tabs.
std::string print_line(const cJSON *node);
std::string print_pretty(const cJSON *node);

// A value as a user writes it: a string without quotes, anything else as JSON; empty for null.
std::string value_text(const cJSON *node);

// An object's member by its exact name, or null. The object may be null or of another type.
const cJSON *member_of(const cJSON *object, const char *name);

// The object under a key, made when there is none yet.
cJSON *object_in(cJSON *parent, const std::string &key);

// The text of a string node; empty for null and for any other type.
std::string string_of(const cJSON *node);

// A decimal 32-bit integer without anything before or after it.
std::optional<int> parse_int(const std::string &text);
