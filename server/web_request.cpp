// Requests of the web pages, translated into the modules' own names.
#include <cstdio>
#include <cstring>
#include <utility>

#include "base/json.h"
#include "base/memory.h"
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
    return json_object_get_string(find_item(object, key));
}

// A new request with the identifiers that every converted request has; null when memory ran out, as
// what the other builders of requests return.
static json_ptr new_request(const char *type, const char *name)
{
    static unsigned msg_id = 0;
    json_ptr request(cJSON_CreateObject());
    msg_id++;
    const bool complete =
        add_text(request.get(), "msg_from", "www") && add_text(request.get(), "msg_type", type) &&
        add_text(request.get(), "msg_name", name) && add_number(request.get(), "msg_id", msg_id);
    return complete ? std::move(request) : nullptr;
}

// The names of a module's members in the file, or ["all"] when it lists none.
static json_ptr members_of(const cJSON *module)
{
    json_ptr members(cJSON_CreateArray());
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, module)
    {
        if (!add_to_array(members.get(), json_ptr(cJSON_CreateString(member->string))))
            return nullptr;
    }
    if (module->child == nullptr &&
        !add_to_array(members.get(), json_ptr(cJSON_CreateString("all"))))
        return nullptr;
    return members;
}

// The list of a page's modules; null when the file has no such page.
static const cJSON *page_list(const char *page)
{
    const cJSON *const list = page != nullptr ? find_item(para_config, page) : nullptr;
    return cJSON_IsArray(list) ? list : nullptr;
}

cJSON *get_http2json(const cJSON *web_request)
{
    const char *const page = text_of(web_request, "msg_name");
    if (page == nullptr)
        return nullptr;

    json_ptr request = new_request("get", page);
    const cJSON *const list = page_list(page);
    if (list == nullptr) {
        PARA_TRACE(PARA_INFO, "could not find %s in json", page);
        return nullptr;
    }
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, list)
    {
        const cJSON *const module =
            cJSON_IsString(name) ? find_item(para_config, name->valuestring) : nullptr;
        if (cJSON_IsObject(module) &&
            !add_to_object(request.get(), name->valuestring, members_of(module)))
            return nullptr;
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

static bool add_member(cJSON *request, const www_json_name &name, const web_modifier &modifier,
                       const char *value)
{
    cJSON *module = find_item(request, name.module);
    if (module == nullptr)
        module = cJSON_AddObjectToObject(request, name.module);
    return name.type != nullptr && strcmp(name.type, "S") == 0
               ? add_text(module, name.member, value)
               : add_number(module, name.member, modifier.to_json(value));
}

// Nothing for a web name that the file does not have.
static bool add_pair(cJSON *request, const char *key, const char *value)
{
    const char *modifier = nullptr;
    www_json_name name;
    get_json_name(&name, key, &modifier, 0);
    if (name.module == nullptr)
        return true;
    if (!add_member(request, name, modifier_named(modifier), value))
        return false;
    if (!modifier_named(modifier).greedy)
        return true;
    for (get_json_name(&name, key, &modifier, 1); name.module != nullptr;
         get_json_name(&name, key, &modifier, 1)) {
        if (!add_member(request, name, modifier_named(modifier), value))
            return false;
    }
    return true;
}

// Adds the pairs of a query, up to the last "=" and its value. Returns whether there was any, and
// all were added.
static bool add_pairs(cJSON *request, const char *query)
{
    const char *equals = strchr(query, '=');
    if (equals == nullptr)
        return false;
    while (equals != nullptr) {
        const char *const end = equals + 1 + strcspn(equals + 1, "&");
        if (!add_pair(request, pair_text(query, equals).text, pair_text(equals + 1, end).text))
            return false;
        query = *end == '&' ? end + 1 : end;
        equals = strchr(query, '=');
    }
    return true;
}

cJSON *set_http2json(const cJSON *web_request)
{
    const cJSON *const data = find_item(web_request, "data");
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
    const memory_watch memory;
    const json_ptr parsed(cJSON_Parse(request));
    if (!parsed) {
        snprintf(error, error_size, "%s", memory.ran_out() ? "" : "cJSON_Parse=null");
        return nullptr;
    }

    const char *const type = text_of(parsed.get(), "msg_type");
    if (type != nullptr && strcmp(type, "set") == 0)
        return set_http2json(parsed.get());
    if (type == nullptr || strcmp(type, "get") != 0)
        return nullptr;

    cJSON *const converted = get_http2json(parsed.get());
    const char *const page = converted == nullptr ? text_of(parsed.get(), "msg_name") : nullptr;
    if (converted == nullptr && page_list(page) == nullptr) // else memory ran out
        snprintf(error, error_size, "%s=null", page != nullptr ? page : "");
    return converted;
}
