// The table of the kit's commands.
#include "camparam/commands.h"

#include <cstring>

#include "camparam/guard.h"
#include "command.h"
#include "run.h"

namespace {

struct command {
    const char *name;
    bool get, set; // in which modes it may be asked for
    command_function answer;
};

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
    if (asked == nullptr)
        return 0; // the store has parsed it: there is no memory, and no answer
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

template <const command &named> int handle(int mode, para_message *message, cJSON **answer)
{
    return carry_out(named, mode, *message, answer);
}

template <const command &named>
constexpr param_command row_of = {
    .name = named.name, .handler = handle<named>, .reserved = nullptr};

constexpr command changes = {
    .name = "changes", .get = true, .set = false, .answer = answer_changes};
constexpr command check = {.name = "check", .get = true, .set = false, .answer = answer_check};
constexpr command confirm = {.name = "confirm", .get = true, .set = true, .answer = answer_confirm};
constexpr command describe = {
    .name = "describe", .get = true, .set = false, .answer = answer_describe};
constexpr command lens = {.name = "lens", .get = false, .set = true, .answer = answer_lens};
constexpr command log = {.name = "log", .get = true, .set = false, .answer = answer_log};
constexpr command pages = {.name = "pages", .get = true, .set = false, .answer = answer_pages};
constexpr command reload = {.name = "reload", .get = false, .set = true, .answer = answer_reload};
constexpr command reset = {.name = "reset", .get = false, .set = true, .answer = answer_reset};
constexpr command save = {.name = "save", .get = true, .set = true, .answer = answer_save};
constexpr command status = {.name = "status", .get = true, .set = false, .answer = answer_status};
constexpr command style = {.name = "style", .get = true, .set = true, .answer = answer_style};

constexpr param_command rows[] = {row_of<changes>, row_of<check>, row_of<confirm>, row_of<describe>,
                                  row_of<lens>,    row_of<log>,   row_of<pages>,   row_of<reload>,
                                  row_of<reset>,   row_of<save>,  row_of<status>,  row_of<style>};

} // namespace

int para_commands_register()
{
    begin_run();
    if (register_param_command("camparam_commands", rows, sizeof rows / sizeof rows[0]) != 0)
        return -1;
    platformparam_set_setting_observer(para_commands_note);
    return 0;
}
