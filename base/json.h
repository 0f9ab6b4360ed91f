// Heap objects of the JSON library and of the C library, freed at the end of a block.
#pragma once

#include <cjson/cJSON.h>

#include <cstdlib>
#include <memory>

struct json_delete {
    void operator()(cJSON *node) const { cJSON_Delete(node); }
};
using json_ptr = std::unique_ptr<cJSON, json_delete>;

// Text that cJSON printed: its own allocator made it.
struct printed_delete {
    void operator()(char *text) const { cJSON_free(text); }
};
using printed_ptr = std::unique_ptr<char, printed_delete>;

struct text_delete {
    void operator()(char *text) const { free(text); }
};
using text_ptr = std::unique_ptr<char, text_delete>;
