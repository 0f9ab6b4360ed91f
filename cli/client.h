// The requests that the store understands.
#pragma once

#include <string>
#include <vector>

#include "connection.h"
#include "json.h"

// A member and the value that it is to get.
struct assignment {
    std::string member;
    std::string value;
    bool number; // how the value travels; a number's text has passed parse_int()
};

class client {
public:
    explicit client(server_address address) : server(std::move(address)) {}

    // Asks a module for members, or for all with the one name "all", and adds what it answers to
    // the object. Returns whether the module answered at all.
    bool get(const std::string &module, const std::vector<std::string> &members, cJSON *found);

    // Sets members of a module, through a command when one is named. The answer to a set request
    // does not tell what was taken.
    void set(const std::string &module, const std::string &command,
             const std::vector<assignment> &values);

    // Calls a command with "msg_type" "api_get" or "api_set"; no data when it is null. Returns the
    // answer without its identifiers, or null when the host does not know the command or the
    // command failed.
    json_ptr call(const char *type, const std::string &command, json_ptr data);

    // Sends any JSON text and returns the answer as it came.
    std::string raw(const std::string &request);

    // Sends a request in web names, "get" or "set", with a query unless it is empty. Returns the
    // answer, which is a query too, or an error text such as "PAGE=null".
    std::string web(const char *type, const std::string &page, const std::string &query);

    // Sends a datagram that is no request, and waits for nothing.
    void send(const std::string &datagram);

private:
    json_ptr start_request(const char *type, const std::string &name);
    // The answer to a request. Commands of other hosts, and the error answer, may lack "msg_id".
    json_ptr request_answer(const cJSON *request, bool id_may_lack);

    server_address server;
    int last_id = 0;
};

// Adds a value to an object in the form in which it travels.
void add_value(cJSON *object, const assignment &value);
