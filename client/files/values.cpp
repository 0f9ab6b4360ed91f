#include "client/files/values.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace {

std::optional<int> number_in(json_document &file, const cJSON *item, const std::string &path)
{
    const double value = item->valuedouble;
    if (value >= INT_MIN && value <= INT_MAX && value == std::trunc(value))
        return static_cast<int>(value);
    file.fault(item, path, print_line(item) + " is no whole number of 32 bits");
    return std::nullopt;
}

// The names of the values 0, 1, 2 ...
std::vector<std::string> names_of(value_name name_of)
{
    std::vector<std::string> names;
    for (int value = 0; const char *const name = name_of(value); value++)
        names.emplace_back(name);
    return names;
}

bool begins_with(const std::string &whole, const std::string &start)
{
    return whole.compare(0, start.size(), start) == 0;
}

// The store takes the last name that begins with the text.
std::optional<int> named_in(json_document &file, const cJSON *item, const std::string &path,
                            value_name name_of)
{
    const std::string text = string_of(item);
    const std::vector<std::string> names = names_of(name_of);
    const auto is_meant = [&](const std::string &name) { return begins_with(name, text); };
    const auto last = std::find_if(names.rbegin(), names.rend(), is_meant);
    if (text.empty() || last == names.rend()) {
        file.fault(item, path, in_quotes(text) + " is none of its names" + hint(text, names));
        return std::nullopt;
    }
    const auto exact = std::find(names.begin(), names.end(), text);
    if (exact != names.end() && *last != text)
        file.fault(item, path,
                   in_quotes(text) + " is read as " + in_quotes(*last) + "; write the number, " +
                       std::to_string(exact - names.begin()));
    else if (*last != text && std::count_if(names.begin(), names.end(), is_meant) > 1)
        file.warn(item, path, in_quotes(text) + " is cut short, and read as " + in_quotes(*last));
    return static_cast<int>(names.rend() - last) - 1;
}

bool is_number(const cJSON *item, module_kind kind)
{
    return cJSON_IsNumber(item) || (kind == module_kind::numbers && cJSON_IsBool(item));
}

} // namespace

std::optional<int> value_in(json_document &file, const cJSON *item, const std::string &path,
                            const setting_in_files &about, module_kind kind)
{
    if (cJSON_IsBool(item) && is_number(item, kind))
        return cJSON_IsTrue(item);
    if (is_number(item, kind))
        return number_in(file, item, path);
    if (about.name_of != nullptr && cJSON_IsString(item))
        return named_in(file, item, path, about.name_of);
    file.fault(item, path,
               about.name_of != nullptr ? "is neither a number nor a name" : "is no number");
    return std::nullopt;
}

void check_limits(json_document &file, const cJSON *item, const std::string &path, int value,
                  const setting_in_files &about)
{
    if (about.range == range_state::usable && (value < about.min || value > about.max))
        file.fault(item, path, about.shown(value) + " is outside the range, " + about.limits());
}

void check_value(json_document &file, const cJSON *item, const std::string &path,
                 const setting_in_files &about, module_kind kind)
{
    if (const std::optional<int> value = value_in(file, item, path, about, kind))
        check_limits(file, item, path, *value, about);
}

void check_text(checked_file &file, int line, const std::string &path, const std::string &text,
                const setting_in_files &about)
{
    if (about.range != range_state::usable)
        return;
    if (!about.texts.empty()) {
        if (std::find(about.texts.begin(), about.texts.end(), text) == about.texts.end())
            file.fault(line, path,
                       in_quotes(text) + " is none of its texts" + hint(text, about.texts));
        return;
    }
    const std::optional<int> value = parse_int(text);
    if (!value)
        file.fault(line, path, in_quotes(text) + " is no whole number of 32 bits");
    else if (*value < about.min || *value > about.max)
        file.fault(line, path, text + " is outside the range, " + about.limits());
}

void read_range(json_document &file, const cJSON *item, const std::string &path,
                setting_in_files &into, module_kind kind)
{
    into.range = range_state::broken;
    into.range_line = file.line_of(item);
    if (!cJSON_IsArray(item) || cJSON_GetArraySize(item) != 2)
        return file.fault(item, path, "is no range: an array of the minimum and the maximum");
    const std::optional<int> min = value_in(file, cJSON_GetArrayItem(item, 0), path, into, kind);
    const std::optional<int> max = value_in(file, cJSON_GetArrayItem(item, 1), path, into, kind);
    if (!min || !max)
        return;
    into.min = *min;
    into.max = *max;
    if (*min > *max)
        return file.fault(item, path,
                          "the minimum, " + into.shown(*min) + ", is above the maximum, " +
                              into.shown(*max));
    into.range = range_state::usable;
}

std::string unknown_member(const module_in_files &module, const std::string &name)
{
    return "is no member of " + module.name + hint(name, module.names());
}
