#include "description.h"

static cJSON *add_member(cJSON *members, const char *name, const char *kind)
{
    cJSON *const member = cJSON_AddObjectToObject(members, name);
    cJSON_AddStringToObject(member, "kind", kind);
    return member;
}

cJSON *add_number_member(cJSON *members, const char *name, int min, int max)
{
    cJSON *const member = add_member(members, name, "number");
    cJSON_AddNumberToObject(member, "min", min);
    cJSON_AddNumberToObject(member, "max", max);
    return member;
}

cJSON *add_enum_member(cJSON *members, const char *name, const std::vector<std::string> &names)
{
    cJSON *const member = add_member(members, name, "enum");
    cJSON *const list = cJSON_AddArrayToObject(member, "names");
    for (const std::string &one : names)
        cJSON_AddItemToArray(list, cJSON_CreateString(one.c_str()));
    return member;
}

cJSON *add_text_member(cJSON *members, const char *name)
{
    return add_member(members, name, "text");
}

void add_values(cJSON *member, cJSON *default_value, cJSON *current)
{
    if (default_value != nullptr)
        cJSON_AddItemToObject(member, "default", default_value);
    if (current != nullptr)
        cJSON_AddItemToObject(member, "current", current);
}

void mark_read_only(cJSON *member)
{
    cJSON_AddTrueToObject(member, "read_only");
}
