// Legacy range files of "misc", in which an enum member has the first and last text of a range
// within a fixed table.
#include <cstring>

#include "base/json.h"
#include "base/text.h"
#include "base/trace.h"
#include "camparam/misc.h"

struct name_table {
    const char *member;
    const char *const *names;
    int count;
};

static const name_table *table_of(const char *member)
{
    static const name_table tables[] = {
#define MISC_ENUM_MEMBER(name)                                                                     \
    {.member = #name, .names = name, .count = sizeof name / sizeof name[0]},
#include "camparam/misc_members.def"
    };
    for (const name_table &table : tables) {
        if (strcmp(table.member, member) == 0)
            return &table;
    }
    return nullptr;
}

// The table texts from the first one that begins with `first` to one that begins with `last`. The
// end is searched from the start of the table, so names in the wrong order give a short or empty
// list (MiscWidening.* tests). Null when memory ran out.
static json_ptr widened(const name_table &table, const char *first, const char *last)
{
    json_ptr list(cJSON_CreateArray());
    bool started = false;
    for (int i = 0; i < table.count; i++) {
        started = started || begins_with(table.names[i], first);
        if (started && !add_to_array(list.get(), json_ptr(cJSON_CreateString(table.names[i]))))
            return nullptr;
        if (begins_with(table.names[i], last))
            break;
    }
    return list;
}

// Adds the member of the new range, unless it is dropped. False when memory ran out.
static bool add_widened(cJSON *range, const cJSON *old_member)
{
    if (!cJSON_IsArray(old_member))
        return true;
    const cJSON *const first = cJSON_GetArrayItem(old_member, 0);
    const cJSON *const last = cJSON_GetArrayItem(old_member, 1);
    if (first == nullptr || last == nullptr)
        return true;

    const char *const key = old_member->string;
    const name_table *const table = table_of(key);
    if (table == nullptr)
        return add_to_object(range, key, json_ptr(cJSON_Duplicate(old_member, 1)));
    if (!cJSON_IsString(first) || !cJSON_IsString(last))
        return true;
    return add_to_object(range, key, widened(*table, first->valuestring, last->valuestring));
}

cJSON *fix_old_misc_range_conf(const cJSON *old_range)
{
    json_ptr range(cJSON_CreateObject());
    bool complete = add_number(range.get(), "version", 0);
    const cJSON *old_member = nullptr;
    cJSON_ArrayForEach(old_member, old_range)
    {
        if (old_member->string == nullptr)
            continue;
        PARA_TRACE(PARA_INFO, "element is %s,size:%d", old_member->string,
                   cJSON_GetArraySize(old_member));
        complete = complete && add_widened(range.get(), old_member);
    }
    return complete ? range.release() : nullptr;
}
