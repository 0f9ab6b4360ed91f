// The clock of changes and retries.
#pragma once

#include <ctime>

timespec monotonic_now();
