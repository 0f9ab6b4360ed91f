#include "output.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "client/utf8.h"

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

// U+007F to U+009F, which terminals obey as they obey ESC, given the bytes of one character.
bool is_late_control(const std::string &character)
{
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(character[i]); };
    return byte(0) == 0x7f || (byte(0) == 0xc2 && byte(1) < 0xa0);
}

std::string escaped(const char *form, unsigned number)
{
    char text[16];
    snprintf(text, sizeof text, form, number);
    return text;
}

// The characters of a text; such as are no UTF-8 byte by byte.
template <typename visitor> void for_each_character(const std::string &text, const visitor &visit)
{
    for (size_t position = 0; position < text.size();) {
        const size_t length = utf8_length_at(text, position);
        const std::string character = text.substr(position, length > 0 ? length : 1);
        visit(character, length > 0);
        position += character.size();
    }
}

// Control characters stand only in the strings of a JSON text.
std::string printable_json(const std::string &text)
{
    std::string clean;
    for_each_character(as_utf8(text), [&](const std::string &character, bool) {
        const unsigned last = static_cast<unsigned char>(character.back());
        clean += is_late_control(character) ? escaped("\\u%04x", last) : character;
    });
    return clean;
}

bool messages_are_json = false;

// Escapes of terminals.
constexpr const char *bold = "\033[1m", *red = "\033[31m", *yellow = "\033[33m";

// In colour on a terminal alone, and unless the user wants none.
std::string in_colour(int stream, const char *colour, const std::string &text)
{
    const char *const unwanted = getenv("NO_COLOR"), *const terminal = getenv("TERM");
    const bool is_wanted = (unwanted == nullptr || *unwanted == '\0') && terminal != nullptr &&
                           strcmp(terminal, "dumb") != 0;
    return is_wanted && isatty(stream) == 1 ? colour + text + "\033[0m" : text;
}

// The header stands out, and rows with a mark.
std::string coloured(const std::string &line, bool is_header)
{
    if (is_header)
        return in_colour(STDOUT_FILENO, bold, line);
    const bool is_marked = line.size() > 2 && line.compare(line.size() - 2, 2, " *") == 0;
    return is_marked ? in_colour(STDOUT_FILENO, yellow, line) : line;
}

} // namespace

std::string visible(const std::string &text)
{
    std::string shown;
    for_each_character(text, [&](const std::string &character, bool is_utf8) {
        const bool is_control =
            static_cast<unsigned char>(character[0]) < ' ' || is_late_control(character);
        if (is_utf8 && !is_control) {
            shown += character;
            return;
        }
        for (const char byte : character)
            shown += escaped("\\x%02x", static_cast<unsigned char>(byte));
    });
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
        puts(coloured(line, &row == &rows.front()).c_str());
    }
}

std::string value_cell(const cJSON *value)
{
    if (value == nullptr)
        return "-";
    const std::string text = value_text(value);
    return text.empty() ? "\"\"" : visible(text);
}

std::vector<std::vector<std::string>> transposed(const std::vector<std::vector<std::string>> &rows)
{
    std::vector<std::vector<std::string>> columns(rows.front().size());
    for (const std::vector<std::string> &row : rows) {
        for (size_t i = 0; i < row.size(); i++)
            columns[i].push_back(row[i]);
    }
    return columns;
}

void print_value(const std::string &name, const cJSON *value, const char *mark)
{
    printf("%s=%s%s\n", visible(name).c_str(), visible(value_text(value)).c_str(), mark);
}

void print_json(const cJSON *node)
{
    puts(printable_json(print_pretty(node)).c_str());
}

void print_json_line(const cJSON *node)
{
    puts(printable_json(print_line(node)).c_str());
}

void print_message(const std::string &text)
{
    print_failure({DONE, text});
}

void print_failure(const failure &what)
{
    fflush(stdout); // keep the order of both streams
    if (!messages_are_json) {
        const std::string name =
            what.code != DONE ? in_colour(STDERR_FILENO, red, "camparam:") : "camparam:";
        fprintf(stderr, "%s %s\n", name.c_str(), visible(what.what()).c_str());
        return;
    }
    const json_ptr message(cJSON_CreateObject());
    cJSON_AddStringToObject(message.get(), "message", what.what());
    if (what.code != DONE)
        cJSON_AddNumberToObject(message.get(), "status", what.code);
    fprintf(stderr, "%s\n", printable_json(print_line(message.get())).c_str());
}

void print_messages_as_json()
{
    messages_are_json = true;
}
