#include "client/utf8.h"

#include <cstdint>

namespace {

struct sequence {
    unsigned char mask, first; // of the first byte
    size_t length;
    uint32_t smallest;
};

constexpr sequence sequences[] = {
    {0x80, 0x00, 1, 0},
    {0xe0, 0xc0, 2, 0x80},
    {0xf0, 0xe0, 3, 0x800},
    {0xf8, 0xf0, 4, 0x10000},
};

} // namespace

size_t utf8_length_at(const std::string &bytes, size_t position)
{
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(bytes[position + i]); };
    for (const sequence &form : sequences) {
        if ((byte(0) & form.mask) != form.first)
            continue;
        if (bytes.size() - position < form.length)
            return 0;
        uint32_t character = byte(0) & static_cast<unsigned char>(~form.mask);
        for (size_t i = 1; i < form.length; i++) {
            if ((byte(i) & 0xc0) != 0x80)
                return 0;
            character = character << 6 | (byte(i) & 0x3f);
        }
        const bool is_surrogate = character >= 0xd800 && character <= 0xdfff;
        return character < form.smallest || character > 0x10ffff || is_surrogate ? 0 : form.length;
    }
    return 0;
}

bool is_utf8(const std::string &bytes)
{
    size_t position = 0;
    while (position < bytes.size()) {
        const size_t length = utf8_length_at(bytes, position);
        if (length == 0)
            return false;
        position += length;
    }
    return true;
}

std::string as_utf8(const std::string &bytes)
{
    std::string clean;
    for (size_t position = 0; position < bytes.size();) {
        const size_t length = utf8_length_at(bytes, position);
        clean += length > 0 ? bytes.substr(position, length) : "\xef\xbf\xbd"; // U+FFFD
        position += length > 0 ? length : 1;
    }
    return clean;
}
