#include "base/change.h"

#include <cstdio>

#include "base/delay.h"
#include "base/guard.h"
#include "base/time.h"
#include "base/word.h"

void count_change(const change_stamp &stamp)
{
    __atomic_fetch_add(&stamp.saves->changes, 1U, __ATOMIC_RELEASE);
}

void mark_change(const change_stamp &stamp)
{
    __atomic_store_n(stamp.changed, 1, __ATOMIC_RELEASE); // pairs with the acquire in change_due()
}

void stamp_change(const change_stamp &stamp)
{
    store_time(*stamp.time, monotonic_now());
    mark_change(stamp);
}

void accept_change(const change_stamp &stamp)
{
    store_time(*stamp.time, monotonic_now()); // the clock would wait for the count
    count_change(stamp);
    mark_change(stamp);
}

bool change_due(const change_stamp &stamp, int delay_ms)
{
    if (__atomic_load_n(stamp.changed, __ATOMIC_ACQUIRE) != 1)
        return false;
    return has_passed(load_time(*stamp.time), delay_ms) && may_be_saved(*stamp.saves) &&
           !waits_to_retry(*stamp.saves);
}

// Counts that belong to the marks that it clears are visible behind it.
void clear_change(const change_stamp &stamp)
{
    __atomic_exchange_n(stamp.changed, 0, __ATOMIC_ACQ_REL);
}

unsigned counted_changes(const change_stamp &stamp)
{
    return __atomic_load_n(&stamp.saves->changes, __ATOMIC_ACQUIRE);
}

int end_save(const change_stamp &stamp, unsigned changes, const write_result &written)
{
    if (written.error == 0)
        note_saved(*stamp.saves, changes);
    else
        note_failure(*stamp.saves, written.error);

    // A change while the values were read may be in the file or not.
    if (guard_is_on() && (written.error != 0 || counted_changes(stamp) != changes))
        mark_change(stamp);
    return written.returned;
}
