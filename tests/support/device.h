// The device that a test runs on: a clock that the test moves, and a record of every trace, shell
// command and work registration. A test program that links it brings these platform functions
// itself; the files, texts and configure objects come from the reference platform.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "camparam/guard.h"
#include "camparam/platform.h"

struct trace_line {
    int level;
    std::string function; // as the prefix names it
    std::string text;     // behind the prefix, line breaks included
    int line = 0;         // as the prefix tells it
    std::string format;   // as the platform got it
};

// Moves CLOCK_MONOTONIC forward for the whole process.
void move_clock(int milliseconds);
// From now on it moves by move_clock() alone.
void stop_clock();
// It stands at this time then.
void set_clock(long long seconds, long nanoseconds = 0);
// Has CLOCK_REALTIME stand at this time.
void set_wall_clock(long long seconds);
// Has a function called whenever it is read, by the reading thread; null for none. The store reads
// it when it stamps a change, so the function sees what stands at that moment.
void watch_clock(void (*watcher)());

// Admits traces up to this level; the store's thread may be reading it.
void set_trace_level(int level);

// All traces so far, or those of one function, in order.
std::vector<trace_line> traces();
std::vector<std::string> traces_of(const std::string &function);
void forget_traces();

// How many traces have exactly this text (without its line break), by this function if one is
// given.
int count_traces(const std::string &text, const std::string &function = "");

// Shell commands that were run by lib_system(), in order.
std::vector<std::string> shell_commands();
// From now on it returns this.
void set_shell_status(int status);

// From now on they fail with this errno; 0: they do not.
void fail_shell_commands(int error);

// Work items that were registered with add_fifo_work(), a list for each call.
std::vector<std::vector<fifo_work>> registered_work();

// The levels at which a text was traced by a function, each once, in order of first use.
std::vector<int> levels_of(const std::string &text, const std::string &function);

// Of a module, which there must be.
para_module_status status_of(const std::string &row);

// Waits until the condition holds, 20 seconds at the most. Returns whether it holds.
bool wait_until(const std::function<bool()> &condition);
