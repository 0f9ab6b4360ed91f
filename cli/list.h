// Lists of modules and settings.
#pragma once

#include <string>
#include <vector>

#include "program.h"

// Whether what is given to "get" or "set" asks what there is: nothing, or names of modules alone.
bool is_list_of_modules(const std::vector<std::string> &texts);

// The modules with the number of their settings; of those that are named the settings.
exit_code print_modules(client &host, const std::vector<std::string> &names, const program &all);

// Of several hosts, each an object of modules or what print_modules() prints as JSON.
exit_code compare_lists(const program &all, const host_results &results);
