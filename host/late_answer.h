// Answers that are sent after the command's handler has returned: to wait in it would hold up every
// other client.
#pragma once

#include "request.h"

struct late_answer {
    int socket;
    sockaddr_in sender;
    json_ptr reply;
};

// How many requests of a kind may wait. More are not answered, and so repeated by their clients.
inline constexpr size_t most_late_answers = 32;

// The answer to the message, whose handler answers nothing then.
late_answer answer_later(const para_message &message, json_ptr reply);

void send(const late_answer &answer);
