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
pthread_cond_t arrived = PTHREAD_COND_INITIALIZER;
late_answer waiting[most_waiting];
unsigned arrivals;
pthread_t thread;
pid_t process; // that has the thread; 0: none
bool stopping;

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

// Takes out those that want the same as the oldest. Returns how many; 0: the thread is to end.
int take(late_answer (&taken)[most_waiting])
{
    const lock_guard guard(mutex);
    while (!stopping && oldest() == nullptr)
        pthread_cond_wait(&arrived, &mutex);
    if (stopping)
        return 0;
    int count = 0;
    for (late_answer *next = oldest();
         next != nullptr && (count == 0 || next->wants_the_same_as(taken[0])); next = oldest())
        taken[count++] = std::exchange(*next, {});
    return count;
}

void *do_late_work(void *)
{
    pthread_setname_np(pthread_self(), "para_commands");
    late_answer taken[most_waiting];
    while (const int count = take(taken)) {
        json_builder failed;
        taken[0].work(taken[0].module, failed);
        const json_ptr found = failed.take();
        for (int i = 0; i < count; i++)
            send_late(taken[i].socket, taken[i].client, json_ptr(taken[i].reply), found.get());
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
