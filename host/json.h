// Ownership of JSON trees.
#pragma once

#include <cjson/cJSON.h>

#include <memory>

struct json_delete {
    void operator()(cJSON *node) const { cJSON_Delete(node); }
};
using json_ptr = std::unique_ptr<cJSON, json_delete>;
