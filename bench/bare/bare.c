/* clock_gettime() */
#define _POSIX_C_SOURCE 200809L

#include "bench/bare/bare.h"

enum { slot = 5 };

int bare_cur[PARA_VIDEO_SLOTS], bare_min[PARA_VIDEO_SLOTS], bare_max[PARA_VIDEO_SLOTS];
isp_record bare_records[PARA_ISP_INSTANCES], bare_lowest[PARA_ISP_INSTANCES],
    bare_highest[PARA_ISP_INSTANCES];
struct timespec bare_time;
int bare_changed;

int bare_get(void)
{
    return bare_cur[slot];
}

int bare_get_of_stream(int stream)
{
    return bare_cur[stream * PARA_VIDEO_STREAM_SLOTS + slot];
}

int bare_get_of_record(int instance)
{
    return bare_records[instance].saturation;
}

static int checked_set(int place, int value)
{
    if (value < bare_min[place] || value > bare_max[place] || value == bare_cur[place])
        return 0;
    bare_cur[place] = value;
    return 1;
}

int bare_checked_set(int value)
{
    return checked_set(slot, value);
}

int bare_checked_set_of_stream(int stream, int value)
{
    return checked_set(stream * PARA_VIDEO_STREAM_SLOTS + slot, value);
}

int bare_checked_set_of_record(int instance, int value)
{
    if (value < bare_lowest[instance].saturation || value > bare_highest[instance].saturation ||
        value == bare_records[instance].saturation)
        return 0;
    bare_records[instance].saturation = value;
    return 1;
}

int bare_stamped_set(int value)
{
    if (!checked_set(slot, value))
        return 0;
    clock_gettime(CLOCK_MONOTONIC, &bare_time);
    bare_changed = 1;
    return 1;
}
