// Get and set requests on the modules.
#include <cstring>
#include <utility>

#include "base/answer_tree.h"
#include "base/memory.h"
#include "base/text.h"
#include "base/trace.h"
#include "camparam/command.h"
#include "camparam/json_util.h"
#include "camparam/module.h"
#include "server/direct_answer.h"
#include "server/protocol.h"
#include "server/reply.h"

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
    const para_module *const end = module_para_handle + module_para_handle_num;
    for (const para_module *row = module_para_handle; key != nullptr && row != end; row++) {
        if (row->name != nullptr && begins_with(key, row->name))
            return row;
    }
    return nullptr;
}

// These write the reply, and return whether it is complete: false when memory ran out.

static bool get_members(const cJSON *request, answer_sink &reply)
{
    reply.open(nullptr);
    const cJSON *item = nullptr;
    cJSON_ArrayForEach(item, request)
    {
        const para_module *const module = find_module(item->string);
        if (module == nullptr || module->get_opt == nullptr)
            continue;
        if (!answer_member(*module, item, reply))
            return false;
    }
    reply.close();
    return reply.complete();
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

static void echo_identifiers(const cJSON *request, answer_sink &reply)
{
    const cJSON *const name = find_item(request, "msg_name");
    if (cJSON_IsString(name))
        reply.text("msg_name", name->valuestring);
    const cJSON *const id = find_item(request, "msg_id");
    if (cJSON_IsNumber(id))
        reply.number("msg_id", id->valueint);
}

// The reply is complete before anything is set.
static bool set_members(const cJSON *request, answer_sink &reply)
{
    reply.open(nullptr);
    echo_identifiers(request, reply);
    reply.close();
    return reply.complete() && set_each_member(request);
}

static bool carry_out(const cJSON *request, int mode, answer_sink &reply)
{
    const bool complete =
        mode == PARA_GET ? get_members(request, reply) : set_members(request, reply);
    if (!complete)
        PARA_TRACE_AT(PARA_IN(Recive_message_Process_gset), PARA_ERROR, "no memory for the reply");
    return complete;
}

// The converted request. On failure sends the converter's error text, if any, and returns null.
static json_ptr converted(const para_message *message, const para_protocol &protocol)
{
    char error[1024] = "";
    json_ptr request(protocol.convert(message->text, error, sizeof error));
    if (!request)
        send_text(*message, error);
    return request;
}

static bool dumps_requests()
{
    return para_traces(PARA_DUMP) && !para_traces(PARA_DUMP + 1);
}

// Both return 0, or -1 when memory ran out and nothing is sent.

static int reply_plainly(const para_message &message, const cJSON *request, int mode)
{
    reply_writer reply;
    if (!carry_out(request, mode, reply.text()))
        return -1;
    reply.send_to(message);
    return 0;
}

static int reply_converted(const para_message &message, const cJSON *request, int mode,
                           const para_protocol &protocol)
{
    answer_tree answer;
    if (!carry_out(request, mode, answer))
        return -1;
    const json_ptr reply = answer.release();
    if (dumps_requests()) {
        const printed_ptr text(cJSON_Print(reply.get()));
        PARA_TRACE_AT(PARA_IN(Recive_message_Process_gset), PARA_DUMP, "reverse_convert:%s",
                      text ? text.get() : "");
    }
    const text_ptr text(protocol.reverse_convert(reply.get()));
    if (text)
        send_text(message, text.get());
    return 0;
}

int Recive_message_Process_gset(para_message *message, cJSON *request, int mode)
{
    json_ptr tree(request);
    const para_protocol *const protocol =
        find_protocol(json_object_get_string(find_item(request, "msg_from")));
    if (protocol != nullptr)
        tree = converted(message, *protocol);
    if (!tree) {
        PARA_TRACE(PARA_ERROR, "ERROR : json null");
        return -1;
    }
    if (dumps_requests())
        cJSON_Print_safe(tree.get());

    return protocol == nullptr ? reply_plainly(*message, tree.get(), mode)
                               : reply_converted(*message, tree.get(), mode, *protocol);
}
