// The command "reload". Files may be locked for seconds: the main thread rereads and answers.
#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "commands.h"
#include "conf_reload.h"
#include "late_answer.h"
#include "request.h"

namespace {

struct waiting_reload {
    std::string module;
    late_answer answer;
};

std::mutex lock; // guards what follows
std::vector<waiting_reload> waiting;

// The requested module; null when "module" is not a text.
const char *module_of(const cJSON *data)
{
    const cJSON *const module = cJSON_GetObjectItemCaseSensitive(data, "module");
    if (module == nullptr)
        return "netport";
    return cJSON_IsString(module) ? module->valuestring : nullptr;
}

void let_wait(const char *module, late_answer answer)
{
    const std::lock_guard<std::mutex> guard(lock);
    if (waiting.size() < most_late_answers)
        waiting.push_back({module, std::move(answer)});
}

// Those of one module; none when none wait.
std::vector<waiting_reload> take_waiting()
{
    const std::lock_guard<std::mutex> guard(lock);
    std::vector<waiting_reload> taken;
    if (waiting.empty())
        return taken;
    const std::string module = waiting.front().module;
    const auto others =
        std::stable_partition(waiting.begin(), waiting.end(),
                              [&](const waiting_reload &each) { return each.module == module; });
    std::move(waiting.begin(), others, std::back_inserter(taken));
    waiting.erase(waiting.begin(), others);
    return taken;
}

void add_failure(cJSON *reply, const std::string &module, const std::string &reason)
{
    if (!reason.empty())
        cJSON_AddStringToObject(cJSON_AddObjectToObject(reply, "failed"), module.c_str(),
                                reason.c_str());
}

} // namespace

int reload_command(int mode, para_message *message, cJSON **)
{
    const json_ptr request = parse_request(*message);
    const char *const module = module_of(data_of(request));
    if (mode != PARA_SET || module == nullptr || !is_conf_module(module))
        return -1;
    let_wait(module, answer_later(*message, start_reply(request)));
    return 0;
}

void answer_waiting_reloads()
{
    const std::vector<waiting_reload> requests = take_waiting();
    if (requests.empty())
        return;
    const std::string failure = reread_conf(requests.front().module.c_str());
    for (const waiting_reload &request : requests) {
        add_failure(request.answer.reply.get(), request.module, failure);
        send(request.answer);
    }
}
