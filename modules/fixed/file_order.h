// The members of a module, and the order in which files and complete answers hold them.
#pragma once

#include "modules/fixed/value_names.h"

struct fixed_member {
    int slot; // within its instance
    const char *key;
    const value_names *names = &null_names;
    bool loaded = true;   // from the files
    bool queried = true;  // by its name, and dumped
    bool settable = true; // by its name
    bool written = true;  // to the current file and to complete answers
};

// The members, their slots in sequence.
struct fixed_members {
    const fixed_member *first;
    int count;

    const fixed_member *begin() const { return first; }
    const fixed_member *end() const { return first + count; }
};

template <int count> constexpr fixed_members list_of(const fixed_member (&members)[count])
{
    return {members, count};
}

// A member in a file: the slot that is written, and the slot whose presence decides that it is.
struct file_slot {
    int slot;
    int if_present;
};

struct file_slots {
    const file_slot *first;
    int count;

    const file_slot *begin() const { return first; }
    const file_slot *end() const { return first + count; }
};

// Files hold members in slot order, except for these.
struct file_move {
    int slot;
    int before;
    int if_present; // usually the same slot
};

template <int capacity> struct file_order {
    file_slot rows[capacity];
    int count;

    constexpr file_slots list() const { return {rows, count}; }
};

// Whether the order holds every written member exactly once. A move whose target does not exist
// would lose its member.
template <int members>
constexpr bool is_permutation(const file_order<members> &order, const fixed_member (&all)[members])
{
    for (const fixed_member &member : all) {
        int times = 0;
        for (int i = 0; i < order.count; i++)
            times += order.rows[i].slot == member.slot ? 1 : 0;
        if (times != (member.written ? 1 : 0))
            return false;
    }
    return true;
}

// Whether the slots are consecutive; answer_all() finds members by slot.
template <int members> constexpr bool in_slot_order(const fixed_member (&all)[members])
{
    for (int i = 0; i < members; i++) {
        if (all[i].slot != all[0].slot + i)
            return false;
    }
    return true;
}

// Not constexpr: to reach one of these while a table is computed is an error at compile time.
void slots_are_not_consecutive();
void a_move_loses_its_member();

template <int members> constexpr file_order<members> order_of(const fixed_member (&all)[members])
{
    if (!in_slot_order(all))
        slots_are_not_consecutive();
    file_order<members> order = {};
    for (const fixed_member &member : all) {
        if (member.written)
            order.rows[order.count++] = {.slot = member.slot, .if_present = member.slot};
    }
    return order;
}

template <int members>
constexpr file_order<members> with_move(const file_order<members> &order, const file_move &move)
{
    file_order<members> moved = {};
    for (int i = 0; i < order.count; i++) {
        if (order.rows[i].slot == move.before)
            moved.rows[moved.count++] = {.slot = move.slot, .if_present = move.if_present};
        if (order.rows[i].slot != move.slot)
            moved.rows[moved.count++] = order.rows[i];
    }
    return moved;
}

template <int members, int moves>
constexpr file_order<members> order_of(const fixed_member (&all)[members],
                                       const file_move (&moved)[moves])
{
    file_order<members> order = order_of(all);
    for (const file_move &move : moved)
        order = with_move(order, move);
    if (!is_permutation(order, all))
        a_move_loses_its_member();
    return order;
}
