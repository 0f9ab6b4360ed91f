// Get and set requests on the modules.
#include <cstring>
#include <utility>

#include "base/json.h"
#include "base/memory.h"
#include "base/text.h"
#include "base/trace.h"
#include "camparam/command.h"
#include "camparam/json_util.h"
#include "camparam/module.h"
#include "server/protocol.h"
#include "server/socket.h"

// The converter for a "msg_from", or null.
static const para_protocol *find_protocol(const char *msg_from)
{
    if (msg_from == nullptr)
        return nullptr;
    for (int i = 0; i < module_para_protocol_handle_num; i++) {
        if (strcmp(module_para_protocol_handle[i].name, msg_from) == 0)
            return &module_para_protocol_handle[i];
    }
    return nullptr;
}

// The first module whose name the key begins with, or null. A module without the function that a
// request needs still ends the search (Requests.FirstPrefixMatchDecides).
static const para_module *find_module(const char *key)
{
    for (int i = 0; key != nullptr && i < module_para_handle_num; i++) {
        const char *const name = module_para_handle[i].name;
        if (name != nullptr && begins_with(key, name))
            return &module_para_handle[i];
    }
    return nullptr;
}

// The complete reply, or null when memory ran out.
static json_ptr get_members(const cJSON *request)
{
    json_ptr reply(cJSON_CreateObject());
    const cJSON *item = nullptr;
    cJSON_ArrayForEach(item, request)
    {
        const para_module *const module = find_module(item->string);
        if (module == nullptr || module->get_opt == nullptr)
            continue;
        cJSON *stored = nullptr;
        const int result = module->get_opt(item->string, item, &stored, module->name);
        json_ptr answer(stored);
        if (!answer && result != no_memory)
            continue;
        if (!add_to_object(reply.get(), item->string, std::move(answer)))
            return nullptr;
    }
    return reply;
}

// Returns whether no module was short of memory.
static bool set_each_member(const cJSON *request)
{
    bool complete = true;
    const cJSON *item = nullptr;
    cJSON_ArrayForEach(item, request)
    {
        const para_module *const module = find_module(item->string);
        if (module != nullptr && module->set_opt != nullptr)
            complete &= module->set_opt(item->string, item, module->name) != no_memory;
    }
    return complete;
}

static bool echo_identifiers(const cJSON *request, cJSON *reply)
{
    const cJSON *const name = cJSON_GetObjectItem(request, "msg_name");
    if (cJSON_IsString(name) && !add_text(reply, "msg_name", name->valuestring))
        return false;
    const cJSON *const id = cJSON_GetObjectItem(request, "msg_id");
    return !cJSON_IsNumber(id) || add_number(reply, "msg_id", id->valueint);
}

// The same, made before anything is set.
static json_ptr set_members(const cJSON *request)
{
    json_ptr reply(cJSON_CreateObject());
    if (!reply || !echo_identifiers(request, reply.get()))
        return nullptr;
    return set_each_member(request) ? std::move(reply) : nullptr;
}

// The converted request. On failure sends the converter's error text, if any, and returns null.
static json_ptr converted(const para_message *message, const para_protocol &protocol)
{
    char error[1024] = "";
    json_ptr request(protocol.convert(message->text, error, sizeof error));
    if (!request)
        reply_text(*message, error);
    return request;
}

static bool dumps_requests()
{
    return para_traces(PARA_DUMP) && !para_traces(PARA_DUMP + 1);
}

static void send_reply(const para_message &message, const para_protocol *protocol, cJSON *reply,
                       const trace_site &site)
{
    if (protocol == nullptr) {
        reply_tree(message, reply);
        return;
    }

    if (dumps_requests()) {
        const printed_ptr text(cJSON_Print(reply));
        PARA_TRACE_AT(site, PARA_DUMP, "reverse_convert:%s", text ? text.get() : "");
    }
    const text_ptr text(protocol->reverse_convert(reply));
    if (text)
        reply_text(message, text.get());
}

int Recive_message_Process_gset(para_message *message, cJSON *request, int mode)
{
    json_ptr tree(request);
    const para_protocol *const protocol =
        find_protocol(json_object_get_string(cJSON_GetObjectItem(request, "msg_from")));
    if (protocol != nullptr)
        tree = converted(message, *protocol);
    if (!tree) {
        PARA_TRACE(PARA_ERROR, "ERROR : json null");
        return -1;
    }
    if (dumps_requests())
        cJSON_Print_safe(tree.get());

    const json_ptr reply = mode == PARA_GET ? get_members(tree.get()) : set_members(tree.get());
    if (!reply) {
        PARA_TRACE(PARA_ERROR, "no memory for the reply");
        return -1;
    }
    send_reply(*message, protocol, reply.get(), PARA_HERE);
    return 0;
}
