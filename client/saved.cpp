#include "client/saved.h"

#include <chrono>
#include <thread>

#include "client/failure.h"

namespace {

// Why changes of the module are not in its file; empty: they are.
std::string reason_of(const cJSON *module)
{
    const cJSON *const changes = member_of(module, "changes");
    const cJSON *const saved = member_of(module, "saved");
    const std::string error = string_of(member_of(module, "error"));
    if (!cJSON_IsNumber(changes) || !cJSON_IsNumber(saved))
        return "the host does not tell";
    if (changes->valuedouble == saved->valuedouble && error.empty())
        return "";
    std::string obstacle = string_of(member_of(module, "cannot_be_saved"));
    if (!obstacle.empty())
        return obstacle;
    return error.empty() ? "not yet" : error;
}

bool can_be_saved(const cJSON *module)
{
    return member_of(module, "cannot_be_saved") == nullptr;
}

} // namespace

std::vector<unsaved_module> wait_until_saved(client &host, const std::vector<std::string> &modules,
                                             double seconds,
                                             const std::function<void()> &while_waiting)
{
    using clock = std::chrono::steady_clock;
    const auto end = clock::now() + std::chrono::duration_cast<clock::duration>(
                                        std::chrono::duration<double>(seconds));
    while (true) {
        const json_ptr answer = host.call("api_get", "status", nullptr);
        const cJSON *const told = member_of(answer.get(), "modules");
        if (!cJSON_IsObject(told))
            throw failure(OTHER, "the host does not tell what it has saved");
        std::vector<unsaved_module> unsaved;
        bool may_be_saved = false;
        for (const std::string &name : modules) {
            const cJSON *const module = member_of(told, name.c_str());
            const std::string reason = reason_of(module);
            if (reason.empty())
                continue;
            unsaved.push_back({name, reason});
            may_be_saved = may_be_saved || can_be_saved(module);
        }
        if (unsaved.empty() || !may_be_saved || clock::now() >= end)
            return unsaved;
        while_waiting();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
}
