// JSON trees and texts.
#pragma once

#include <cjson/cJSON.h>

#include <memory>
#include <string>

struct tree_delete {
    void operator()(cJSON *node) const { cJSON_Delete(node); }
};
using tree_ptr = std::unique_ptr<cJSON, tree_delete>;

// Null for what is no JSON.
inline tree_ptr parse_json(const std::string &text)
{
    return tree_ptr(cJSON_Parse(text.c_str()));
}

// Empty for null.
inline std::string print_json(const cJSON *tree)
{
    char *const text = tree != nullptr ? cJSON_Print(tree) : nullptr;
    std::string result = text != nullptr ? text : "";
    cJSON_free(text);
    return result;
}
