// The rows "msg_name" and "msg_id", which echo a request's identifiers into its reply.
#include "base/memory.h"
#include "base/text.h"
#include "base/trace.h"
#include "camparam/module.h"

// Whether the row name and the member's key agree over the length of the key.
static bool is_asked_for(const cJSON *item, const char *name)
{
    return item->string != nullptr && begins_with(name, item->string);
}

int para_get_msg_name_opt(const char *, const cJSON *item, cJSON **answer, const char *name)
{
    PARA_TRACE(PARA_INFO, "inter");
    if (!is_asked_for(item, name) || item->valuestring == nullptr)
        return 0;
    *answer = cJSON_CreateString(item->valuestring);
    return *answer != nullptr ? 0 : no_memory;
}

int para_get_msg_id_opt(const char *, const cJSON *item, cJSON **answer, const char *name)
{
    PARA_TRACE(PARA_INFO, "inter");
    if (!is_asked_for(item, name))
        return 0;
    *answer = cJSON_CreateNumber(item->valueint);
    return *answer != nullptr ? 0 : no_memory;
}

int para_free_msg_name_opt(void *)
{
    return 0;
}
