// Changing the values of a module with fixed members.
#include "base/observer.h"
#include "modules/fixed/fixed_module.h"

static para_value told_value(const fixed_module &module, int slot, const fixed_member &member,
                             int value)
{
    const bool by_name = module.rules.named_values && is_named(member) &&
                         (load_word(module.values.exist[slot]) & PARA_PRESENT_AS_NAME) != 0;
    return {.exists = 1,
            .text = by_name ? name_of_number(*member.names, value) : nullptr,
            .number = value};
}

void tell_change_of(const fixed_module &module, int slot, const slot_change &values,
                    void (*tell)(const para_setting_change &))
{
    const int instance = module.instances != nullptr ? slot / module.instances->stride : 0;
    for (const fixed_member &member : module.members) {
        if (slot_of(module, instance, member) != slot)
            continue;
        const row_name row(module, slot);
        tell({.module = row.text,
              .instance =
                  module.instances != nullptr && module.instances->share_a_row ? instance : 0,
              .member = member.key,
              .old_value = told_value(module, slot, member, values.before),
              .new_value = told_value(module, slot, member, values.after),
              .sender = nullptr});
    }
}

int change_value(const fixed_module &module, int slot, int value)
{
    const int before = load_word(module.values.cur[slot]);
    // Store the value before the changed flag: a save that sees the flag must also see the value,
    // or it would clear the flag of a value that it has not written.
    store_word(module.values.cur[slot], value);
    accept_change(module.stamp);
    if (has_observers())
        tell_change_of(module, slot, {.before = before, .after = value}, tell_change);
    return 1;
}

int set_as_requested(const fixed_module &module, int instance, const fixed_member &member,
                     int number, const char *text)
{
    const int slot = slot_of(module, instance, member);
    const int needed = is_named(member) ? PARA_PRESENT_AS_NAME : PARA_PRESENT_AS_NUMBER;
    if ((load_word(module.values.exist[slot]) & needed) == 0)
        return 0;
    const int value = is_named(member) ? number_of_text(*member.names, text) : number;
    return set_value(module, slot, value);
}

int set_member(const fixed_module &module, const char *name, int number, const char *text)
{
    const fixed_member *const member = find_member(module, name);
    if (member == nullptr || (is_named(*member) && text == nullptr))
        return 0;
    return set_as_requested(module, 0, *member, number, text);
}
