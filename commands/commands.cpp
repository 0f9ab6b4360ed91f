// The table of the kit's commands.
#include "camparam/commands.h"

#include <cstring>

#include "command.h"

namespace {

struct command {
    const char *name;
    bool get, set; // in which modes it may be asked for
    command_function answer;
};

constexpr command commands[] = {
    {.name = "describe", .get = true, .set = false, .answer = answer_describe},
    {.name = "lens", .get = false, .set = true, .answer = answer_lens},
    {.name = "reload", .get = false, .set = true, .answer = answer_reload},
    {.name = "save", .get = true, .set = true, .answer = answer_save},
    {.name = "style", .get = true, .set = true, .answer = answer_style},
};
constexpr int command_count = sizeof commands / sizeof commands[0];

// Ignores case in keys, as the store does when it looks the command up.
void echo_identifiers(const cJSON *from, json_builder &reply)
{
    reply.text(reply.root(), "msg_name", cJSON_GetObjectItem(from, "msg_name")->valuestring);
    const cJSON *const id = cJSON_GetObjectItem(from, "msg_id");
    if (cJSON_IsNumber(id))
        reply.number(reply.root(), "msg_id", id->valueint);
}

// The store takes the beginning of a name for the name.
bool is_asked_for(const command &command, const cJSON *asked, int mode)
{
    const char *const name = cJSON_GetStringValue(cJSON_GetObjectItem(asked, "msg_name"));
    return name != nullptr && strcmp(name, command.name) == 0 &&
           (mode == PARA_GET ? command.get : command.set);
}

int carry_out(const command &command, int mode, const para_message &message, cJSON **answer)
{
    const json_ptr asked(cJSON_Parse(message.text));
    if (!is_asked_for(command, asked.get(), mode))
        return -1;
    const cJSON *const data = cJSON_GetObjectItemCaseSensitive(asked.get(), "data");
    json_builder reply;
    echo_identifiers(asked.get(), reply);
    switch (command.answer({mode, message, cJSON_IsObject(data) ? data : nullptr}, reply)) {
    case answered::now:
        *answer = reply.take().release();
        return 0;
    case answered::compactly:
        *answer = reply.take_compact().release();
        return 0;
    case answered::later:
        return 0;
    default:
        return -1;
    }
}

template <int index> int handle(int mode, para_message *message, cJSON **answer)
{
    return carry_out(commands[index], mode, *message, answer);
}

param_command rows[command_count];

template <int count> void fill_rows()
{
    if constexpr (count > 0) {
        rows[count - 1] = {.name = commands[count - 1].name, .handler = handle<count - 1>};
        fill_rows<count - 1>();
    }
}

} // namespace

int para_commands_register()
{
    fill_rows<command_count>();
    return register_param_command("camparam_commands", rows, command_count);
}
