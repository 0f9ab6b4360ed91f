// Memory that ran out, which functions of the host and of the JSON library tell by a result that
// has other reasons too: a file that cannot be read, a text that is not JSON.
#pragma once

#include <cerrno>

// What get_opt and set_opt functions return when memory ran out; no reply is sent then.
constexpr int no_memory = -ENOMEM;

// Tells why a call has failed. To be asked at once: any other call may change errno.
class memory_watch {
public:
    memory_watch() { errno = 0; }
    bool ran_out() const { return errno == ENOMEM; }
};
