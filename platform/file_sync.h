// Writing the file systems back, beside the threads that ask for it.
#pragma once

// sync() on a thread of its own, which runs for all that asked before it began. On the caller's
// thread while the process ends and when no thread can be started. A process that ends waits up to
// 10 s for the last one.
void sync_soon();
