// The receiving side of share datagrams.
#pragma once

#include <sys/types.h>

// Hands a received datagram to the host's handler. Returns whether it was one for it: it is of that
// form, which no JSON text is, and a handler is set.
bool take_share_datagram(const char *bytes, ssize_t length);
