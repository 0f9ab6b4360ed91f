// Whether the guard is on. Fixed before the store starts.
#pragma once

bool guard_is_on();
