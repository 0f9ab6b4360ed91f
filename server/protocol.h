// Converters of requests that come in another form, told by their "msg_from", and of the replies.
#pragma once

#include <cjson/cJSON.h>

struct para_protocol {
    const char *name;
    int (*init)();
    // A new request tree, or null with a reply text of at most size - 1 characters, or none.
    cJSON *(*convert)(const char *request, char *error, int size);
    // Heap text for free(), or null.
    char *(*reverse_convert)(cJSON *reply);
};

extern const para_protocol module_para_protocol_handle[];
extern const int module_para_protocol_handle_num;
