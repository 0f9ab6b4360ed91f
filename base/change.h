// A module is changed when a setter has accepted a value, and due when it has then been left alone
// for its save delay.
#pragma once

#include <ctime>

struct change_stamp {
    timespec *time; // of the last accepted change, CLOCK_MONOTONIC
    int *changed;   // 1: accepted and not yet saved
};

inline constexpr int default_save_delay_ms = 2000; // of every module that has none of its own

void stamp_change(const change_stamp &stamp);
bool change_due(const change_stamp &stamp, int delay_ms);
void clear_change(const change_stamp &stamp);
