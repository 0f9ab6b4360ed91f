// Servers whose round trips are measured, each with its client's end.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bench/support/requests.h"

class contender {
public:
    contender() = default;
    virtual ~contender() = default;
    contender(const contender &) = delete;
    contender &operator=(const contender &) = delete;

    virtual std::string name() const = 0;

    // Takes over the values of the store, from its reply to the request for all members.
    virtual void load(const std::string &) {}

    // Makes ready for requests of a kind, to which the store replies with that text.
    virtual void prepare(const request_kind &kind, const std::string &reply) = 0;

    // Sends the request of that turn, and waits until all of the reply is there.
    virtual void ask(size_t turn) = 0;
};

using contenders = std::vector<std::unique_ptr<contender>>;

std::unique_ptr<contender> store_on(int port); // runs in this process
std::unique_ptr<contender> bare_echo();
std::unique_ptr<contender> cjson_floor();
std::unique_ptr<contender> parsing_floor(); // parses the request, and copies the reply

// In a process of its own; null, said on standard error, where it is not installed.
std::unique_ptr<contender> redis_over_tcp();
std::unique_ptr<contender> redis_over_unix_socket();
std::unique_ptr<contender> dbus_properties();
