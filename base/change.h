// A module is changed when a setter has accepted a value, and due when it has then been left alone
// for its save delay.
#pragma once

#include <ctime>

#include "base/file.h"
#include "base/save_state.h"

struct change_stamp {
    timespec *time; // of the last accepted change, CLOCK_MONOTONIC
    int *changed;   // 1: accepted and not yet saved
    save_state *saves;
};

inline constexpr int default_save_delay_ms = 2000; // of every module that has none of its own

// Takes note of an accepted change, once it is in force.
void accept_change(const change_stamp &stamp);

// The steps of accept_change(), for changes that differ. The count comes before the mark: a save
// that clears the mark knows the count.
void count_change(const change_stamp &stamp);
void stamp_change(const change_stamp &stamp);

// stamp_change() without the time.
void mark_change(const change_stamp &stamp);

bool change_due(const change_stamp &stamp, int delay_ms);
void clear_change(const change_stamp &stamp);

// How many have been counted. Asked before a save reads the values that it writes.
unsigned counted_changes(const change_stamp &stamp);

// Ends a save of the values that were read when so many changes had been counted. With the guard
// on, one that failed leaves the module changed. Returns what save functions return.
int end_save(const change_stamp &stamp, unsigned changes, const write_result &written);
