// Requests and answers as datagrams.
#pragma once

#include <functional>
#include <string>

#include "camparam/command.h"

struct server_address {
    std::string host = "127.0.0.1";
    int port = PARA_SERVER_PORT;
    double timeout_s = 1; // for each request
    int retries = 2;      // further requests when no answer comes
};

// Sends a request, again whenever the time is over, and returns the first answer that fits. Uses a
// socket of its own, so that a late answer is lost instead of being taken for the next one.
// Throws a failure when none comes or the request is too long.
std::string exchange(const server_address &server, const std::string &request,
                     const std::function<bool(const std::string &answer)> &fits);

// Sends a datagram that nobody answers. Throws a failure when it cannot be sent.
void send_datagram(const server_address &server, const std::string &bytes);
