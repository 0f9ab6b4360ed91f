// Parses requests to commands, and starts replies that echo their identifiers.
#pragma once

#include <cjson/cJSON.h>

#include <memory>

#include "camparam/command.h"

struct json_delete {
    void operator()(cJSON *node) const { cJSON_Delete(node); }
};
using json_ptr = std::unique_ptr<cJSON, json_delete>;

json_ptr parse_request(const para_message &message);

// The request's "data", or null when it is absent or not an object.
const cJSON *data_of(const json_ptr &request);

// A new object with the request's "msg_name" and "msg_id", if present.
json_ptr start_reply(const json_ptr &request);
