// Builds the reply of the command "describe", whose format is in docs/message-protocol.md.
#pragma once

#include <cjson/cJSON.h>

#include <string>
#include <vector>

#include "request.h"

// Each adds a member of one kind to the object of members and returns it.
cJSON *add_number_member(cJSON *members, const char *name, int min, int max);
cJSON *add_enum_member(cJSON *members, const char *name, const std::vector<std::string> &names);
cJSON *add_text_member(cJSON *members, const char *name);

// Adds a member's values and takes ownership of both. A null value, such as a number that has no
// name, is omitted.
void add_values(cJSON *member, cJSON *default_value, cJSON *current);

// Marks a member that set requests cannot change.
void mark_read_only(cJSON *member);

// The present members of a module, given the name of its row. Null when the device does not use the
// row, such as "video3" with three streams.
json_ptr describe_af(const char *module);
json_ptr describe_audio(const char *module);
json_ptr describe_video(const char *module);
json_ptr describe_isp(const char *module);
json_ptr describe_json_module(const char *module);
json_ptr describe_conf_module(const char *module);
