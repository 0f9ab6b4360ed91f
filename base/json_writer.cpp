#include "base/json_writer.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

constexpr size_t least_size = 512;
constexpr size_t longest_number = 32; // with room for what cJSON demands beyond the digits

bool json_writer::grow(size_t more)
{
    const size_t size = std::max({2 * space.size, used + more, least_size});
    auto *const moved = static_cast<char *>(is_complete ? realloc(space.bytes, size) : nullptr);
    if (moved == nullptr)
        return is_complete = false;
    space = {moved, size};
    return true;
}

static bool is_plain(char byte)
{
    return static_cast<unsigned char>(byte) >= ' ' && byte != '"' && byte != '\\';
}

// The letter behind the backslash; 0 for a character that is written by its number.
static char escape_letter(char byte)
{
    switch (byte) {
    case '"':
    case '\\':
        return byte;
    case '\b':
        return 'b';
    case '\f':
        return 'f';
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    case '\t':
        return 't';
    default:
        return '\0';
    }
}

static char *write_escaped(char *to, char byte)
{
    constexpr char digits[] = "0123456789abcdef";
    *to++ = '\\';
    const char letter = escape_letter(byte);
    if (letter != '\0') {
        *to++ = letter;
        return to;
    }
    memcpy(to, "u00", 3);
    to[3] = digits[byte >> 4];
    to[4] = digits[byte & 15];
    return to + 5;
}

static char *write_quoted(char *to, const char *text)
{
    *to++ = '"';
    for (; *text != '\0'; text++) {
        if (is_plain(*text))
            *to++ = *text;
        else
            to = write_escaped(to, *text);
    }
    *to++ = '"';
    return to;
}

// The most that write_quoted() writes.
static size_t quoted_size(const char *text)
{
    constexpr size_t longest_escape = 6;
    return longest_escape * strlen(text) + 2;
}

static const char *or_empty(const char *text)
{
    return text != nullptr ? text : "";
}

static char *write_tabs(char *to, size_t count)
{
    while (count-- > 0)
        *to++ = '\t';
    return to;
}

bool json_writer::add_quoted(const char *text)
{
    const char *const from = or_empty(text);
    if (!reserve(quoted_size(from)))
        return false;
    end_at(write_quoted(end(), from));
    return true;
}

// What stands before a value: nothing before the outermost one, else its key in a line of its own.
bool json_writer::begin(const char *key)
{
    if (depth == 0)
        return is_complete;
    const char *const name = or_empty(key);
    if (!reserve(quoted_size(name) + depth + 4))
        return false;
    char *to = end();
    if (!first)
        *to++ = ',';
    *to++ = '\n';
    to = write_quoted(write_tabs(to, depth), name);
    *to++ = ':';
    *to++ = '\t';
    end_at(to);
    first = false;
    return true;
}

static char *write_number(char *to, int value)
{
    char digits[longest_number];
    char *const last = digits + sizeof digits;
    char *first = last;
    auto rest = static_cast<unsigned>(value);
    if (value < 0) {
        *to++ = '-';
        rest = 0 - rest;
    }
    do {
        *--first = static_cast<char>('0' + rest % 10);
        rest /= 10;
    } while (rest != 0);
    while (first != last)
        *to++ = *first++;
    return to;
}

bool json_writer::add_number(int value)
{
    if (!reserve(longest_number))
        return false;
    end_at(write_number(end(), value));
    return true;
}

void json_writer::open_object()
{
    if (!reserve(1))
        return;
    add('{');
    depth++;
    first = true;
}

void json_writer::open(const char *key)
{
    if (begin(key))
        open_object();
}

void json_writer::close()
{
    if (!is_complete || !reserve(depth + 2))
        return;
    depth--;
    char *to = end();
    *to++ = '\n';
    to = write_tabs(to, depth);
    *to++ = '}';
    end_at(to);
    first = false;
}

void json_writer::number(const char *key, int value)
{
    is_complete = begin(key) && add_number(value);
}

void json_writer::text(const char *key, const char *value)
{
    is_complete = begin(key) && add_quoted(value);
}

void json_writer::tree(const char *key, json_ptr value)
{
    is_complete = value != nullptr && begin(key) && add_value(value.get());
}

void json_writer::document(const cJSON *value)
{
    is_complete = is_complete && value != nullptr && add_value(value);
}

const char *json_writer::written()
{
    if (!reserve(1))
        return nullptr;
    space.bytes[used] = '\0';
    return space.bytes;
}

text_space json_writer::release()
{
    const text_space released = space;
    space = {};
    used = depth = 0;
    return released;
}

// --- Trees ---

// Its forms of fractions and of large numbers are cJSON's own business.
bool json_writer::add_printed(const cJSON *number)
{
    if (!reserve(longest_number))
        return false;
    // Printed without its place in a tree, and not changed by it.
    auto *const item = const_cast<cJSON *>(number);
    if (cJSON_PrintPreallocated(item, space.bytes + used, longest_number, 0) == 0)
        return false;
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

// False also for what is no value.
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
        return value->valuestring != nullptr && add_bytes(value->valuestring);
    case cJSON_String:
        return add_quoted(value->valuestring);
    case cJSON_Array:
        return add_array(value);
    case cJSON_Object:
        return add_object(value);
    default:
        return false;
    }
}
