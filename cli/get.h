// Printing values.
#pragma once

#include <string>
#include <vector>

#include "program.h"

// Of modules or settings, as texts on the command line.
exit_code print_settings(client &host, const std::vector<std::string> &texts, const program &all);

// Of several hosts, each an object of modules.
exit_code compare_values(const program &all, const host_results &results);
