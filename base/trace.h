// Trace messages: the one way in which the store speaks to its developer.
#pragma once

#include "camparam/platform.h"

enum { PARA_ERROR = 3, PARA_INFO = 6, PARA_DUMP = 7 };

// Emits a message, with prefix and line break, when the trace level admits it. The format is a
// literal. PARA_TRACE_AS names the function for code that several modules share.
#define PARA_TRACE_AS(function, level, ...)                                                        \
    do {                                                                                           \
        if (para_traces(level))                                                                    \
            PARA_TRACE_FORMAT(function, level, __VA_ARGS__, "");                                   \
    } while (0)
#define PARA_TRACE(level, ...) PARA_TRACE_AS(__func__, level, __VA_ARGS__)

// The empty text behind the arguments serves the "%s" behind the format: a message without
// arguments of its own needs no second macro.
#define PARA_TRACE_FORMAT(function, level, format, ...)                                            \
    wnk_traceout(level, "[para %s +%-4d]" format "%s\n", function, __LINE__, __VA_ARGS__)

inline bool para_traces(int level)
{
    return __atomic_load_n(&dbgout_profile[1], __ATOMIC_RELAXED) >= level;
}
