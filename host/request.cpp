#include "request.h"

json_ptr parse_request(const para_message &message)
{
    return json_ptr(cJSON_Parse(message.text));
}

const cJSON *data_of(const json_ptr &request)
{
    const cJSON *const data = cJSON_GetObjectItemCaseSensitive(request.get(), "data");
    return cJSON_IsObject(data) ? data : nullptr;
}

json_ptr start_reply(const json_ptr &request)
{
    json_ptr reply(cJSON_CreateObject());
    // Ignores case, as the store does when it looks the command up.
    const cJSON *const name = cJSON_GetObjectItem(request.get(), "msg_name");
    if (cJSON_IsString(name))
        cJSON_AddStringToObject(reply.get(), "msg_name", name->valuestring);
    const cJSON *const id = cJSON_GetObjectItem(request.get(), "msg_id");
    if (cJSON_IsNumber(id))
        cJSON_AddNumberToObject(reply.get(), "msg_id", id->valueint);
    return reply;
}
