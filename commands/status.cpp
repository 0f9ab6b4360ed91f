// The command "status": what is saved of each module, and how the store fares.
#include <cstdio>
#include <cstring>

#include "camparam/guard.h"
#include "command.h"
#include "descriptions.h"
#include "run.h"
#include "unsaved.h"

namespace {

void add_flag(json_builder &reply, cJSON *module, const para_module_status &status, unsigned flag,
              const char *name)
{
    if ((status.flags & flag) != 0)
        reply.truth(module, name);
}

void add_module(json_builder &reply, cJSON *modules, const char *name,
                const para_module_status &status)
{
    cJSON *const module = reply.object(modules, name);
    reply.number(module, "changes", status.changes);
    reply.number(module, "saved", status.saved);
    if (status.saved_at != 0)
        reply.number(module, "saved_at", static_cast<double>(status.saved_at));
    if (status.error != 0)
        reply.text(module, "error", strerror(status.error));
    if (const char *const reason = obstacle_of(name, status))
        reply.text(module, "cannot_be_saved", reason);
    add_flag(reply, module, status, PARA_STATUS_LOAD_FAILED, "load_failed");
    add_flag(reply, module, status, PARA_STATUS_RESTORED, "restored");
    add_flag(reply, module, status, PARA_STATUS_KEPT_BAD, "kept_bad");
}

void add_counters(json_builder &reply)
{
    para_counters counted = {};
    platformparam_get_counters(&counted);
    cJSON *const counters = reply.object(reply.root(), "counters");
    reply.number(counters, "received", counted.received);
    reply.number(counters, "dropped", counted.dropped);
    reply.number(counters, "replies", counted.replies);
    reply.number(counters, "saves", counted.saves);
    reply.number(counters, "failed_saves", counted.failed_saves);
}

} // namespace

answered answer_status(const request &, json_builder &reply)
{
    reply.text(reply.root(), "version", CAMPARAM_VERSION);
    reply.number(reply.root(), "started", static_cast<double>(start_of_run()));
    reply.number(reply.root(), "uptime", static_cast<double>(seconds_of_run()));
    add_counters(reply);
    const descriptions texts;
    if (texts.is_starved())
        reply.lack();
    if (texts.fault() != nullptr) {
        char text[64];
        snprintf(text, sizeof text, "descriptions.json %s", texts.fault());
        reply.text(reply.root(), "descriptions", text);
    }
    cJSON *const modules = reply.object(reply.root(), "modules");
    for_each_saved_module([&](const char *name, const para_module_status &status) {
        add_module(reply, modules, name, status);
    });
    return answered::compactly;
}
