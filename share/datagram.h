// The receiving side of share datagrams.
#pragma once

#include <sys/types.h>

// Hands a received datagram to the host's handler. Returns false for one of another form (no JSON
// text has that of a share datagram), and while no handler is set.
bool take_share_datagram(const char *bytes, ssize_t length);
