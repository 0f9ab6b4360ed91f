// The store under test, called and compared with the model.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "fuzz/model/device.h"

// The accessors of a module with fixed members, by member. Instances are counted but for af and
// audio.
int call_setter(const model_fixed &module, const model_device &device, int instance, int member,
                int value);
// Returns what the internal setter does; nothing for a module that has none.
std::optional<int> call_internal_setter(const model_fixed &module, const model_device &device,
                                        int instance, int member, int value);

// Counts the changes that the store tells, from its start.
void observe_changes();

inline const std::vector<std::string> odm_keys = {"version", "number", "text", "TEXT",
                                                  "isp0_style_def"};

// Compares every value, and what is known of each module.
void check_values(model_device &device);
// Compares the data folder, which is elsewhere while it is gone.
void check_files(const model_device &device);

std::string data_folder(const model_device &device);
