// The command "save". However often it is asked, the files are written once a second at most.
#include <chrono>
#include <mutex>
#include <vector>

#include "camparam/control.h"
#include "commands.h"
#include "late_answer.h"
#include "request.h"
#include "unsaved.h"

namespace {

using save_clock = std::chrono::steady_clock;

std::mutex lock;                  // guards what follows
std::vector<late_answer> waiting; // for the next save
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
    if (waiting.size() < most_late_answers)
        waiting.push_back(answer_later(message, std::move(reply)));
}

std::vector<late_answer> take_waiting()
{
    std::vector<late_answer> taken;
    const std::lock_guard<std::mutex> guard(lock);
    if (save_clock::now() >= next_save)
        taken.swap(waiting);
    return taken;
}

} // namespace

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
    const std::vector<late_answer> answers = take_waiting();
    if (answers.empty())
        return;
    save();
    for (const late_answer &answer : answers) {
        add_failures(answer.reply.get());
        send(answer);
    }
}
