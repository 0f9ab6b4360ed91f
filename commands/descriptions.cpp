#include "descriptions.h"

#include <cstring>
#include <utility>

#include "home_file.h"
#include "json.h"

namespace {

constexpr const char *texts[] = {"unit", "label", "help"};

bool add_copy(cJSON *to, const char *key, const cJSON *item)
{
    return add_to_object(to, key, json_ptr(cJSON_Duplicate(item, 1)));
}

// "video*" stands for each module whose name begins so.
bool is_meant(const char *pattern, const char *module)
{
    const size_t length = strlen(pattern);
    return length > 0 && pattern[length - 1] == '*' && strncmp(pattern, module, length - 1) == 0;
}

} // namespace

descriptions::descriptions()
{
    home_file file = read_home_file("descriptions.json");
    problem = file.problem;
    starved = file.starved;
    if (file.root != nullptr && !cJSON_IsObject(file.root.get()))
        problem = "holds no JSON object";
    modules = std::move(file.root);
}

const cJSON *descriptions::find(const char *module, const char *member) const
{
    const cJSON *const own = cJSON_GetObjectItemCaseSensitive(modules.get(), module);
    if (const cJSON *const found = cJSON_GetObjectItemCaseSensitive(own, member))
        return found;
    const cJSON *entry = nullptr;
    cJSON_ArrayForEach(entry, modules.get())
    {
        const cJSON *const found = cJSON_GetObjectItemCaseSensitive(entry, member);
        if (found != nullptr && entry->string != nullptr && is_meant(entry->string, module))
            return found;
    }
    return nullptr;
}

bool descriptions::is_secret(const char *module, const char *member, bool may_hold_text) const
{
    return starved || problem != nullptr ? may_hold_text : is_true(find(module, member), "secret");
}

bool descriptions::complete(const char *module, const char *name, cJSON *member,
                            bool show_secrets) const
{
    const cJSON *const found = find(module, name);
    bool added = !starved;
    for (const char *key : texts) {
        const cJSON *const text = cJSON_GetObjectItemCaseSensitive(found, key);
        if (cJSON_IsString(text))
            added = added && add_copy(member, key, text);
    }
    const cJSON *const names = cJSON_GetObjectItemCaseSensitive(found, "names");
    if (cJSON_IsObject(names) && is_kind(member, "number"))
        added = added && add_copy(member, "names", names);
    if (is_secret(module, name, is_kind(member, "text") || is_kind(member, "json"))) {
        if (!show_secrets)
            drop_values(member);
        added = added && cJSON_AddTrueToObject(member, "secret") != nullptr;
    }
    return added;
}

bool is_kind(const cJSON *member, const char *kind)
{
    const char *const found =
        cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(member, "kind"));
    return found != nullptr && strcmp(found, kind) == 0;
}

bool is_read_only(const cJSON *member)
{
    return is_true(member, "read_only");
}

static constexpr const char *values[] = {"default", "start", "current"};

bool is_value(const char *key)
{
    for (const char *value : values) {
        if (strcmp(key, value) == 0)
            return true;
    }
    return false;
}

void drop_values(cJSON *member)
{
    for (const char *value : values)
        cJSON_DeleteItemFromObjectCaseSensitive(member, value);
}

void drop_texts(cJSON *member)
{
    for (const char *text : texts)
        cJSON_DeleteItemFromObjectCaseSensitive(member, text);
}

void drop_names(cJSON *member)
{
    cJSON_DeleteItemFromObjectCaseSensitive(member, "names");
}
