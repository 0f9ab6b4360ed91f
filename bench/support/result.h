// The table of all results, which scripts/bench prints when every program has run.
#pragma once

#include <string>

// Adds a line to the file that the environment variable CAMPARAM_BENCH_TABLE names, if it names
// one: what was measured, and the goal that it is not to exceed.
void add_result(const std::string &what, double measured, double goal);
