// What the modules' get_opt functions share: the list of member names in a request.
#pragma once

#include <cjson/cJSON.h>

#include "base/text.h"

// Whether the list asks for every member: one name that begins with "all".
inline bool asks_for_all(const cJSON *item)
{
    if (cJSON_GetArraySize(item) != 1)
        return false;
    const char *const name = cJSON_GetArrayItem(item, 0)->valuestring;
    return name != nullptr && begins_with(name, "all");
}
