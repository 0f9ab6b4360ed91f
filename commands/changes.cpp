// The command "changes": cheap enough to be asked several times a second.
#include "command.h"
#include "run.h"
#include "unsaved.h"

answered answer_changes(const request &, json_builder &reply)
{
    reply.number(reply.root(), "started", static_cast<double>(start_of_run()));
    cJSON *const changes = reply.object(reply.root(), "changes");
    cJSON *const unsaved = reply.array(reply.root(), "unsaved");
    for_each_saved_module([&](const char *name, const para_module_status &status) {
        reply.number(changes, name, status.changes);
        if (status.changes != status.saved || status.error != 0)
            reply.append(unsaved, name);
    });
    return answered::compactly;
}
