#include "server/web_names.h"

#include <cstring>

#include "base/json.h"
#include "base/trace.h"

cJSON *para_config = nullptr;

const cJSON *if_object(const cJSON *node)
{
    return cJSON_IsObject(node) ? node : nullptr;
}

// Stores an entry's text at that place, if it has one.
static void take_text(const cJSON *entry, int place, const char **text)
{
    const cJSON *const item = cJSON_GetArrayItem(entry, place);
    if (item != nullptr && text != nullptr)
        *text = cJSON_IsString(item) ? item->valuestring : nullptr;
}

const char *get_http_name(const char *module, const char *member, const char **type,
                          const char **modifier)
{
    const cJSON *const object = if_object(find_item(para_config, module));
    const cJSON *entry = nullptr;
    cJSON_ArrayForEach(entry, object)
    {
        if (!cJSON_IsArray(entry) || entry->child == nullptr || strcmp(entry->string, member) != 0)
            continue;
        const char *name = nullptr;
        take_text(entry, 0, &name);
        take_text(entry, 1, type);
        take_text(entry, 2, modifier);
        return name;
    }
    PARA_TRACE(PARA_INFO, "can not find %s.%s", module, member);
    return nullptr;
}

// The module object in which the last search by web name ended, or null.
static const cJSON *cursor;

static const cJSON *entry_with_web_name(const cJSON *module, const char *web_name)
{
    const cJSON *entry = nullptr;
    cJSON_ArrayForEach(entry, if_object(module))
    {
        const char *name = nullptr;
        if (cJSON_IsArray(entry))
            take_text(entry, 0, &name);
        if (name != nullptr && strcmp(name, web_name) == 0)
            return entry;
    }
    return nullptr;
}

void get_json_name(www_json_name *found, const char *web_name, const char **modifier, int next)
{
    *found = {nullptr, nullptr, nullptr};
    const cJSON *const first = para_config != nullptr ? para_config->child : nullptr;
    const cJSON *const following = cursor != nullptr ? cursor->next : nullptr;
    cursor = next == 0 ? first : following;
    if (cursor != nullptr && cursor->string != nullptr)
        PARA_TRACE(PARA_INFO, "search %s in %s", web_name, cursor->string);

    for (; cursor != nullptr; cursor = cursor->next) {
        const cJSON *const entry = entry_with_web_name(cursor, web_name);
        if (entry == nullptr ||
            cursor->string == nullptr) // a file that is a bare array has no keys
            continue;
        found->module = cursor->string;
        found->member = entry->string;
        take_text(entry, 1, &found->type);
        take_text(entry, 2, modifier);
        return;
    }
}
