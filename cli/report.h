// What became of changes.
#pragma once

#include <vector>

#include "client/change.h"
#include "client/outcome.h"

// Compares the changes with the values that were read back, an object for each module, and counts.
// Prints the accepted values on standard output and the rest as messages.
void report_changes(client &host, const std::vector<change> &changes, const cJSON *values,
                    bool as_json, outcome &result);
