// What start-up and the request handlers share about modules and protocol converters.
#pragma once

#include <cjson/cJSON.h>

// The parsed web-name file, or null. Fixed after start-up.
extern cJSON *para_config;

// Translates requests of another form, told by their "msg_from", and the replies to them.
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

// Counts the static rows of the module table; 0 when none is named "end".
int count_static_modules();
