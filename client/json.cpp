#include "client/json.h"

#include <charconv>

namespace {

std::string take_text(char *printed)
{
    std::string text = printed != nullptr ? printed : "";
    cJSON_free(printed);
    return text;
}

} // namespace

json_ptr parse_json(const std::string &text)
{
    return json_ptr(cJSON_ParseWithLength(text.data(), text.size()));
}

json_ptr parse_whole_json(const std::string &text)
{
    const char *end = nullptr;
    json_ptr tree(cJSON_ParseWithLengthOpts(text.data(), text.size(), &end, 0));
    if (!tree || text.find_first_not_of(" \t\r\n", static_cast<size_t>(end - text.data())) !=
                     std::string::npos)
        return nullptr;
    return tree;
}

std::string print_line(const cJSON *node)
{
    return take_text(cJSON_PrintUnformatted(node));
}

std::string print_pretty(const cJSON *node)
{
    return take_text(cJSON_Print(node));
}

std::string value_text(const cJSON *node)
{
    return cJSON_IsString(node) ? string_of(node) : print_line(node);
}

const cJSON *member_of(const cJSON *object, const char *name)
{
    return cJSON_IsObject(object) ? cJSON_GetObjectItemCaseSensitive(object, name) : nullptr;
}

cJSON *object_in(cJSON *parent, const std::string &key)
{
    cJSON *const known = cJSON_GetObjectItemCaseSensitive(parent, key.c_str());
    return known != nullptr ? known : cJSON_AddObjectToObject(parent, key.c_str());
}

std::string string_of(const cJSON *node)
{
    return cJSON_IsString(node) && node->valuestring != nullptr ? node->valuestring : "";
}

std::optional<int> parse_int(const std::string &text)
{
    int value = 0;
    const char *const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stopped != end)
        return std::nullopt;
    return value;
}
