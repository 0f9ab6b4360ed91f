#include "run.h"

#include "moment.h"

static long long began_real_ms, began_ms;

void begin_run()
{
    began_real_ms = real_ms();
    began_ms = monotonic_ms();
}

long long start_of_run()
{
    return began_real_ms;
}

long long seconds_of_run()
{
    return (monotonic_ms() - began_ms) / 1000;
}
