// The command "save". However often it is asked, the files are written once a second at most.
#include "camparam/commands.h"
#include "camparam/control.h"
#include "command.h"
#include "moment.h"
#include "unsaved.h"
#include "worker.h"

namespace {

constexpr long long pause_ms = 1000;

// Of the thread that does late work alone.
long long last_save_ms = -pause_ms;

void add_failure(void *failed, const char *module, const char *reason, int)
{
    json_builder &object = *static_cast<json_builder *>(failed);
    object.text(object.root(), module, reason);
}

void save(const char *, json_builder &failed)
{
    const long long rest_ms = last_save_ms + pause_ms - monotonic_ms();
    if (rest_ms <= 0 || !all_is_written()) {
        if (rest_ms > 0)
            pause_work(static_cast<long>(rest_ms));
        platformparam_save();
        last_save_ms = monotonic_ms();
    }
    para_commands_unsaved(add_failure, &failed);
}

} // namespace

answered answer_save(const request &request, json_builder &reply)
{
    answer_later(request.message, reply, save, nullptr);
    return answered::later;
}
