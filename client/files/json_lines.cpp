#include "client/files/json_lines.h"

#include <algorithm>

namespace {

constexpr std::string_view punctuation = ",:]}";

bool is_blank(char letter)
{
    return static_cast<unsigned char>(letter) <= ' ';
}

// The place behind a string that begins there.
size_t end_of_string(std::string_view text, size_t start)
{
    size_t at = start + 1;
    while (at < text.size() && text[at] != '"')
        at += text[at] == '\\' ? 2 : 1;
    return at + 1;
}

// The place behind a number or a literal that begins there.
size_t end_of_word(std::string_view text, size_t start)
{
    size_t at = start + 1;
    while (at < text.size() && !is_blank(text[at]) &&
           punctuation.find(text[at]) == std::string_view::npos)
        at++;
    return at;
}

size_t end_of_token(std::string_view text, size_t start)
{
    const char first = text[start];
    if (first == '"')
        return end_of_string(text, start);
    const bool is_bracket = first == '{' || first == '[';
    return is_bracket ? start + 1 : end_of_word(text, start);
}

} // namespace

// A value begins with each token but the punctuation; what follows a ":" is its key's value, and
// has been counted.
std::vector<int> json_lines(std::string_view text)
{
    std::vector<int> lines;
    int line = 1;
    bool follows_key = false;
    for (size_t at = 0, end = 0; at < text.size(); at = end) {
        end = at + 1;
        if (text[at] == '\n') {
            line++;
        } else if (punctuation.find(text[at]) != std::string_view::npos) {
            follows_key = text[at] == ':';
        } else if (!is_blank(text[at])) {
            if (!follows_key)
                lines.push_back(line);
            follows_key = false;
            end = std::min(end_of_token(text, at), text.size());
            line += static_cast<int>(std::count(text.begin() + static_cast<std::ptrdiff_t>(at),
                                                text.begin() + static_cast<std::ptrdiff_t>(end),
                                                '\n')); // strings may hold line ends
        }
    }
    return lines;
}

text_place place_of(std::string_view text, size_t offset)
{
    const std::string_view before = text.substr(0, offset);
    const auto lines = std::count(before.begin(), before.end(), '\n');
    const size_t start = before.rfind('\n') + 1; // 0 for none
    return {static_cast<int>(lines) + 1, static_cast<int>(before.size() - start) + 1};
}
