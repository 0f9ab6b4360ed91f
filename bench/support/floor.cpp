#include "bench/support/floor.h"

#include <cstring>

#include "bench/support/device.h"

json_floor::json_floor(const std::string &reply)
{
    cJSON *const tree = cJSON_Parse(reply.c_str());
    if (tree == nullptr)
        give_up("a reply that is no JSON");
    const cJSON *const object = cJSON_GetObjectItem(tree, "isp0");
    has_members = object != nullptr;
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, object) members.emplace_back(member->string, member->valueint);
    cJSON_Delete(tree);
}

char *json_floor::answer(const char *request) const
{
    cJSON *const tree = cJSON_Parse(request);
    cJSON *const reply = cJSON_CreateObject();
    cJSON_AddStringToObject(reply, "msg_name", cJSON_GetObjectItem(tree, "msg_name")->valuestring);
    cJSON_AddNumberToObject(reply, "msg_id", cJSON_GetObjectItem(tree, "msg_id")->valueint);
    if (has_members) {
        cJSON *const object = cJSON_CreateObject();
        for (const auto &[name, value] : members)
            cJSON_AddNumberToObject(object, name.c_str(), value);
        cJSON_AddItemToObject(reply, "isp0", object);
    }
    char *const printed = cJSON_Print(reply);
    cJSON_Delete(reply);
    cJSON_Delete(tree);
    return printed;
}

size_t parse_floor::answer(const char *request, char *reply) const
{
    cJSON_Delete(cJSON_Parse(request));
    memcpy(reply, text.data(), text.size());
    return text.size();
}
