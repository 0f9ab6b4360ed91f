// The host's say in which datagrams are served.
#pragma once

#include <netinet/in.h>
#include <sys/types.h>

// Asks the host's filter about a received datagram; true while there is none.
bool is_admitted(const sockaddr_in &sender, const char *bytes, ssize_t length);
