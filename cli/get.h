// Printing values.
#pragma once

#include <string>
#include <vector>

#include "client/client.h"
#include "client/failure.h"

// Of modules or settings, as texts on the command line.
exit_code print_settings(client &host, const std::vector<std::string> &texts, bool as_json);
