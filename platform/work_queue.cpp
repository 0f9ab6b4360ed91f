#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <iterator>
#include <mutex>
#include <thread>
#include <vector>

#include "camparam/platform.h"
#include "camparam/platform_queue.h"
#include "platform/guard.h"
#include "platform/signals.h"

namespace {

class work_queue {
public:
    void add(const fifo_work *works, int count);
    int post(const char *name, const char *type);
    void stop();

private:
    void start();
    void run();

    std::mutex lock;
    std::condition_variable posted;
    std::vector<fifo_work> registered;
    std::deque<fifo_work> waiting;
    std::thread worker;            // none until the first post
    std::atomic<pid_t> process{0}; // that has the worker
    bool stopping = false;
};

// Never destroyed: threads of the host may post while the process exits.
work_queue &queue()
{
    static work_queue *const only = new work_queue;
    return *only;
}

bool usable(const fifo_work &work)
{
    return work.name != nullptr && work.handler != nullptr;
}

bool same_type(const char *one, const char *other)
{
    if (one == nullptr || other == nullptr)
        return one == other;
    return strcmp(one, other) == 0;
}

void work_queue::add(const fifo_work *works, int count)
{
    const std::lock_guard<std::mutex> guard(lock);
    registered.insert(registered.end(), works, works + count);
}

int work_queue::post(const char *name, const char *type)
{
    const std::lock_guard<std::mutex> guard(lock);
    std::vector<fifo_work> meant;
    std::copy_if(registered.begin(), registered.end(), std::back_inserter(meant),
                 [=](const fifo_work &work) {
                     return strcmp(work.name, name) == 0 && same_type(work.type, type);
                 });
    if (meant.empty() || stopping)
        return -1;

    start();
    waiting.insert(waiting.end(), meant.begin(), meant.end());
    posted.notify_one();
    return static_cast<int>(meant.size());
}

void work_queue::start()
{
    if (worker.joinable())
        return;
    process = getpid();
    const signals_held_back held_back;
    worker = std::thread(&work_queue::run, this);
    pthread_setname_np(worker.native_handle(), "fifo_work");
    std::atexit([] { queue().stop(); });
}

void work_queue::run()
{
    std::unique_lock<std::mutex> guard(lock);
    for (;;) {
        posted.wait(guard, [this] { return stopping || !waiting.empty(); });
        if (stopping)
            return;
        const fifo_work work = waiting.front();
        waiting.pop_front();
        guard.unlock();
        work.handler(work.argument); // unlocked, as it may post and add work
        guard.lock();
    }
}

// Drops waiting work: its handlers may need resources that the exiting process has released.
void work_queue::stop()
{
    if (process != getpid())
        return; // forked: the worker is the parent's, and may have held the lock
    std::thread ending;
    {
        const std::lock_guard<std::mutex> guard(lock);
        stopping = true;
        ending.swap(worker);
    }
    posted.notify_all();
    if (ending.get_id() == std::this_thread::get_id())
        ending.detach(); // a handler called exit()
    else
        ending.join();
}

} // namespace

int add_fifo_work(const fifo_work *works, int count)
{
    if (works == nullptr || count < 0 || !std::all_of(works, works + count, usable))
        return -1;
    return guarded(-1, [=] {
        queue().add(works, count);
        return 0;
    });
}

int post_fifo_work(const char *name, const char *type)
{
    if (name == nullptr)
        return -1;
    return guarded(-1, [=] { return queue().post(name, type); });
}
