#include "base/save_state.h"

#include <pthread.h>

#include <cstdio>

#include "base/counters.h"
#include "base/delay.h"
#include "base/guard.h"
#include "base/lock.h"
#include "base/time.h"
#include "base/trace.h"
#include "base/word.h"
#include "camparam/platform.h"

// Guards all members of all states but the counts of changes. Never held while a file is written.
static pthread_mutex_t states_mutex = PTHREAD_MUTEX_INITIALIZER;

// A good sync ends a turn.
static save_state syncs;
static unsigned sync_turn = 1;
// Whether the last one failed: read without the lock, as every turn of the store's thread asks.
static int sync_failed;

static bool is_kept_from_saving(unsigned flags)
{
    return (flags & PARA_STATUS_NOT_SAVED) != 0 ||
           (guard_is_on() && (flags & PARA_STATUS_LOAD_FAILED) != 0);
}

para_module_status status_of(const save_state &state)
{
    const lock_guard guard(states_mutex);
    para_module_status status = state.last;
    status.changes = __atomic_load_n(&state.changes, __ATOMIC_ACQUIRE);
    if (status.error == 0 && state.unsynced == sync_turn)
        status.error = syncs.last.error;
    if (is_kept_from_saving(status.flags))
        status.flags |= PARA_STATUS_NOT_SAVED;
    return status;
}

void add_flags(save_state &state, unsigned flags)
{
    const lock_guard guard(states_mutex);
    state.last.flags |= flags;
}

void remove_flags(save_state &state, unsigned flags)
{
    const lock_guard guard(states_mutex);
    state.last.flags &= ~flags;
}

bool may_be_saved(const save_state &state)
{
    if (!guard_is_on())
        return true;
    const lock_guard guard(states_mutex);
    return !is_kept_from_saving(state.last.flags);
}

void note_missed(save_state &state, const missed_file &missed)
{
    const lock_guard guard(states_mutex);
    state.missed = missed;
}

missed_file last_missed(const save_state &state)
{
    const lock_guard guard(states_mutex);
    return state.missed;
}

void note_torn(save_state &state, bool torn)
{
    const lock_guard guard(states_mutex);
    state.torn = torn;
}

bool is_torn(const save_state &state)
{
    const lock_guard guard(states_mutex);
    return state.torn;
}

int note_load_failure(save_state &state, const char *module)
{
    add_flags(state, PARA_STATUS_LOAD_FAILED);
    if (guard_is_on())
        PARA_TRACE(PARA_ERROR, "%s is not loaded, and will not be saved", module);
    return -1;
}

int refuse_save(const char *module)
{
    PARA_TRACE(PARA_ERROR, "%s is not saved, as its file was not loaded", module);
    return EOF;
}

// 2, 4, 8 ... 60 s
static long long retry_delay_ms(unsigned failures)
{
    constexpr long long first = 2000, longest = 60000;
    const long long delay = failures < 6 ? first << (failures - 1) : longest;
    return delay < longest ? delay : longest;
}

// With the mutex held.
static bool is_waiting(const save_state &state)
{
    return guard_is_on() && state.failures > 0 &&
           !has_passed(state.failed_at, retry_delay_ms(state.failures));
}

bool waits_to_retry(const save_state &state)
{
    if (!guard_is_on())
        return false;
    const lock_guard guard(states_mutex);
    return is_waiting(state);
}

static long long real_time_ms()
{
    constexpr timespec epoch = {};
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return lib_common_diff_msec_timespec(&epoch, &now);
}

void note_saved(save_state &state, unsigned changes)
{
    count_one(counter::saves);
    const lock_guard guard(states_mutex);
    state.failures = 0;
    state.unsynced = sync_turn;
    state.last.saved = changes;
    state.last.saved_at = real_time_ms();
    state.last.error = 0;
}

void note_failure(save_state &state, int error)
{
    count_one(counter::failed_saves);
    const lock_guard guard(states_mutex);
    state.last.error = error;
    if (is_waiting(state))
        return; // forced, or of another row with the same state: no further try
    state.failures++;
    state.failed_at = monotonic_now();
}

// --- Flushing the file systems ---

void note_sync(int error)
{
    store_word(sync_failed, error != 0 ? 1 : 0);
    if (error != 0) {
        note_failure(syncs, error);
        return;
    }
    const lock_guard guard(states_mutex);
    sync_turn++;
    syncs = {};
}

bool is_sync_due()
{
    if (load_word(sync_failed) == 0)
        return false;
    const lock_guard guard(states_mutex);
    return guard_is_on() && syncs.failures > 0 && !is_waiting(syncs);
}
