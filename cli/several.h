// A command on several hosts at once.
#pragma once

#include <string>
#include <vector>

#include "program.h"

// Adds the hosts that a file names, one a line; blank lines and what follows a "#" are left out.
void read_hosts(const std::string &path, std::vector<std::string> &hosts);

// The host that the environment names; null: none.
const char *usual_host();

// Runs on each host, on eight at a time, each in a process of its own. Prints its messages.
host_results run_on_each(program &all, const std::function<exit_code()> &run);

// The status that all have, or the one of partial success.
exit_code status_of(const host_results &results);

// Prints what was found as one object: {"cam1": ..., "cam2": null}.
exit_code print_by_host(const host_results &results);
