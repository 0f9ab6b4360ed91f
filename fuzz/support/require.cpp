#include <sys/resource.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "fuzz/support/target.h"

void require(bool holds, const char *format, ...)
{
    if (holds)
        return;
    rlimit unlimited = {};
    getrlimit(RLIMIT_FSIZE, &unlimited); // a target may have lowered it, and stderr be a file
    unlimited.rlim_cur = unlimited.rlim_max;
    setrlimit(RLIMIT_FSIZE, &unlimited);

    va_list arguments;
    va_start(arguments, format);
    fputs("does not hold: ", stderr);
    vfprintf(stderr, format, arguments);
    fputc('\n', stderr);
    va_end(arguments);
    abort();
}
