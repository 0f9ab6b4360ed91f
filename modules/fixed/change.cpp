// Changing the values of a module with fixed members.
#include "base/observer.h"
#include "modules/fixed/fixed_module.h"

int change_value(const fixed_module &module, int slot, int value)
{
    // Store the value before the changed flag: a save that sees the flag must also see the value,
    // or it would clear the flag of a value that it has not written.
    store_word(module.values.cur[slot], value);
    accept_change(module.stamp);
    if (current_observer() != nullptr)
        tell_observer(row_name(module, slot).text);
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
