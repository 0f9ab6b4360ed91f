// What the kernel says of another thread of this process.
#pragma once

#include <sys/types.h>

// Whether the thread sleeps and goes on sleeping, as one does that waits for a lock or another
// thread. One that works, or sleeps in short turns, does not.
bool stays_asleep(pid_t thread);
