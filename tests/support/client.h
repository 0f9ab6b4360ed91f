// A UDP client of a store on this machine.
#pragma once

#include <optional>
#include <string>

#include "camparam/command.h"

class Client {
public:
    explicit Client(int port = PARA_SERVER_PORT);
    ~Client();

    void send(const std::string &datagram);
    // The next reply; a null text when none comes within the time.
    std::optional<std::string> receive(int timeout_ms = 20000);
    // Sends a JSON text (an apostrophe stands for a quote) and returns the reply.
    std::optional<std::string> request(std::string text);
    // The reply to a request without blanks, an apostrophe for a quote; "none" when none comes.
    std::string ask(const std::string &text);
    // Whether the store has served everything sent so far without a reply to it: its answer to a
    // request of the client's own comes first.
    bool stays_silent();

private:
    int descriptor;
};
