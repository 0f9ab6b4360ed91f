// What became of changes.
#pragma once

#include <vector>

#include "client/change.h"
#include "client/outcome.h"

// Compares a change with the value that was read back, in an object of modules, and counts. Prints
// a message unless it was taken. Returns whether it was.
bool report_change(client &host, const change &wanted, const cJSON *values, outcome &result);

// Prints what an answer has refused, and how many names more there are than it tells.
void report_refusals(const cJSON *answer);
void report_omitted(const cJSON *answer);

// report_change() for several. Prints the accepted values, or all as JSON, on standard output.
void report_changes(client &host, const std::vector<change> &changes, const cJSON *values,
                    bool as_json, outcome &result);
