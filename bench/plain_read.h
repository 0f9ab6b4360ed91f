/* A global array of the size of the largest tables, and a function that reads a slot of it, in a
 * shared library like the store's getters. */
#ifndef PLAIN_READ_H
#define PLAIN_READ_H

#include "camparam/video.h"

PARA_BEGIN_DECLS

PARA_API extern int plain_values[PARA_VIDEO_SLOTS];
PARA_API int plain_read(int slot);

PARA_END_DECLS

#endif
