// A device that needs no memory, so that only the store's and its host platform's own is counted.
// It stands in for tests/support/device.cpp, which records everything on the heap.
#include <cstdarg>
#include <cstdio>

#include "camparam/platform.h"
#include "support/device.h"

extern "C" {

PARA_API void wnk_traceout(int, const char *format, ...)
{
    char text[4096];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof text, format, arguments); // its arguments must be there
    va_end(arguments);
}

PARA_API int lib_system(const char *)
{
    return 0;
}

PARA_API int add_fifo_work(const fifo_work *, int)
{
    return 0;
}

} // extern "C"

void set_trace_level(int level)
{
    __atomic_store_n(&dbgout_profile[1], level, __ATOMIC_RELAXED);
}
