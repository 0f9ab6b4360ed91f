#include "client/files/conf_document.h"

#include <algorithm>

namespace {

const char *const blanks = " \t\r\n\v\f";

std::string trimmed(const std::string &text)
{
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return "";
    return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

bool is_quoted(const std::string &value)
{
    return !value.empty() && value.front() == '"';
}

// Why the store skips a line; empty for one that it reads.
std::string reason_to_skip(const std::string &line, const std::string &key,
                           const std::string &value)
{
    if (line.find('\0') != std::string::npos)
        return "holds a zero byte, and is not read";
    if (line.find('=') == std::string::npos)
        return "has no \"=\", and is not read";
    if (key.empty() || key.find_first_of(blanks) != std::string::npos)
        return "has no key of one word, and is not read";
    if (is_quoted(value) && value.rfind('"') == 0)
        return "has no closing quote, and is not read";
    return "";
}

std::string unquoted(const std::string &value)
{
    return is_quoted(value) ? value.substr(1, value.rfind('"') - 1) : value;
}

// A quoted value reaches to the last quote of the line.
bool loses_text(const std::string &value)
{
    return is_quoted(value) && value.back() != '"';
}

} // namespace

conf_document::conf_document(device_folder &folder, const std::string &name)
    : checked_file(folder, name)
{
    int number = 0;
    for (size_t start = 0; start < text().size();) {
        const size_t end = std::min(text().find('\n', start), text().size());
        take(text().substr(start, end - start), ++number);
        start = end + 1;
    }
}

void conf_document::take(const std::string &line, int number)
{
    const std::string content = trimmed(line);
    if (content.empty() || content.front() == '#')
        return;
    const size_t equals = line.find('=');
    const std::string key = trimmed(line.substr(0, equals));
    const std::string value = equals == std::string::npos ? "" : trimmed(line.substr(equals + 1));
    if (const std::string reason = reason_to_skip(line, key, value); !reason.empty())
        return fault(number, "", reason);

    if (loses_text(value))
        fault(number, key, "has text behind the closing quote, which is not read");
    add({key, unquoted(value), number});
}

void conf_document::add(const conf_line &entry)
{
    if (entry.value.size() > most_text_bytes)
        fault(entry.line, entry.key, "has more than 255 bytes, and cannot be read");
    const auto [place, is_first] = places.emplace(entry.key, entries.size());
    if (is_first) {
        entries.push_back(entry);
        return;
    }
    conf_line &before = entries[place->second];
    fault(entry.line, entry.key,
          "comes again, in place of the one on line " + std::to_string(before.line));
    before = entry;
}
