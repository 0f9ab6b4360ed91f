/**
 * @file guard.h
 * What protects settings and service beyond the store's usual behaviour.
 */
#ifndef CAMPARAM_GUARD_H
#define CAMPARAM_GUARD_H

#include "camparam/api.h"

PARA_BEGIN_DECLS

/**
 * Switch the guard on or off. Before platformparam_init(), from the thread that will call that.
 *
 * @param on  Nonzero: on. It is off until set.
 * @return What it was before, 1 or 0.
 */
PARA_API int platformparam_set_guard(int on);

PARA_END_DECLS

#endif
