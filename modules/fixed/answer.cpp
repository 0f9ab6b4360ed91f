// Answering queries about a module with fixed members.
#include <cstring>

#include "base/memory.h"
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
static bool add_member(const fixed_member &member, int value, cJSON *object)
{
    const char *const text = is_named(member) ? name_of_number(*member.names, value) : nullptr;
    return text != nullptr ? add_text(object, member.key, text)
                           : add_number(object, member.key, value);
}

cJSON *answer_all(const fixed_module &module, const int *values, int instance)
{
    json_ptr object(cJSON_CreateObject());
    bool complete = object != nullptr;
    const int first = first_slot(module, instance);
    const fixed_member *const members = module.members.first;
    for (const file_slot &row : module.file_order) {
        if (load_word(module.values.exist[first + row.if_present]) == 0)
            continue;
        const fixed_member &member = members[row.slot - members[0].slot];
        const int value = load_word(values[first + row.slot]);
        complete = complete && add_member(member, value, object.get());
    }
    return complete ? object.release() : nullptr;
}

// Adds a member in the form in which it is exchanged. A module without named values has one form,
// and a value without a name is left out.
static bool add_listed(const fixed_module &module, int presence, const char *name, int value,
                       const char *text, cJSON *object)
{
    if (!module.rules.named_values)
        return presence == 0 || add_number(object, name, value);
    if ((presence & PARA_PRESENT_AS_NAME) != 0)
        return text == nullptr || add_text(object, name, text);
    return (presence & PARA_PRESENT_AS_NUMBER) == 0 || add_number(object, name, value);
}

cJSON *answer_listed(const fixed_module &module, const int *values, int instance, const cJSON *item)
{
    json_ptr object(cJSON_CreateObject());
    bool complete = object != nullptr;
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, item)
    {
        const char *const name = element->valuestring;
        if (name == nullptr)
            continue;
        int value = 0;
        const char *text = nullptr;
        const int presence = get_member(module, values, instance, name, &value, &text);
        complete = complete && add_listed(module, presence, name, value, text, object.get());
    }
    return complete ? object.release() : nullptr;
}

int answer_query(const fixed_module &module, const int *values, int instance, const cJSON *item,
                 cJSON **answer, const trace_site &site)
{
    const bool all = asks_for_all(item);
    *answer =
        all ? answer_all(module, values, instance) : answer_listed(module, values, instance, item);
    if (!all)
        PARA_TRACE_AT(site, PARA_INFO, "leave");
    return *answer != nullptr ? 0 : no_memory;
}
