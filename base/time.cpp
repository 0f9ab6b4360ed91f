#include "base/time.h"

timespec monotonic_now()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now;
}
