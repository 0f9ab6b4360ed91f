/* A global array, and a function that reads a slot of it: in a shared library, as the store's. */
#ifndef PLAIN_READ_H
#define PLAIN_READ_H

#include "camparam/api.h"

PARA_BEGIN_DECLS

PARA_API extern int plain_values[66];
PARA_API int plain_read(int slot);

PARA_END_DECLS

#endif
