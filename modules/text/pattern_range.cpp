// What the range files of pattern modules say of their members.
#include <cstring>

#include "modules/text/pattern_module.h"

const char *para_get_item_str(const cJSON *node)
{
    return cJSON_IsString(node) ? node->valuestring : nullptr;
}

int peek_array_enum_type(const cJSON *array)
{
    const cJSON *const first = cJSON_GetArrayItem(array, 0);
    if (first == nullptr) {
        PARA_TRACE(PARA_ERROR, "error cJSON null");
        return 0;
    }
    if (cJSON_IsString(first))
        return PARA_KIND_ENUM;
    if (cJSON_IsNumber(first))
        return PARA_KIND_NUMBER;
    PARA_TRACE(PARA_ERROR, "error type cJSON_Invalid");
    return 0;
}

const cJSON *range_of(const text_module &module, const char *member)
{
    return find_item(module.range, member);
}

int kind_of(const text_module &module, const char *member)
{
    return peek_array_enum_type(range_of(module, member));
}

int position_of(const cJSON *range, const char *text)
{
    int position = 0;
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, range)
    {
        const char *const known = para_get_item_str(element);
        if (text != nullptr && known != nullptr && strcmp(known, text) == 0)
            return position;
        position++;
    }
    return -1;
}

int enum_position(const text_module &module, const char *member, const char *text)
{
    return kind_of(module, member) == PARA_KIND_ENUM ? position_of(range_of(module, member), text)
                                                     : -1;
}

int peek_json_enum_type(const char *module, const char *member)
{
    const text_module *const found = find_module(patterns, module);
    return found != nullptr ? kind_of(*found, member) : -1;
}

const char *para_get_json_emum_str(const char *module, const char *member, int index)
{
    const text_module *const found = find_module(patterns, module);
    if (found == nullptr)
        return nullptr;
    return para_get_item_str(cJSON_GetArrayItem(range_of(*found, member), index));
}

int para_get_json_enum_index(const char *module, const char *member, const char *text)
{
    const text_module *const found = find_module(patterns, module);
    if (found == nullptr || member == nullptr || text == nullptr)
        return -1;
    return enum_position(*found, member, text);
}

int para_get_json_item_number(const char *module, const cJSON *element, const char *member)
{
    if (cJSON_IsString(element))
        return para_get_json_enum_index(module, member, element->valuestring);
    return cJSON_IsNumber(element) ? element->valueint : -1;
}

int para_get_json_min(const char *module, const char *member)
{
    const text_module *const found = find_module(patterns, module);
    if (found == nullptr)
        return -1;
    return para_get_json_item_number(module, cJSON_GetArrayItem(range_of(*found, member), 0),
                                     member);
}

int para_get_json_max(const char *module, const char *member)
{
    const text_module *const found = find_module(patterns, module);
    if (found == nullptr)
        return -1;
    const cJSON *const range = range_of(*found, member);
    const int last = cJSON_GetArraySize(range) - 1;
    return para_get_json_item_number(module, cJSON_GetArrayItem(range, last), member);
}
