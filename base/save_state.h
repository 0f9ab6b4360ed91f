// What is known of a module's changes and of its saved file.
#pragma once

#include <sys/types.h>

#include <ctime>

#include "camparam/guard.h"

// Where a file was missing when last looked for.
struct missed_file {
    bool missing;
    dev_t device; // of its folder; zeros: that was missing, too
    ino_t folder;
};

// Zero at first. Its functions may be called from any thread.
struct save_state {
    unsigned changes;   // accepted since start
    unsigned failures;  // in a row, each after the wait for the one before
    timespec failed_at; // the last of them, CLOCK_MONOTONIC
    missed_file missed;
    bool torn;               // its file may hold the beginning of an earlier text
    unsigned unsynced;       // the turn of syncs that it was last saved in; 0: not saved
    para_module_status last; // of the last save and of the start; its changes are not used
};

para_module_status status_of(const save_state &state);
void add_flags(save_state &state, unsigned flags);
void remove_flags(save_state &state, unsigned flags);

// False, with the guard on, for what was not loaded: saving would overwrite it.
bool may_be_saved(const save_state &state);

// With the guard on: whether the last save failed so recently that the next one has to wait.
bool waits_to_retry(const save_state &state);

void note_missed(save_state &state, const missed_file &missed);
missed_file last_missed(const save_state &state);

// Whether the file may be what a write left that was not completed.
void note_torn(save_state &state, bool torn);
bool is_torn(const save_state &state);

// Takes note that a module could not be loaded. Returns -1, as start-up functions do.
int note_load_failure(save_state &state, const char *module);

// The save of a module that may not be saved. Returns EOF, as save functions do.
int refuse_save(const char *module);

void note_saved(save_state &state, unsigned changes);
void note_failure(save_state &state, int error);

// --- Flushing the file systems, with the guard on ---

// Takes note of how it ended: 0, or an error number, which is then that of all that was saved since
// the last good one.
void note_sync(int error);

// Whether one has failed and is to be tried again by now.
bool is_sync_due();
