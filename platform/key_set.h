// Key sets: a heap block that C callers free with free(), so it contains no pointers: the number of
// keys as an int, then their zero-terminated texts.
#pragma once

#include <string>
#include <vector>

// The keys of a block from config_keys_format(); none for null.
std::vector<std::string> keys_of(const void *key_set);
