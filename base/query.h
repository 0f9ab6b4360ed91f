// How a get request names the members that it wants; shared by the modules' get_opt functions.
#pragma once

#include <cjson/cJSON.h>

#include <cstring>

#include "base/text.h"

// Whether the list asks for every member: one name that begins with "all".
inline bool asks_for_all(const cJSON *item)
{
    if (cJSON_GetArraySize(item) != 1)
        return false;
    const char *const name = cJSON_GetArrayItem(item, 0)->valuestring;
    return name != nullptr && begins_with(name, "all");
}

// Whether the request's own key asks for defaults.
inline bool asks_for_defaults(const cJSON *item)
{
    return item->string != nullptr && strstr(item->string, "def") != nullptr;
}
