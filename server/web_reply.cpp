// Replies to the web pages, translated into query-string form.
#include <algorithm>

#include "base/text_buffer.h"
#include "server/web_modifier.h"
#include "server/web_names.h"

// The pairs so far, joined by "&".
struct web_reply {
    text_buffer text;
    bool empty = true;
};

static void append_pair(web_reply &reply, bool joined, const char *name, const char *value)
{
    char pair[web_pair_size]; // a longer one is cut
    const int length = snprintf(pair, sizeof pair, "%s%s=%s", joined ? "&" : "", name, value);
    const int kept = std::min(length, web_pair_size - 1);
    fwrite(pair, 1, static_cast<size_t>(kept), reply.text.stream());
    reply.empty = false;
}

static void append_member(web_reply &reply, const char *module, const cJSON *member)
{
    const char *type = nullptr;
    const char *modifier_name = nullptr;
    const char *const name = get_http_name(module, member->string, &type, &modifier_name);
    if (name == nullptr)
        return;
    if (cJSON_IsString(member)) {
        append_pair(reply, !reply.empty, name, member->valuestring);
    } else if (cJSON_IsNumber(member)) {
        const web_modifier &modifier = modifier_named(modifier_name);
        char value[web_pair_size];
        modifier.to_web(value, member);
        append_pair(reply, modifier.always_joined || !reply.empty, name, value);
    }
}

char *get_json2http(cJSON *reply)
{
    web_reply web;
    if (web.text.stream() == nullptr)
        return nullptr;
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, reply)
    {
        const cJSON *member = nullptr;
        cJSON_ArrayForEach(member, if_object(module)) append_member(web, module->string, member);
    }
    if (web.empty)
        append_pair(web, false, "result", "success");
    return web.text.release();
}

char *para_reverse_convert_www_opt(cJSON *reply)
{
    return get_json2http(reply);
}
