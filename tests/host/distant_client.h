// Clients outside the loopback network, on this machine.
#pragma once

#include <netinet/in.h>

#include <cstddef>
#include <string>

#include "camparam/command.h"

sockaddr_in sender_of(const char *address, int port);

// An address of this machine outside the loopback network, given to the loopback interface if there
// is none and that is allowed; the empty text when it is not.
std::string distant_address();

// A client at an address and port of its own.
class distant_client {
public:
    explicit distant_client(const std::string &address, int port = 0);
    ~distant_client();
    distant_client(const distant_client &) = delete;
    distant_client &operator=(const distant_client &) = delete;

    // An apostrophe stands for a quote.
    void send(const std::string &text, int port = PARA_SERVER_PORT) const;

    // To another address of this machine than the loopback's.
    void send_to(const std::string &address, int port, const std::string &text) const;

    // The bytes of the next answer; 0 when none comes in that time.
    size_t receive(int timeout_ms) const;

private:
    int descriptor;
};
