// Key sets: one heap block that C callers pass around and free, so its layout holds no pointers:
// the number of keys as an int, then their texts, each with its zero.
#pragma once

#include <string>
#include <vector>

// The keys of a block that config_keys_format() made; none for a null one.
std::vector<std::string> keys_of(const void *key_set);
