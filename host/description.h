// What the command describe tells of the members of a module; docs/message-protocol.md has the
// form.
#pragma once

#include <cjson/cJSON.h>

#include <string>
#include <vector>

#include "request.h"

// Adds a member to an object of members. Values are given as the store exchanges them.
cJSON *add_number_member(cJSON *members, const char *name, int min, int max);
cJSON *add_enum_member(cJSON *members, const char *name, const std::vector<std::string> &names);
cJSON *add_text_member(cJSON *members, const char *name);

// Adds the values of a member; one that is null, such as a number without a name, is left out.
// Takes both over.
void add_values(cJSON *member, cJSON *default_value, cJSON *current);

// Marks a member that no set request changes.
void mark_read_only(cJSON *member);

// The members that the camera has, by the name of the module's row. Null: the row is not in use.
json_ptr describe_af(const char *module);
json_ptr describe_audio(const char *module);
json_ptr describe_video(const char *module);
json_ptr describe_isp(const char *module);
json_ptr describe_json_module(const char *module);
json_ptr describe_conf_module(const char *module);
