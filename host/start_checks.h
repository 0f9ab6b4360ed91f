// What a host makes sure of before it starts the store.
#pragma once

#include "options.h"

// Checks home folder, port and data folder, makes and locks the latter. Returns false, with a
// message that names path and reason, when the store should not be started.
bool pass_start_checks(const options &chosen);
