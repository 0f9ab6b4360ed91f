// The commands that hosts have registered, and requests to them.
#include <pthread.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/json.h"
#include "base/text.h"
#include "base/trace.h"
#include "camparam/command.h"
#include "camparam/json_util.h"
#include "server/reply.h"

struct registration {
    char name[64];
    int count;
    const param_command *table;
    registration *next, *previous; // circular, through the head; next is the older one
};

static registration head;
static pthread_once_t registry_made = PTHREAD_ONCE_INIT;

static void make_registry()
{
    head.next = head.previous = &head;
}

int param_base_register_init()
{
    PARA_TRACE(PARA_INFO, "enter");
    const int result = pthread_once(&registry_made, make_registry);
    PARA_TRACE(PARA_INFO, "leave");
    return result;
}

static bool is_callable(const param_command &command)
{
    return command.name != nullptr && command.handler != nullptr;
}

// Para_Process may be walking the list: it sees the record complete, or not at all.
static void publish(registration *record)
{
    record->next = head.next;
    record->previous = &head;
    head.next->previous = record;
    __atomic_store_n(&head.next, record, __ATOMIC_RELEASE);
}

static const registration *newest()
{
    return __atomic_load_n(&head.next, __ATOMIC_ACQUIRE);
}

int register_param_command(const char *name, const param_command *table, int count)
{
    if (name == nullptr || table == nullptr || count < 1 || !is_callable(table[0])) {
        PARA_TRACE(PARA_ERROR, "fail");
        return -1;
    }

    PARA_TRACE(PARA_INFO, "enter");
    param_base_register_init();
    auto *const record = static_cast<registration *>(calloc(1, sizeof(registration)));
    if (record == nullptr)
        return -1;
    snprintf(record->name, sizeof record->name, "%s", name);
    record->count = count;
    record->table = table;
    publish(record);
    PARA_TRACE(PARA_INFO, "leave");
    return 0;
}

// The newest command whose name begins with the text, or null. An empty text fits the first one.
static const param_command *find_command(const char *text)
{
    const registration *record = newest(); // null before the first use of the registry
    for (; record != nullptr && record != &head; record = record->next) {
        for (int i = record->count - 1; i >= 0; i--) {
            const param_command &command = record->table[i];
            if (is_callable(command) && begins_with(command.name, text))
                return &command;
        }
    }
    return nullptr;
}

int param_base_json_dispose(para_message *message, cJSON *request, cJSON **reply, int mode)
{
    PARA_TRACE(PARA_INFO, "enter");
    const char *const name = json_object_get_string(find_item(request, "msg_name"));
    const param_command *const command = name != nullptr ? find_command(name) : nullptr;
    if (command == nullptr) {
        PARA_TRACE(PARA_INFO, "leave");
        return -1;
    }

    PARA_TRACE(PARA_INFO, "found, msg_name:%s, content: %s", name, command->name);
    if (command->handler(mode, message, reply) != 0) {
        PARA_TRACE(PARA_INFO, "ret == -1");
        return -1;
    }
    PARA_TRACE(PARA_INFO, "ret == 0");
    return 0;
}

static const char invalid_command[] = "{\"err\":\"Invalid API command\"}";

int Recive_message_Process_api(para_message *message, cJSON *request, int mode)
{
    const json_ptr tree(request);
    const char *const name = json_object_get_string(find_item(request, "msg_name"));
    if (name == nullptr) {
        PARA_TRACE(PARA_ERROR, "msg_name is NULL");
        send_text(*message, invalid_command);
        return -1;
    }

    cJSON *stored = nullptr;
    const int result = param_base_json_dispose(message, request, &stored, mode);
    const json_ptr reply(stored);
    if (result == -1) {
        PARA_TRACE(PARA_ERROR, "not found api command: %s", name);
        send_text(*message, invalid_command);
        return 0;
    }
    if (reply)
        send_tree(*message, reply.get());
    return 0;
}
