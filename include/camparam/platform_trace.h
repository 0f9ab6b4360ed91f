/**
 * @file platform_trace.h
 * Secrets in the traces of the reference platform. The store does not need this header; hosts that
 * use libcamparam_platform.so do.
 */
#ifndef CAMPARAM_PLATFORM_TRACE_H
#define CAMPARAM_PLATFORM_TRACE_H

#include "camparam/api.h"

PARA_BEGIN_DECLS

/**
 * Hide what follows a name in trace messages: where a message holds the name of a secret setting,
 * in letters of any case and not as a part of a longer name, wnk_traceout() writes "..." for the
 * rest of it. Names and values of requests and files stand in traces in this order, whatever their
 * form. Once, before other threads trace.
 *
 * @param names  Copied: members, keys and web names.
 * @param count  0: nothing is hidden, as in the beginning.
 * @return 0, or -1 when out of memory; then nothing has changed.
 */
PARA_API int hide_in_traces(const char *const *names, int count);

PARA_END_DECLS

#endif
