/* The least that functions of another shared library can be that do what the store's accessors do:
 * read a slot of a table, store a value within its range, and stamp what they have stored. */
#ifndef BARE_H
#define BARE_H

#include <time.h>

#include "camparam/camparam.h"

PARA_BEGIN_DECLS

PARA_API extern int bare_cur[PARA_VIDEO_SLOTS], bare_min[PARA_VIDEO_SLOTS],
    bare_max[PARA_VIDEO_SLOTS];
PARA_API extern isp_record bare_records[PARA_ISP_INSTANCES], bare_lowest[PARA_ISP_INSTANCES],
    bare_highest[PARA_ISP_INSTANCES];
PARA_API extern struct timespec bare_time;
PARA_API extern int bare_changed;

PARA_API int bare_get(void);
PARA_API int bare_get_of_stream(int stream);
PARA_API int bare_get_of_record(int instance);

/* Return 1 when the value was taken, else 0. */
PARA_API int bare_checked_set(int value);
PARA_API int bare_checked_set_of_stream(int stream, int value);
PARA_API int bare_checked_set_of_record(int instance, int value);
PARA_API int bare_stamped_set(int value);

PARA_END_DECLS

#endif
