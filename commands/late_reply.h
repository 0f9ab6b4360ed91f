// The reply to a request whose command replies itself.
#pragma once

#include "camparam/command.h"
#include "json.h"

// With the object "failed", unless that is empty. Nothing is sent without one: memory ran out.
void send_late(int socket, const sockaddr_in &client, json_ptr reply, const cJSON *failed);
