// Requests that come again because the client has not got the answer.
#pragma once

#include "camparam/command.h"
#include "json.h"

// The last answers of a command that must not be carried out twice. A request is repeated when the
// same text comes from the same address and port; without "msg_id" it always is a new one. On the
// store's thread.
class given_answers {
public:
    // Makes the reply the answer that the request was given. Returns false for a new request.
    bool give_again(const para_message &message, json_builder &reply);

    // Keeps the answer until a time of CLOCK_MONOTONIC, or until four others are kept. Returns
    // false, and there is no reply, when memory runs out.
    bool keep(const para_message &message, json_builder &reply, long long until_ms);

private:
    // Not freed at the end: the store's thread may outlive static objects.
    struct given_answer {
        char *request; // null: the place is free
        char *reply;
        sockaddr_in client;
        long long until_ms;

        bool answers(const para_message &message) const;
    };

    static void forget(given_answer &answer);

    given_answer kept[4] = {};
    unsigned last = 0;
};

// How long a client may repeat what has been carried out, in milliseconds.
inline constexpr long long repeats_ms = 60000;
