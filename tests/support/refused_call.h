// System calls that the kernel refuses, for this process and those that it starts. There is no way
// back, and no privilege is needed.
#pragma once

// From now on the call fails with this error. Threads that run already may call it.
void refuse_call(int number, int error);

// From now on no thread, or no process, starts, for the lack of resources.
void refuse_threads();
void refuse_processes();
