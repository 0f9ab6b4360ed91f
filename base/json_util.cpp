#include "camparam/json_util.h"

#include <cstdint>
#include <cstdlib>

#include "base/json.h"
#include "base/trace.h"
#include "camparam/platform.h"

// Prints the tree also where the trace is dropped.
static void trace_tree(const trace_site &site, const cJSON *node, const char *tag,
                       const void *caller)
{
    const auto address = static_cast<unsigned>(reinterpret_cast<uintptr_t>(caller));
    if (node == nullptr) {
        PARA_TRACE_AT(site, PARA_INFO, "ERROR : json null,return:0x%x", address);
        return;
    }

    const printed_ptr text(cJSON_Print(node));
    const auto type = static_cast<unsigned>(node->type);
    if (!text)
        PARA_TRACE_AT(site, PARA_INFO, "ERROR : json format,return:0x%x", address);
    else if (tag != nullptr)
        PARA_TRACE_AT(site, PARA_INFO, "dbg_msg:%s type:0x%x,%s", tag, type, text.get());
    else
        PARA_TRACE_AT(site, PARA_INFO, "type:0x%x,%s", type, text.get());
}

void cJSON_Print_safe(const cJSON *node)
{
    trace_tree(PARA_HERE, node, nullptr, __builtin_return_address(0));
}

void cJSON_Print2_safe(const cJSON *node, const char *tag)
{
    trace_tree(PARA_HERE, node, tag, __builtin_return_address(0));
}

int json_object_get_int(const cJSON *node)
{
    return cJSON_IsNumber(node) ? node->valueint : -1;
}

char *json_object_get_string(const cJSON *node)
{
    if (node == nullptr) {
        PARA_TRACE(PARA_INFO, "null");
        return nullptr;
    }
    return cJSON_IsString(node) ? node->valuestring : nullptr;
}

// The number member of that key, or null.
static const cJSON *number_member(const cJSON *object, const char *key)
{
    const cJSON *const member = cJSON_GetObjectItem(object, key);
    return cJSON_IsNumber(member) ? member : nullptr;
}

int json_object_load_number(const cJSON *object, const char *key, int *value)
{
    const cJSON *const member = number_member(object, key);
    if (member == nullptr)
        return -1;
    *value = member->valueint;
    return 0;
}

int json_object_load_double(const cJSON *object, const char *key, double *value)
{
    const cJSON *const member = number_member(object, key);
    if (member == nullptr)
        return -1;
    *value = member->valuedouble;
    return 0;
}

int json_object_load_u8_array(const cJSON *object, const char *key, unsigned char *values,
                              int capacity)
{
    if (object == nullptr)
        return 0; // the other loaders answer -1 here (LoadU8Array.NullObjectAnswersZero)

    const cJSON *const member = cJSON_GetObjectItem(object, key);
    if (!cJSON_IsArray(member))
        return -1;

    int count = 0;
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, member)
    {
        values[count++] = static_cast<unsigned char>(element->valueint);
        if (count >= capacity) // after the store (LoadU8Array.StoresOneElementWithoutCapacity)
            break;
    }
    return count;
}

int json_object_load_string(const cJSON *object, const char *key, char **slot,
                            const char *default_text)
{
    const cJSON *const member = cJSON_GetObjectItem(object, key);
    const char *const loaded = member != nullptr ? member->valuestring : default_text;
    if (member == nullptr && *slot != nullptr)
        return 0;

    char *const copy = lib_strdup(loaded);
    if (copy == nullptr && loaded != nullptr)
        return -1;
    free(*slot);
    *slot = copy;
    return 0;
}
