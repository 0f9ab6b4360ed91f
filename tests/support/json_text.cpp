#include "support/json_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

json parse(std::string text)
{
    json tree(cJSON_Parse(swap_quotes(std::move(text), '\'', '"').c_str()));
    EXPECT_NE(tree, nullptr) << "the test's own text is not JSON";
    return tree;
}

std::string compact(const cJSON *node)
{
    char *const text = cJSON_PrintUnformatted(node);
    std::string result = text != nullptr ? text : "";
    cJSON_free(text);
    return swap_quotes(std::move(result), '"', '\'');
}

std::string swap_quotes(std::string text, char from, char to)
{
    std::replace(text.begin(), text.end(), from, to);
    return text;
}
