#include "runtime/save_pass.h"

#include <pthread.h>

#include <cerrno>

#include "base/file.h"
#include "base/guard.h"
#include "base/trace.h"
#include "camparam/platform.h"
#include "runtime/module_table.h"

// A save pass, of which there is one at a time. One for what is due does not wait for its turn: the
// other may wait for a file, and the store's thread has requests to answer.
class pass {
public:
    explicit pass(save_mode mode)
        : begun(mode == save_mode::forced ? pthread_mutex_lock(&mutex) == 0
                                          : pthread_mutex_trylock(&mutex) == 0)
    {
    }
    ~pass()
    {
        if (begun)
            pthread_mutex_unlock(&mutex);
    }
    pass(const pass &) = delete;
    pass &operator=(const pass &) = delete;

    bool has_begun() const { return begun; }

private:
    static pthread_mutex_t mutex;
    const bool begun;
};
pthread_mutex_t pass::mutex = PTHREAD_MUTEX_INITIALIZER;

static bool to_be_saved(const para_module &row, save_mode mode, bool guarded)
{
    if (mode == save_mode::forced)
        return row.save != nullptr;
    if (row.need_save == nullptr)
        return false;
    const int needed = row.need_save(row.name);
    return guarded ? needed > 0 : needed != 0; // -1: the module cannot be found
}

static void save_row(const para_module &row, const trace_site &site)
{
    PARA_TRACE_AT(site, PARA_INFO, "%s save...", row.name);
    if (row.save(row.name) != 0)
        PARA_TRACE_AT(site, PARA_ERROR, "%s save err", row.name);
}

static void sync_files(const trace_site &site)
{
    errno = 0;
    const int error = error_of(lib_system("sync") == 0);
    if (!guard_is_on())
        return;
    note_sync(error);
    if (error != 0)
        PARA_TRACE_AT(site, PARA_ERROR, "sync err, errno:%d", error);
}

int save_param(save_mode mode)
{
    const pass own(mode);
    if (!own.has_begun())
        return 0;
    const trace_site site = PARA_HERE;
    const bool guarded = guard_is_on();
    const unsigned written_before = files_written();
    bool saved = false;
    for_each_module([&](const para_module &row) {
        if (to_be_saved(row, mode, guarded)) {
            save_row(row, site);
            saved = true;
        }
    });
    const bool written = guarded ? files_written() != written_before : saved;
    if (written || is_sync_due())
        sync_files(site);
    return 0;
}
