#include "client/files/json_document.h"

#include "client/files/json_lines.h"

namespace {

// Gives each node the line at its place in the order of the text.
void number_lines(const cJSON *node, const std::vector<int> &lines, size_t &next,
                  std::unordered_map<const cJSON *, int> &to)
{
    if (next < lines.size())
        to[node] = lines[next++];
    const cJSON *child = nullptr;
    cJSON_ArrayForEach(child, node)
    {
        number_lines(child, lines, next, to);
    }
}

const cJSON *object_or_null(const cJSON *node)
{
    return cJSON_IsObject(node) ? node : nullptr;
}

} // namespace

json_document::json_document(device_folder &folder, const std::string &name)
    : checked_file(folder, name)
{
    if (is_read)
        parse();
}

// Text behind the object is no fault to the store either: saved files end with a zero byte.
void json_document::parse()
{
    if (text().empty())
        return fault(0, "", "is empty");
    const char *end = nullptr;
    tree.reset(cJSON_ParseWithOpts(text().c_str(), &end, 0));
    if (tree == nullptr) {
        const text_place place = place_of(text(), static_cast<size_t>(end - text().c_str()));
        return fault(place.line, "",
                     "is no JSON from column " + std::to_string(place.column) + " on");
    }
    if (!cJSON_IsObject(tree.get())) {
        tree.reset();
        return fault(1, "", "holds no JSON object");
    }
    size_t next = 0;
    number_lines(tree.get(), json_lines(text()), next, lines);
}

int json_document::line_of(const cJSON *node) const
{
    const auto place = lines.find(node);
    return place != lines.end() ? place->second : 0;
}

void json_document::fault(const cJSON *node, const std::string &member, const std::string &reason)
{
    fault(line_of(node), member, reason);
}

void json_document::warn(const cJSON *node, const std::string &member, const std::string &reason)
{
    warn(line_of(node), member, reason);
}

std::vector<const cJSON *> json_document::members(const cJSON *object, const std::string &prefix)
{
    std::vector<const cJSON *> all;
    std::unordered_map<std::string, const cJSON *> firsts;
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, object_or_null(object))
    {
        const auto [place, is_first] = firsts.emplace(in_small_letters(member->string), member);
        if (is_first)
            all.push_back(member);
        else
            fault(member, prefix + member->string,
                  "comes again, and is not read; the first one is on line " +
                      std::to_string(line_of(place->second)));
    }
    return all;
}

const cJSON *find_key(const cJSON *object, const char *key)
{
    return cJSON_IsObject(object) ? cJSON_GetObjectItem(object, key) : nullptr;
}
