// Telling the host of accepted changes, and of the client that asked for them.
#pragma once

#include "camparam/guard.h"

// While it exists, changes that this thread makes are the client's.
class request_scope {
public:
    explicit request_scope(const sockaddr_in *sender);
    ~request_scope();
    request_scope(const request_scope &) = delete;
    request_scope &operator=(const request_scope &) = delete;

private:
    const sockaddr_in *const outer;
};

// Whether anybody is told of changes: asked first where what is told has to be made.
bool has_observers();

// Tell the observers that there are. Holding no lock. The sender is filled in.
void tell_change_of_row(const char *row);
void tell_change_of_setting(const para_setting_change &change);
void tell_change(const para_setting_change &change); // both
