#include "base/json_writer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

constexpr size_t least_size = 512;

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

constexpr size_t longest_escape = 6;

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
    *to++ = 'u';
    *to++ = '0';
    *to++ = '0';
    *to++ = digits[byte >> 4];
    *to++ = digits[byte & 15];
    return to;
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

static size_t escaped_size(char byte)
{
    if (is_plain(byte))
        return 1;
    return escape_letter(byte) != '\0' ? 2 : longest_escape;
}

// At least what write_quoted() writes; exactly that where it matters.
static size_t quoted_size(const char *text)
{
    constexpr size_t short_text = 256;
    const size_t length = strlen(text);
    if (length <= short_text)
        return longest_escape * length + 2;
    size_t size = 2;
    for (; *text != '\0'; text++)
        size += escaped_size(*text);
    return size;
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

const char *json_writer::written()
{
    if (!reserve(1) || !is_printable)
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
