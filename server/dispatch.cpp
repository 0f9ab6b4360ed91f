// Classifies requests by "msg_type".
#include <cstring>

#include "base/guard.h"
#include "base/json.h"
#include "base/observer.h"
#include "base/text.h"
#include "base/trace.h"
#include "camparam/command.h"
#include "camparam/json_util.h"

// With the guard on nothing but white space may stand behind the document.
static json_ptr parse_request(const char *text)
{
    return json_ptr(cJSON_ParseWithOpts(text, nullptr, guard_is_on()));
}

int para_server_message_Process(para_message *message)
{
    const request_scope scope(&message->sender);
    json_ptr request = parse_request(message->text);
    if (!request) {
        PARA_TRACE(PARA_ERROR, "cJSON_Parse err,Rec buffer: %s", message->text);
        return 0;
    }

    const char *const type = json_object_get_string(find_item(request.get(), "msg_type"));
    if (type == nullptr) {
        PARA_TRACE(PARA_ERROR, "get msg_type err");
        return 0;
    }

    // Any prefix of "get" and "set" counts, also the empty one; longer types are commands. The
    // order of the tests matters (Server.TellsRequestsByTheirType).
    if (begins_with("get", type))
        Recive_message_Process_gset(message, request.release(), PARA_GET);
    else if (begins_with("set", type))
        Recive_message_Process_gset(message, request.release(), PARA_SET);
    else if (strstr(type, "get") != nullptr)
        Recive_message_Process_api(message, request.release(), PARA_GET);
    else if (strstr(type, "set") != nullptr)
        Recive_message_Process_api(message, request.release(), PARA_SET);
    return 0;
}
