// Answering queries about a module with fixed members.
#include <cstring>

#include "base/query.h"
#include "base/text.h"
#include "modules/fixed/fixed_module.h"

const fixed_member *find_member(const fixed_module &module, const char *name)
{
    for (const fixed_member &member : module.members) {
        if (strcmp(member.key, name) == 0)
            return &member;
    }
    return nullptr;
}

const fixed_member *find_member_by_prefix(const fixed_module &module, const char *text)
{
    for (const fixed_member &member : module.members) {
        if (member.settable && begins_with(text, member.key))
            return &member;
    }
    return nullptr;
}

int get_member(const fixed_module &module, const int *values, int instance, const char *name,
               int *value, const char **text)
{
    const fixed_member *const member = find_member(module, name);
    if (member == nullptr || !member->queried)
        return 0;

    const int slot = slot_of(module, instance, *member);
    const int presence = load_word(module.values.exist[slot]);
    *value = current_value(module, values, slot);
    if (text != nullptr && is_named(*member)) {
        const bool as_name = (presence & PARA_PRESENT_AS_NAME) != 0;
        *text = as_name ? name_of_number(*member->names, *value) : nullptr;
    }
    return presence;
}

// A value without a name is written as a number, so that it survives a restart.
static void add_member(const fixed_member &member, int value, cJSON *object)
{
    const char *const text = is_named(member) ? name_of_number(*member.names, value) : nullptr;
    if (text != nullptr)
        cJSON_AddStringToObject(object, member.key, text);
    else
        cJSON_AddNumberToObject(object, member.key, value);
}

cJSON *answer_all(const fixed_module &module, const int *values, int instance)
{
    cJSON *const object = cJSON_CreateObject();
    const int first = first_slot(module, instance);
    const fixed_member *const members = module.members.first;
    for (const file_slot &row : module.file_order) {
        if (load_word(module.values.exist[first + row.if_present]) != 0)
            add_member(members[row.slot - members[0].slot], load_word(values[first + row.slot]),
                       object);
    }
    return object;
}

// Adds a member in the form in which it is exchanged. A module without named values has one form.
static void add_listed(const fixed_module &module, int presence, const char *name, int value,
                       const char *text, cJSON *object)
{
    if (!module.rules.named_values) {
        if (presence != 0)
            cJSON_AddNumberToObject(object, name, value);
    } else if ((presence & PARA_PRESENT_AS_NAME) != 0) {
        cJSON_AddStringToObject(object, name, text);
    } else if ((presence & PARA_PRESENT_AS_NUMBER) != 0) {
        cJSON_AddNumberToObject(object, name, value);
    }
}

cJSON *answer_listed(const fixed_module &module, const int *values, int instance, const cJSON *item)
{
    cJSON *const object = cJSON_CreateObject();
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, item)
    {
        const char *const name = element->valuestring;
        if (name == nullptr)
            continue;
        int value = 0;
        const char *text = nullptr;
        const int presence = get_member(module, values, instance, name, &value, &text);
        add_listed(module, presence, name, value, text, object);
    }
    return object;
}

int answer_query(const fixed_module &module, const int *values, int instance, const cJSON *item,
                 cJSON **answer, const trace_site &site)
{
    if (asks_for_all(item)) {
        *answer = answer_all(module, values, instance);
        return 0;
    }
    *answer = answer_listed(module, values, instance, item);
    PARA_TRACE_AT(site, PARA_INFO, "leave");
    return 0;
}
