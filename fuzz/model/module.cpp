#include "fuzz/model/module.h"

#include <algorithm>

void model_module::forget()
{
    changed = false;
    changed_at = 0;
    delay = 2000;
    changes = saved = failures = flags = 0;
}

void model_module::stamp_change()
{
    changed = true;
    changed_at = now;
}

void model_module::accept_change()
{
    changes++;
    stamp_change();
}

bool model_module::may_be_saved() const
{
    return !disk.guard || (flags & PARA_STATUS_LOAD_FAILED) == 0;
}

static long long retry_delay(unsigned failures)
{
    return failures > 5 ? 60000 : std::min(60000LL, 1000LL << failures);
}

bool model_module::is_waiting() const
{
    return disk.guard && failures > 0 && now - failed_at < retry_delay(failures);
}

bool model_module::is_due() const
{
    return changed && may_be_saved() && !is_waiting() && now - changed_at >= delay;
}

// Without the guard a failure is forgotten, and one to open the file is no failure at all.
bool model_module::write(const std::string &name, const std::string &bytes)
{
    changed = false;
    const unsigned opened_before = disk.opened;
    const bool written = disk.write(name, bytes);
    end_save(written);
    return written || (!disk.guard && disk.opened == opened_before);
}

void model_module::end_save(bool written)
{
    if (written) {
        saved = changes;
        failures = 0;
    } else {
        if (!is_waiting()) {
            failures++;
            failed_at = now;
        }
        changed = disk.guard;
    }
}

para_module_status model_module::status() const
{
    para_module_status known = {};
    known.changes = changes;
    known.saved = saved;
    known.error = failures > 0 ? 1 : 0;
    known.flags = flags | (may_be_saved() ? 0U : unsigned{PARA_STATUS_NOT_SAVED});
    return known;
}
