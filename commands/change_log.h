// The last 256 changes of settings.
#pragma once

#include "camparam/guard.h"

struct logged_change {
    unsigned number; // 1 for the first since the start
    long long time;  // CLOCK_REALTIME, milliseconds
    const char *module, *member;
    para_value before, after;
    const char *sender; // its address; "host": the host itself
};

class log_reader {
public:
    // Returns whether it took the change, and wants the next. It is borrowed for the call.
    virtual bool take(const logged_change &change) = 0;

protected:
    ~log_reader() = default;
};

// Shows those behind a number, the oldest first.
void read_log(unsigned after, log_reader &reader);
