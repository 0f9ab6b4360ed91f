// The rows "msg_name" and "msg_id", which echo a request's identifiers into its reply.
#include "base/answer_tree.h"
#include "base/text.h"
#include "base/trace.h"
#include "camparam/module.h"
#include "server/direct_answer.h"

// Whether the row name and the member's key agree over the length of the key.
static bool is_asked_for(const cJSON *item, const char *name)
{
    return item->string != nullptr && begins_with(name, item->string);
}

int answer_msg_name(const char *key, const cJSON *item, const char *name, answer_sink &sink)
{
    PARA_TRACE_AT(PARA_IN(para_get_msg_name_opt), PARA_INFO, "inter");
    if (is_asked_for(item, name) && item->valuestring != nullptr)
        sink.text(key, item->valuestring);
    return 0;
}
DEFINE_GET_OPT(msg_name)

int answer_msg_id(const char *key, const cJSON *item, const char *name, answer_sink &sink)
{
    PARA_TRACE_AT(PARA_IN(para_get_msg_id_opt), PARA_INFO, "inter");
    if (is_asked_for(item, name))
        sink.number(key, item->valueint);
    return 0;
}
DEFINE_GET_OPT(msg_id)

int para_free_msg_name_opt(void *)
{
    return 0;
}
