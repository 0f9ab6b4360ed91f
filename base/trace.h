// Trace messages.
#pragma once

#include "camparam/platform.h"

enum { PARA_ERROR = 3, PARA_INFO = 6, PARA_DUMP = 7 };

// The function that a message names, and a line of it. Code that several functions share traces in
// the name of the one that called it, and takes its site as an argument.
struct trace_site {
    const char *function;
    int line;
};
#define PARA_HERE (trace_site{__func__, __LINE__})
#define PARA_IN(function) (trace_site{#function, __LINE__})

// Emits a message, with prefix and line break, when the trace level admits it. The format is a
// literal; ## drops the comma before an empty argument list.
#define PARA_TRACE_AT(site, level, format, ...)                                                    \
    do {                                                                                           \
        if (para_traces(level))                                                                    \
            wnk_traceout(level, "[para %s +%-4d]" format "\n", (site).function, (site).line,       \
                         ##__VA_ARGS__);                                                           \
    } while (0)
#define PARA_TRACE(level, ...) PARA_TRACE_AT(PARA_HERE, level, __VA_ARGS__)

inline bool para_traces(int level)
{
    return __atomic_load_n(&dbgout_profile[1], __ATOMIC_RELAXED) >= level;
}
