// Heap objects of the JSON library and of the C library, freed at the end of a block.
#pragma once

#include <cjson/cJSON.h>

#include <cstdlib>
#include <memory>

#include "base/text.h"

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

// --- Reading trees ---

// The first member of that key, but for the case of its letters, or null: cJSON_GetObjectItem()
// without a call for each letter of the members before it.
inline cJSON *find_item(cJSON *object, const char *key)
{
    cJSON *member = nullptr;
    cJSON_ArrayForEach(member, object)
    {
        if (key != nullptr && member->string != nullptr &&
            is_same_but_for_case(member->string, key))
            return member;
    }
    return nullptr;
}

inline const cJSON *find_item(const cJSON *object, const char *key)
{
    return find_item(const_cast<cJSON *>(object), key);
}

// --- Building trees ---

// These add an item and return whether it was added: false when memory ran out, also earlier, so
// that there is no item or nothing to add it to. An item that is not taken is freed. A tree to
// which something could not be added is incomplete, and its builder drops it.

inline bool add_to_object(cJSON *object, const char *key, json_ptr item)
{
    if (cJSON_AddItemToObject(object, key, item.get()) == 0)
        return false;
    (void)item.release(); // the object's now
    return true;
}

inline bool add_to_array(cJSON *array, json_ptr item)
{
    if (cJSON_AddItemToArray(array, item.get()) == 0)
        return false;
    (void)item.release();
    return true;
}

inline bool add_text(cJSON *object, const char *key, const char *text)
{
    return cJSON_AddStringToObject(object, key, text) != nullptr;
}

inline bool add_number(cJSON *object, const char *key, double number)
{
    return cJSON_AddNumberToObject(object, key, number) != nullptr;
}
