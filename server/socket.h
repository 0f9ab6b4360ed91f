// The server's socket.
#pragma once

#include <sys/socket.h>
#include <sys/types.h>

#include "camparam/command.h"

struct reception {
    ssize_t length; // -1: nothing was received, errno tells why
    // Only the guard looks for these.
    bool to_many; // sent to a broadcast or multicast address
    bool cut;     // longer than what is received of it
};

// Opens a second socket on the server's port, for what this machine sends to its loopback address:
// a flood from elsewhere fills the queue of the first one. Returns it, or -1.
int open_loopback_socket(int server);

// Receives one datagram without waiting, and ends its text.
reception receive_datagram(int socket, para_message &message, socklen_t &sender_size);
