#include "output.h"

#include <algorithm>
#include <cstdio>

namespace {

// Characters of a UTF-8 text: its bytes without the continuation bytes.
size_t width(const std::string &text)
{
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xc0) != 0x80; }));
}

std::vector<size_t> column_widths(const std::vector<std::vector<std::string>> &rows)
{
    std::vector<size_t> widths;
    for (const std::vector<std::string> &row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (size_t column = 0; column < row.size(); column++)
            widths[column] = std::max(widths[column], width(row[column]));
    }
    return widths;
}

} // namespace

namespace {

// U+0080 to U+009F, which terminals obey as they obey ESC.
bool is_second_of_control(unsigned before, unsigned byte)
{
    return before == 0xc2 && (byte & 0xe0) == 0x80;
}

} // namespace

std::string visible(const std::string &text)
{
    std::string shown;
    const auto escape = [&shown](unsigned byte) {
        char digits[8];
        snprintf(digits, sizeof digits, "\\x%02x", byte);
        shown += digits;
    };
    unsigned before = 0;
    for (const char letter : text) {
        const unsigned byte = static_cast<unsigned char>(letter);
        if (is_second_of_control(before, byte)) {
            shown.pop_back();
            escape(before);
            escape(byte);
        } else if (byte >= ' ' && byte != 0x7f) {
            shown += letter;
        } else {
            escape(byte);
        }
        before = byte;
    }
    return shown;
}

void print_table(const std::vector<std::vector<std::string>> &rows)
{
    const std::vector<size_t> widths = column_widths(rows);
    for (const std::vector<std::string> &row : rows) {
        std::string line;
        for (size_t column = 0; column < row.size(); column++)
            line += row[column] + std::string(widths[column] - width(row[column]) + 2, ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        puts(line.c_str());
    }
}

void print_value(const std::string &name, const cJSON *value)
{
    printf("%s=%s\n", visible(name).c_str(), visible(value_text(value)).c_str());
}

void print_message(const std::string &text)
{
    fflush(stdout); // keep the order of both streams
    fprintf(stderr, "camparam: %s\n", visible(text).c_str());
}
