// Requests of the web pages, translated into the modules' own names.
#include <cstdio>
#include <cstring>

#include "base/json.h"
#include "base/trace.h"
#include "camparam/json_util.h"
#include "server/web_modifier.h"
#include "server/web_names.h"

int para_init_www()
{
    return 0;
}

void para_exit_www() {}

static const char *text_of(const cJSON *object, const char *key)
{
    return json_object_get_string(cJSON_GetObjectItem(object, key));
}

// A new request with the identifiers that every converted request has.
static json_ptr new_request(const char *type, const char *name)
{
    static unsigned msg_id = 0;
    json_ptr request(cJSON_CreateObject());
    cJSON_AddStringToObject(request.get(), "msg_from", "www");
    cJSON_AddStringToObject(request.get(), "msg_type", type);
    cJSON_AddStringToObject(request.get(), "msg_name", name);
    cJSON_AddNumberToObject(request.get(), "msg_id", ++msg_id);
    return request;
}

// The names of a module's members in the file, or ["all"] when it lists none.
static cJSON *members_of(const cJSON *module)
{
    cJSON *const members = cJSON_CreateArray();
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, module)
    {
        cJSON_AddItemToArray(members, cJSON_CreateString(member->string));
    }
    if (module->child == nullptr)
        cJSON_AddItemToArray(members, cJSON_CreateString("all"));
    return members;
}

cJSON *get_http2json(const cJSON *web_request)
{
    const char *const page = text_of(web_request, "msg_name");
    if (page == nullptr)
        return nullptr;

    json_ptr request = new_request("get", page);
    const cJSON *const list = cJSON_GetObjectItem(para_config, page);
    if (!cJSON_IsArray(list)) {
        PARA_TRACE(PARA_INFO, "could not find %s in json", page);
        return nullptr;
    }
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, list)
    {
        const cJSON *const module =
            cJSON_IsString(name) ? cJSON_GetObjectItem(para_config, name->valuestring) : nullptr;
        if (cJSON_IsObject(module))
            cJSON_AddItemToObject(request.get(), name->valuestring, members_of(module));
    }
    return request.release();
}

// A key or value of a pair, cut to fit.
struct pair_text {
    pair_text(const char *from, const char *end)
    {
        const auto length = static_cast<size_t>(end - from);
        const size_t kept = length < sizeof text ? length : sizeof text - 1;
        memcpy(text, from, kept);
    }
    char text[32] = "";
};

static void add_member(cJSON *request, const www_json_name &name, const web_modifier &modifier,
                       const char *value)
{
    cJSON *module = cJSON_GetObjectItem(request, name.module);
    if (module == nullptr)
        module = cJSON_AddObjectToObject(request, name.module);
    if (name.type != nullptr && strcmp(name.type, "S") == 0)
        cJSON_AddStringToObject(module, name.member, value);
    else
        cJSON_AddNumberToObject(module, name.member, modifier.to_json(value));
}

static void add_pair(cJSON *request, const char *key, const char *value)
{
    const char *modifier = nullptr;
    www_json_name name;
    get_json_name(&name, key, &modifier, 0);
    if (name.module == nullptr)
        return;
    add_member(request, name, modifier_named(modifier), value);
    if (!modifier_named(modifier).greedy)
        return;
    for (get_json_name(&name, key, &modifier, 1); name.module != nullptr;
         get_json_name(&name, key, &modifier, 1))
        add_member(request, name, modifier_named(modifier), value);
}

// Adds the pairs of a query, up to the last "=" and its value. Returns whether there was any.
static bool add_pairs(cJSON *request, const char *query)
{
    const char *equals = strchr(query, '=');
    if (equals == nullptr)
        return false;
    while (equals != nullptr) {
        const char *const end = equals + 1 + strcspn(equals + 1, "&");
        add_pair(request, pair_text(query, equals).text, pair_text(equals + 1, end).text);
        query = *end == '&' ? end + 1 : end;
        equals = strchr(query, '=');
    }
    return true;
}

cJSON *set_http2json(const cJSON *web_request)
{
    const cJSON *const data = cJSON_GetObjectItem(web_request, "data");
    const char *const name = text_of(web_request, "msg_name");
    if (data == nullptr || name == nullptr)
        return nullptr;

    json_ptr request = new_request("set", name);
    if (cJSON_IsString(data) && !add_pairs(request.get(), data->valuestring))
        return nullptr;
    return request.release();
}

cJSON *para_convert_www_opt(const char *request, char *error, int size)
{
    const auto error_size = static_cast<size_t>(size);
    snprintf(error, error_size, "%s", "");
    if (para_config == nullptr) {
        snprintf(error, error_size, "para_config=null");
        return nullptr;
    }
    const json_ptr parsed(cJSON_Parse(request));
    if (!parsed) {
        snprintf(error, error_size, "cJSON_Parse=null");
        return nullptr;
    }

    const char *const type = text_of(parsed.get(), "msg_type");
    if (type != nullptr && strcmp(type, "set") == 0)
        return set_http2json(parsed.get());
    if (type == nullptr || strcmp(type, "get") != 0)
        return nullptr;

    cJSON *const converted = get_http2json(parsed.get());
    if (converted == nullptr) {
        const char *const page = text_of(parsed.get(), "msg_name");
        snprintf(error, error_size, "%s=null", page != nullptr ? page : "");
    }
    return converted;
}
