// Answering queries about a module with fixed members.
#include "base/answer_tree.h"
#include "base/query.h"
#include "base/text.h"
#include "modules/fixed/fixed_module.h"

const fixed_member *find_member(const fixed_module &module, const char *name)
{
    for (const fixed_member &member : module.members) {
        if (is_same(member.key, name))
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
static void answer_member(const fixed_member &member, int value, answer_sink &sink)
{
    const char *const text = is_named(member) ? name_of_number(*member.names, value) : nullptr;
    if (text != nullptr)
        sink.text(member.key, text);
    else
        sink.number(member.key, value);
}

void answer_all(const fixed_module &module, const int *values, int instance, const char *key,
                answer_sink &sink)
{
    sink.open(key);
    const int first = first_slot(module, instance);
    const fixed_member *const members = module.members.first;
    for (const file_slot &row : module.file_order) {
        if (load_word(module.values.exist[first + row.if_present]) == 0)
            continue;
        const fixed_member &member = members[row.slot - members[0].slot];
        answer_member(member, load_word(values[first + row.slot]), sink);
    }
    sink.close();
}

cJSON *tree_of_all(const fixed_module &module, const int *values, int instance)
{
    answer_tree tree;
    answer_all(module, values, instance, nullptr, tree);
    return tree.release().release();
}

// In the form in which the member is exchanged. A module without named values has one form, and a
// value without a name is left out.
static void answer_as_exchanged(const fixed_module &module, int presence, const char *name,
                                int value, const char *text, answer_sink &sink)
{
    const bool as_name = module.rules.named_values && (presence & PARA_PRESENT_AS_NAME) != 0;
    const int as_number = module.rules.named_values ? PARA_PRESENT_AS_NUMBER : ~0;
    if (as_name && text != nullptr)
        sink.text(name, text);
    else if (!as_name && (presence & as_number) != 0)
        sink.number(name, value);
}

void answer_listed(const fixed_module &module, const int *values, int instance, const cJSON *item,
                   answer_sink &sink)
{
    sink.open(item->string);
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, item)
    {
        const char *const name = element->valuestring;
        if (name == nullptr)
            continue;
        int value = 0;
        const char *text = nullptr;
        const int presence = get_member(module, values, instance, name, &value, &text);
        answer_as_exchanged(module, presence, name, value, text, sink);
    }
    sink.close();
}

int answer_query(const fixed_module &module, const int *values, int instance, const cJSON *item,
                 answer_sink &sink, const trace_site &site)
{
    if (asks_for_all(item)) {
        answer_all(module, values, instance, item->string, sink);
        return 0;
    }
    answer_listed(module, values, instance, item, sink);
    PARA_TRACE_AT(site, PARA_INFO, "leave");
    return 0;
}
