#include "platform/file_sync.h"

#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <thread>

#include "platform/guard.h"
#include "platform/signals.h"

namespace {

// The first that asked; 0: none. One that is forked from it has no worker, and may have inherited a
// lock that nobody gives back.
std::atomic<pid_t> process{0};

bool is_own_process()
{
    const pid_t self = getpid();
    pid_t first = 0;
    return process.compare_exchange_strong(first, self) || first == self;
}

class sync_thread {
public:
    bool ask();
    void finish();

private:
    void start();
    void run();

    std::mutex lock;
    std::condition_variable asked;
    std::condition_variable finished;
    std::thread worker; // none until the first question
    bool wanted = false;
    bool ending = false;
    bool done = false;
};

// Never destroyed: threads of the host may save while the process exits.
sync_thread &syncs()
{
    static sync_thread *const only = new sync_thread;
    return *only;
}

// Whether the worker will do it.
bool sync_thread::ask()
{
    const std::lock_guard<std::mutex> guard(lock);
    if (ending)
        return false;
    start();
    wanted = true;
    asked.notify_one();
    return true;
}

void sync_thread::start()
{
    if (worker.joinable())
        return;
    const signals_held_back held_back;
    worker = std::thread(&sync_thread::run, this);
    pthread_setname_np(worker.native_handle(), "sync");
    std::atexit([] {
        if (is_own_process())
            syncs().finish();
    });
}

void sync_thread::run()
{
    std::unique_lock<std::mutex> guard(lock);
    for (;;) {
        asked.wait(guard, [this] { return wanted || ending; });
        if (!wanted)
            break;
        wanted = false;
        guard.unlock();
        sync();
        guard.lock();
    }
    done = true;
    finished.notify_one();
}

void sync_thread::finish()
{
    std::unique_lock<std::mutex> guard(lock);
    ending = true;
    asked.notify_one();
    const bool over = finished.wait_for(guard, std::chrono::seconds(10), [this] { return done; });
    guard.unlock();
    if (over)
        worker.join();
    else
        worker.detach();
}

} // namespace

void sync_soon()
{
    if (!is_own_process() || !guarded(false, [] { return syncs().ask(); }))
        sync();
}
