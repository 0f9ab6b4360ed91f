// Telling the host of accepted changes, and of the client that asked for them.
#pragma once

struct sockaddr_in;

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

using change_observer = void (*)(const char *row, const sockaddr_in *sender);

// Null for none. Asked first where the name of the row has to be made.
change_observer current_observer();

// Tells the observer, if there is one. Holding no lock.
void tell_observer(const char *row);
