#include "platform/trace_line.h"

#include <algorithm>

static void append_escape(std::string &line, unsigned char byte)
{
    static constexpr char digits[] = "0123456789abcdef";
    line += '\\';
    switch (byte) {
    case '\n':
        line += 'n';
        break;
    case '\r':
        line += 'r';
        break;
    case '\t':
        line += 't';
        break;
    default:
        line += 'x';
        line += digits[byte >> 4];
        line += digits[byte & 0xf];
    }
}

// The length of the control character that a text begins with, 0 if it begins with none.
static size_t control_length(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < ' ' || first == 0x7f)
        return 1;
    const bool in_utf8 = first == 0xc2 && text.size() > 1;
    return in_utf8 && (static_cast<unsigned char>(text[1]) & 0xe0) == 0x80 ? 2 : 0;
}

static size_t line_breaks_at_end(std::string_view text)
{
    const size_t last = text.find_last_not_of('\n');
    return last == std::string_view::npos ? text.size() : text.size() - last - 1;
}

std::string trace_line(std::string_view format, std::string_view message)
{
    message.remove_suffix(std::min(line_breaks_at_end(format), line_breaks_at_end(message)));
    std::string line;
    line.reserve(message.size() + 1);
    while (!message.empty()) {
        const size_t control = control_length(message);
        for (const char byte : message.substr(0, control))
            append_escape(line, static_cast<unsigned char>(byte));
        if (control == 0)
            line += message[0];
        message.remove_prefix(std::max(control, size_t{1}));
    }
    line += '\n';
    return line;
}
