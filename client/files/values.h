// Values in files against the ranges of their settings.
#pragma once

#include <optional>

#include "client/files/device_model.h"
#include "client/files/json_document.h"

// The value of a number in a file, or of a name; nothing with a fault. Of af and the image
// processor truth values are numbers.
std::optional<int> value_in(json_document &file, const cJSON *item, const std::string &path,
                            const setting_in_files &about, module_kind kind);

void check_limits(json_document &file, const cJSON *item, const std::string &path, int value,
                  const setting_in_files &about);

// Both of them.
void check_value(json_document &file, const cJSON *item, const std::string &path,
                 const setting_in_files &about, module_kind kind);

// A value as a text, of a member of a pattern module; it stands on that line.
void check_text(checked_file &file, int line, const std::string &path, const std::string &text,
                const setting_in_files &about);

// A range of two values.
void read_range(json_document &file, const cJSON *item, const std::string &path,
                setting_in_files &into, module_kind kind);

// "no member of af; did you mean ...": for keys that no module reads.
std::string unknown_member(const module_in_files &module, const std::string &name);

// Keys of the module that the file has. The prefix is that of the paths.
void read_ranges(json_document &file, const cJSON *object, const std::string &prefix,
                 module_in_files &module);
void read_defaults(json_document &file, const cJSON *object, const std::string &prefix,
                   module_in_files &module);
void check_values(json_document &file, const cJSON *object, const std::string &prefix,
                  module_in_files &module);

// Of defaults without a range, and ranges without a default.
void warn_of_unpaired(checked_file &ranges, const std::string &range_prefix, checked_file &defaults,
                      const std::string &default_prefix, const module_in_files &module);

// Whether a module has both of its files. One alone is a fault; neither means that the device does
// not have the module, unless it is listed.
bool has_files(checked_file &ranges, checked_file &defaults, const std::string &module,
               bool is_listed = false);
