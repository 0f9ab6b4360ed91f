// Trees as text.
#include <cmath>
#include <cstring>

#include "base/json_writer.h"

// Its forms of fractions and of large numbers are cJSON's own business.
bool json_writer::add_printed(const cJSON *number)
{
    if (!reserve(longest_number))
        return false;
    // Printed without its place in a tree, and not changed by it.
    auto *const item = const_cast<cJSON *>(number);
    if (cJSON_PrintPreallocated(item, space.bytes + used, longest_number, 0) == 0)
        return add_nothing();
    used += strlen(space.bytes + used);
    return true;
}

static bool is_integer(const cJSON *number)
{
    const double value = number->valuedouble;
    return value == static_cast<double>(number->valueint) && (value != 0 || !std::signbit(value));
}

bool json_writer::add_array(const cJSON *array)
{
    if (!reserve(1))
        return false;
    add('[');
    depth++;
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, array)
    {
        if (!add_value(element) || !reserve(2))
            return false;
        if (element->next != nullptr) {
            add(',');
            add(' ');
        }
    }
    depth--;
    if (!reserve(1))
        return false;
    add(']');
    return true;
}

bool json_writer::add_object(const cJSON *object)
{
    open_object();
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, object)
    {
        if (!begin(member->string) || !add_value(member))
            return false;
    }
    close();
    return is_complete;
}

bool json_writer::add_bytes(const char *bytes)
{
    const size_t length = strlen(bytes);
    if (!reserve(length))
        return false;
    memcpy(space.bytes + used, bytes, length);
    used += length;
    return true;
}

// For what is no value. The rest is written all the same, and the text not given.
bool json_writer::add_nothing()
{
    is_printable = false;
    return is_complete;
}

bool json_writer::add_value(const cJSON *value)
{
    constexpr int type_bits = 0xff;
    switch (value->type & type_bits) {
    case cJSON_False:
        return add_bytes("false");
    case cJSON_True:
        return add_bytes("true");
    case cJSON_NULL:
        return add_bytes("null");
    case cJSON_Number:
        return is_integer(value) ? add_number(value->valueint) : add_printed(value);
    case cJSON_Raw:
        return value->valuestring != nullptr ? add_bytes(value->valuestring) : add_nothing();
    case cJSON_String:
        return add_quoted(value->valuestring);
    case cJSON_Array:
        return add_array(value);
    case cJSON_Object:
        return add_object(value);
    default:
        return add_nothing();
    }
}

void json_writer::tree(const char *key, json_ptr value)
{
    is_complete = value != nullptr && begin(key) && add_value(value.get());
}

void json_writer::document(const cJSON *value)
{
    is_complete = is_complete && value != nullptr && add_value(value);
}
