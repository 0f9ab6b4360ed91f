/**
 * @file platform_queue.h
 * Posting work on the reference platform. The store does not need this header; hosts that use
 * libcamparam_platform.so do.
 */
#ifndef CAMPARAM_PLATFORM_QUEUE_H
#define CAMPARAM_PLATFORM_QUEUE_H

#include "camparam/api.h"

PARA_BEGIN_DECLS

/**
 * Post work that was registered with add_fifo_work(). It runs on the queue's own thread, after
 * everything that was posted before. Any thread, the queue's own included.
 *
 * @param name  Name of the work.
 * @param type  Its type; NULL stands for work without a type only.
 * @return Number of items that were queued: all that have this name and type; -1 when none has,
 *         when the thread cannot be started, and when the process is ending. A process that ends
 *         waits for the handler that runs and drops the work behind it.
 */
PARA_API int post_fifo_work(const char *name, const char *type);

PARA_END_DECLS

#endif
