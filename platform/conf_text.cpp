#include "platform/conf_text.h"

#include <cstdio>
#include <map>

#include "camparam/platform.h"

static constexpr std::string_view blanks = " \t\r\n\v\f";
static constexpr char line_format[] = "%s = \"%s\"\n";

static std::string_view trimmed(std::string_view text)
{
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

static bool valid_key(std::string_view key)
{
    return !key.empty() && key.front() != '#' && key.find('=') == std::string_view::npos &&
           key.find_first_of(blanks) == std::string_view::npos;
}

static std::optional<std::string_view> unquoted(std::string_view value)
{
    if (value.empty() || value.front() != '"')
        return value;
    const size_t last = value.rfind('"');
    if (last == 0)
        return std::nullopt;
    return value.substr(1, last - 1);
}

static std::optional<conf_entry> parse_line(std::string_view line)
{
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos || line.find('\0') != std::string_view::npos)
        return std::nullopt;

    const std::string_view key = trimmed(line.substr(0, equals));
    const std::optional<std::string_view> value = unquoted(trimmed(line.substr(equals + 1)));
    if (!valid_key(key) || !value)
        return std::nullopt;
    return conf_entry{key, *value};
}

// The next entry, cut off from the beginning of the text with all that comes before it.
static std::optional<conf_entry> cut_entry(std::string_view &text)
{
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(line.size() < text.size() ? line.size() + 1 : text.size());
        if (const std::optional<conf_entry> entry = parse_line(line))
            return entry;
    }
    return std::nullopt;
}

std::optional<std::vector<conf_entry>> parse_conf_text(std::string_view text)
{
    std::vector<conf_entry> entries;
    std::map<std::string_view, size_t> places;
    while (const std::optional<conf_entry> entry = cut_entry(text)) {
        const auto [place, first] = places.emplace(entry->key, entries.size());
        if (!first)
            entries[place->second].value = entry->value;
        else if (entries.size() < conf_most_keys)
            entries.push_back(*entry);
        else
            return std::nullopt;
    }
    return entries;
}

bool conf_writable(std::string_view key, std::string_view value)
{
    return valid_key(key) && value.find('\n') == std::string_view::npos;
}

int loop_2_conf(void *file, const char *key, const char *value)
{
    if (file != nullptr && conf_writable(key, value))
        fprintf(static_cast<FILE *>(file), line_format, key, value);
    return 0;
}

int loop_2_buf(void *state, const char *key, const char *value)
{
    conf_buffer_state *const dump = static_cast<conf_buffer_state *>(state);
    if (!conf_writable(key, value))
        return 0;
    if (dump->buffer == nullptr || dump->used < 0 || dump->used >= dump->size) {
        dump->overflow = 1;
        return 0;
    }

    const int room = dump->size - dump->used;
    char *const end = dump->buffer + dump->used;
    const int length = snprintf(end, static_cast<size_t>(room), line_format, key, value);
    if (length < 0 || length >= room) {
        *end = '\0';
        dump->overflow = 1;
        return 0;
    }
    dump->used += length;
    return 0;
}
