// This run of the host.
#pragma once

// Takes note of the start. Before the store starts.
void begin_run();

// CLOCK_REALTIME, in milliseconds: another number in each run.
long long start_of_run();
long long seconds_of_run();
