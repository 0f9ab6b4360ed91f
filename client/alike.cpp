#include "client/alike.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "client/json.h"

namespace {

// What differs from one run to the next.
constexpr const char *passing_members[] = {"msg_id", "time", "started", "uptime", "saved_at"};

bool is_passing(const cJSON *member)
{
    return std::any_of(std::begin(passing_members), std::end(passing_members),
                       [&](const char *name) { return strcmp(member->string, name) == 0; });
}

// What is compared of an object, by name. Members of one name keep their order.
std::vector<const cJSON *> lasting_members(const cJSON *object)
{
    std::vector<const cJSON *> members;
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, object)
    {
        if (!is_passing(member))
            members.push_back(member);
    }
    std::stable_sort(members.begin(), members.end(), [](const cJSON *one, const cJSON *other) {
        return strcmp(one->string, other->string) < 0;
    });
    return members;
}

std::vector<const cJSON *> elements(const cJSON *array)
{
    std::vector<const cJSON *> all;
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, array)
    {
        all.push_back(element);
    }
    return all;
}

bool are_same(const cJSON *one, const cJSON *other);

bool are_all_same(const std::vector<const cJSON *> &ones, const std::vector<const cJSON *> &others)
{
    return std::equal(ones.begin(), ones.end(), others.begin(), others.end(), are_same);
}

bool have_same_name(const cJSON *one, const cJSON *other)
{
    return strcmp(one->string, other->string) == 0;
}

// Trees have as many levels as the parser admits.
bool are_same(const cJSON *one, const cJSON *other)
{
    const int types = 0xff; // the rest is flags
    if ((one->type & types) != (other->type & types))
        return false;
    if (cJSON_IsNumber(one))
        return one->valuedouble == other->valuedouble;
    if (cJSON_IsString(one))
        return string_of(one) == string_of(other);
    if (cJSON_IsArray(one))
        return are_all_same(elements(one), elements(other));
    if (!cJSON_IsObject(one))
        return true; // true, false and null
    const std::vector<const cJSON *> ones = lasting_members(one), others = lasting_members(other);
    return std::equal(ones.begin(), ones.end(), others.begin(), others.end(), have_same_name) &&
           are_all_same(ones, others);
}

} // namespace

bool are_alike(const std::string &one, const std::string &other)
{
    const json_ptr tree = parse_whole_json(one), other_tree = parse_whole_json(other);
    return tree && other_tree ? are_same(tree.get(), other_tree.get()) : one == other;
}
