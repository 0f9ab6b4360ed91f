#include "worker.h"

#include <pthread.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <utility>

#include "base/lock.h"
#include "late_reply.h"
#include "moment.h"

namespace {

struct late_answer {
    late_work work; // null: the place is free
    char module[64];
    unsigned number; // in the order of arrival
    int socket;
    sockaddr_in client;
    cJSON *reply; // owned

    bool wants_the_same_as(const late_answer &other) const
    {
        return work == other.work && strcmp(module, other.module) == 0;
    }
};

constexpr int most_waiting = 32;

pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER; // guards what follows
pthread_cond_t arrived;                            // made with the thread
late_answer waiting[most_waiting];
unsigned arrivals;
pthread_t thread;
pid_t process; // that has the thread; 0: none
bool stopping;

void (*timed_work)(); // null: none
long long time_of_work_ms;

// --- The thread ---

late_answer *oldest()
{
    late_answer *found = nullptr;
    for (late_answer &each : waiting) {
        // Numbers wrap, but those that wait are close to each other.
        if (each.work != nullptr &&
            (found == nullptr || static_cast<int>(each.number - found->number) < 0))
            found = &each;
    }
    return found;
}

void wait()
{
    if (timed_work == nullptr) {
        pthread_cond_wait(&arrived, &mutex);
        return;
    }
    const timespec until = {.tv_sec = static_cast<time_t>(time_of_work_ms / 1000),
                            .tv_nsec = static_cast<long>(time_of_work_ms % 1000 * 1000000)};
    pthread_cond_timedwait(&arrived, &mutex, &until);
}

bool is_timed_work_due()
{
    return timed_work != nullptr && monotonic_ms() >= time_of_work_ms;
}

// What is to be done next.
struct next_work {
    bool ends;       // the thread
    void (*timed)(); // else, unless null
    int count;       // else these are taken
    late_answer taken[most_waiting];
};

// Takes out those that want the same as the oldest.
void take_waiting(next_work &next)
{
    for (late_answer *each = oldest();
         each != nullptr && (next.count == 0 || each->wants_the_same_as(next.taken[0]));
         each = oldest())
        next.taken[next.count++] = std::exchange(*each, {});
}

void take(next_work &next)
{
    const lock_guard guard(mutex);
    while (!stopping && oldest() == nullptr && !is_timed_work_due())
        wait();
    next = {};
    next.ends = stopping;
    if (stopping)
        return;
    if (is_timed_work_due())
        next.timed = std::exchange(timed_work, nullptr);
    else
        take_waiting(next);
}

void answer(const next_work &work)
{
    json_builder failed;
    work.taken[0].work(work.taken[0].module, failed);
    const json_ptr found = failed.take();
    for (int i = 0; i < work.count; i++)
        send_late(work.taken[i].socket, work.taken[i].client, json_ptr(work.taken[i].reply),
                  found.get());
}

void *do_late_work(void *)
{
    pthread_setname_np(pthread_self(), "para_commands");
    next_work next;
    for (take(next); !next.ends; take(next)) {
        if (next.timed != nullptr)
            next.timed();
        else if (next.count > 0)
            answer(next);
    }
    return nullptr;
}

// --- The store's thread ---

// The exiting process waits for the work in hand, which uses what is taken down behind it.
void stop()
{
    if (process != getpid())
        return; // forked: the thread is the parent's, and may have held the lock
    {
        const lock_guard guard(mutex);
        stopping = true;
    }
    pthread_cond_signal(&arrived);
    if (pthread_equal(thread, pthread_self()) == 0)
        pthread_join(thread, nullptr);
}

// Signals are the host's: the thread is started with all of them blocked.
bool start()
{
    if (process == getpid())
        return true;
    pthread_condattr_t by_monotonic_clock;
    pthread_condattr_init(&by_monotonic_clock);
    pthread_condattr_setclock(&by_monotonic_clock, CLOCK_MONOTONIC);
    pthread_cond_init(&arrived, &by_monotonic_clock);
    pthread_condattr_destroy(&by_monotonic_clock);

    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const bool started = pthread_create(&thread, nullptr, do_late_work, nullptr) == 0;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (started) {
        process = getpid();
        atexit(stop);
    }
    return started;
}

late_answer *free_place()
{
    for (late_answer &each : waiting) {
        if (each.work == nullptr)
            return &each;
    }
    return nullptr;
}

} // namespace

void pause_work(long milliseconds)
{
    const timespec pause = {.tv_sec = milliseconds / 1000,
                            .tv_nsec = milliseconds % 1000 * 1000000};
    nanosleep(&pause, nullptr);
}

void answer_later(const para_message &message, json_builder &reply, late_work work,
                  const char *module)
{
    json_ptr begun = reply.take();
    const lock_guard guard(mutex);
    late_answer *const place = begun != nullptr && start() ? free_place() : nullptr;
    if (place == nullptr)
        return;
    place->work = work;
    snprintf(place->module, sizeof place->module, "%s", module != nullptr ? module : "");
    place->number = arrivals++;
    place->socket = message.socket;
    place->client = message.sender;
    place->reply = begun.release();
    pthread_cond_signal(&arrived);
}

bool do_at(long long time_ms, void (*work)())
{
    const lock_guard guard(mutex);
    if (!start())
        return false;
    timed_work = work;
    time_of_work_ms = time_ms;
    pthread_cond_signal(&arrived);
    return true;
}
