#include "platform/hidden_names.h"

#include <algorithm>
#include <cctype>

namespace {

char small(char letter)
{
    return static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
}

bool is_of_name(char letter)
{
    return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '_';
}

// Setters of members have their names in their own: para_set_<module>_<member>_cur.
bool ends_name(std::string_view rest)
{
    return rest.empty() || !is_of_name(rest[0]) || rest.substr(0, 4) == "_cur";
}

bool begins_name(std::string_view before)
{
    return before.empty() || !is_of_name(before.back()) || before.back() == '_';
}

// Where the name ends in the message, or npos.
size_t end_of(std::string_view name, std::string_view message)
{
    const auto same = [](char letter, char other) { return small(letter) == other; };
    for (auto from = message.begin();; from++) {
        from = std::search(from, message.end(), name.begin(), name.end(), same);
        if (from == message.end())
            return std::string_view::npos;
        const auto begin = static_cast<size_t>(from - message.begin());
        const size_t end = begin + name.size();
        if (begins_name(message.substr(0, begin)) && ends_name(message.substr(end)))
            return end;
    }
}

} // namespace

void hidden_names::add(std::string_view name)
{
    if (name.empty())
        return;
    std::string kept(name);
    std::transform(kept.begin(), kept.end(), kept.begin(), small);
    names.push_back(std::move(kept));
}

std::string hidden_names::shown(std::string_view message) const
{
    size_t end = std::string_view::npos;
    for (const std::string &name : names)
        end = std::min(end, end_of(name, message));
    if (end == std::string_view::npos)
        return std::string(message);
    std::string cut(message.substr(0, end));
    return cut += "...";
}
