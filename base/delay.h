// Delays of saves and of their repetition.
#pragma once

#include <ctime>

// Whether so much time has passed since then. With the guard on, also when that lies as far ahead:
// the clock was set back, and would be waited for.
bool has_passed(const timespec &since, long long delay_ms);
