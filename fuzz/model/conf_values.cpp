#include "fuzz/model/conf_values.h"

#include <sstream>

static const char blanks[] = " \t\r\n\v\f";

static bool is_key(const std::string &key)
{
    return !key.empty() && key[0] != '#' &&
           key.find_first_of(std::string("=") + blanks) == std::string::npos;
}

bool conf_values::set(const std::string &key, const std::string &value)
{
    if (!is_key(key) || value.find('\n') != std::string::npos)
        return false;
    for (auto &[known, current] : all) {
        if (known == key) {
            const bool changed = current != value;
            current = value;
            return changed;
        }
    }
    all.emplace_back(key, value);
    return true;
}

std::optional<std::string> conf_values::get(const std::string &key) const
{
    for (const auto &[known, value] : all) {
        if (known == key)
            return value;
    }
    return std::nullopt;
}

std::optional<std::string> conf_values::get_short(const std::string &key, size_t size) const
{
    std::optional<std::string> value = get(key);
    if (value && value->size() >= size)
        value.reset();
    return value;
}

static std::string trimmed(const std::string &text)
{
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return "";
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

void conf_values::read(const std::string &text)
{
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const size_t equals = line.find('=');
        if (equals == std::string::npos || line.find('\0') != std::string::npos)
            continue;
        const std::string key = trimmed(line.substr(0, equals));
        std::string value = trimmed(line.substr(equals + 1));
        if (value == "\"" || (!value.empty() && value[0] == '"' && value.rfind('"') == 0))
            continue; // an opening quote alone
        if (!value.empty() && value[0] == '"')
            value = value.substr(1, value.rfind('"') - 1);
        set(key, value);
    }
}

std::string conf_values::text() const
{
    std::string lines;
    for (const auto &[key, value] : all)
        lines += key + " = \"" + value + "\"\n";
    return lines;
}
