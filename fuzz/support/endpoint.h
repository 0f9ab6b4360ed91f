// A client of the store, on a socket of its own.
#pragma once

#include <netinet/in.h>

#include <optional>
#include <string>

class endpoint {
public:
    endpoint();
    ~endpoint();
    endpoint(const endpoint &) = delete;
    endpoint &operator=(const endpoint &) = delete;

    // Hands the store a datagram as its thread does: the share form to the host's handler, others
    // to the dispatcher. Longer ones are cut. Returns the reply.
    std::optional<std::string> ask(const std::string &datagram);

    const sockaddr_in &address() const { return own_address; }

    // The socket that the store sends from.
    int server() const { return server_socket; }

    // The datagram that waits, or nothing.
    std::optional<std::string> receive();

private:
    int server_socket;
    int socket;
    sockaddr_in own_address = {};
};
