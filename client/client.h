// Requests to the store.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "client/connection.h"
#include "client/json.h"

enum class value_type {
    text,
    json, // the text is JSON, a number for the most part
};

// A member and its new value.
struct assignment {
    json_ptr as_node() const;

    std::string member; // empty: the module is itself the setting
    std::string value;
    value_type type;
};

class client {
public:
    explicit client(std::unique_ptr<connection> way) : store(std::move(way)) {}
    explicit client(server_address address)
        : client(std::make_unique<network_connection>(std::move(address)))
    {
    }

    // Gets members of a module, or all for the one name "all", and adds the module to an object of
    // modules: an object of members or, of a module that is itself a setting, its value. Returns
    // whether the module answered.
    bool get(const std::string &module, const std::vector<std::string> &members, cJSON *modules);

    // Sets members of a module by a set request, or by a command if one is named. The answer to a
    // set request does not tell what was accepted: read the values back.
    void set(const std::string &module, const std::string &command,
             const std::vector<assignment> &values);

    // Calls a command with "msg_type" "api_get" or "api_set" and optional data. Returns the
    // answer without its identifiers, or null when the host does not know the command or the
    // command failed.
    json_ptr call(const char *type, const std::string &command, json_ptr data);

    // Sends a JSON text as it is and returns the answer as it is.
    std::string raw(const std::string &request);

    // Sends a "get" or "set" request in web names, with a query unless it is empty. Returns the
    // answer: a query, or an error text such as "PAGE=null".
    std::string web(const char *type, const std::string &page, const std::string &query);

    // Asks for nothing. Throws a failure when the host does not answer.
    void ping();

    // Sends a datagram that gets no answer.
    void send(const std::string &datagram);

private:
    json_ptr start_request(const char *type, const std::string &name);
    // The answer to a request. Commands of other hosts, and the error answer, may lack "msg_id".
    json_ptr request_answer(const cJSON *request, bool id_may_lack);

    std::unique_ptr<connection> store;
    int last_id = 0;
};

// Whether a text may be the answer to a request, which is null when it is no JSON: it is not empty
// and does not repeat the identifiers of another request.
bool may_answer(const cJSON *request, const std::string &answer);
