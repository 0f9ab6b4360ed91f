// The command "save". However often it is asked, the files are written once a second at most.
#include <chrono>
#include <cstring>
#include <mutex>
#include <vector>

#include "camparam/control.h"
#include "commands.h"
#include "request.h"
#include "unsaved.h"

namespace {

using save_clock = std::chrono::steady_clock;

// A request that is answered with the next save.
struct waiting_request {
    int socket;
    sockaddr_in sender;
    json_ptr reply;
};

constexpr size_t most_waiting = 32; // more are not answered, and so repeated by their clients

std::mutex lock; // guards what follows
std::vector<waiting_request> waiting;
save_clock::time_point next_save; // not before

bool may_save()
{
    const std::lock_guard<std::mutex> guard(lock);
    return waiting.empty() && save_clock::now() >= next_save;
}

void save()
{
    platformparam_save();
    const std::lock_guard<std::mutex> guard(lock);
    next_save = save_clock::now() + std::chrono::seconds(1);
}

void add_failures(cJSON *reply)
{
    const std::vector<unsaved_module> unsaved = unsaved_modules();
    if (unsaved.empty())
        return;
    cJSON *const failed = cJSON_AddObjectToObject(reply, "failed");
    for (const unsaved_module &module : unsaved)
        cJSON_AddStringToObject(failed, module.name, module.reason.c_str());
}

void let_wait(const para_message &message, json_ptr reply)
{
    const std::lock_guard<std::mutex> guard(lock);
    if (waiting.size() < most_waiting)
        waiting.push_back({message.socket, message.sender, std::move(reply)});
}

std::vector<waiting_request> take_waiting()
{
    std::vector<waiting_request> taken;
    const std::lock_guard<std::mutex> guard(lock);
    if (save_clock::now() >= next_save)
        taken.swap(waiting);
    return taken;
}

void send(const waiting_request &request)
{
    char *const text = cJSON_Print(request.reply.get());
    if (text != nullptr)
        SendBuf2Client(request.socket, request.sender, text, static_cast<int>(strlen(text)));
    cJSON_free(text);
}

} // namespace

// Waiting here would hold up every other client.
int save_command(int, para_message *message, cJSON **reply)
{
    json_ptr answer = start_reply(parse_request(*message));
    if (may_save()) {
        save();
    } else if (!all_is_written()) {
        let_wait(*message, std::move(answer));
        return 0;
    }
    add_failures(answer.get());
    *reply = answer.release();
    return 0;
}

void answer_waiting_saves()
{
    const std::vector<waiting_request> requests = take_waiting();
    if (requests.empty())
        return;
    save();
    for (const waiting_request &request : requests) {
        add_failures(request.reply.get());
        send(request);
    }
}
