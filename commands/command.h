// What a command of the kit is given and gives.
#pragma once

#include "camparam/command.h"
#include "json.h"

struct request {
    int mode; // PARA_GET or PARA_SET
    const para_message &message;
    const cJSON *data; // the object "data"; null when the request has none
};

// compactly: the reply has no line breaks and blanks. later: the command replies itself. invalid:
// it is not carried out, and the client told so.
enum class answered { now, compactly, later, invalid };

// Adds to a reply that has "msg_name" and "msg_id" of the request already. On the store's thread.
using command_function = answered (*)(const request &request, json_builder &reply);

answered answer_changes(const request &request, json_builder &reply);
answered answer_check(const request &request, json_builder &reply);
answered answer_confirm(const request &request, json_builder &reply);
answered answer_describe(const request &request, json_builder &reply);
answered answer_lens(const request &request, json_builder &reply);
answered answer_log(const request &request, json_builder &reply);
answered answer_pages(const request &request, json_builder &reply);
answered answer_reload(const request &request, json_builder &reply);
answered answer_reset(const request &request, json_builder &reply);
answered answer_save(const request &request, json_builder &reply);
answered answer_status(const request &request, json_builder &reply);
answered answer_style(const request &request, json_builder &reply);
