#include "runtime/thread.h"

#include <pthread.h>
#include <sys/prctl.h>
#include <sys/select.h>
#include <sys/socket.h>

#include "base/lock.h"
#include "base/trace.h"
#include "base/word.h"
#include "camparam/audio.h"
#include "camparam/command.h"
#include "camparam/control.h"
#include "camparam/module.h"
#include "camparam/platform.h"
#include "camparam/video.h"
#include "share/datagram.h"

// Held by a save pass, and by nothing else.
static pthread_mutex_t save_mutex = PTHREAD_MUTEX_INITIALIZER;

// Host thread only; no_thread when none runs.
constexpr pthread_t no_thread = 0;
static pthread_t thread = no_thread;

// Set by a host thread, read by Para_Process once a turn.
static int stop_requested = 0;

// Fixed before the thread starts.
static int server = -1;

static void save_module(const char *function, const para_module &row)
{
    PARA_TRACE_AS(function, PARA_INFO, "%s save...", row.name);
    if (row.save(row.name) != 0)
        PARA_TRACE_AS(function, PARA_ERROR, "%s save err", row.name);
}

enum class save_mode { due, forced };

static bool to_be_saved(const para_module &row, save_mode mode)
{
    if (mode == save_mode::forced)
        return row.save != nullptr;
    return row.need_save != nullptr && row.need_save(row.name) != 0;
}

static int save_param(save_mode mode)
{
    const lock_guard guard(save_mutex);
    bool saved = false;
    for (int i = 0; i < module_para_handle_num; i++) {
        const para_module &row = module_para_handle[i];
        if (to_be_saved(row, mode)) {
            save_module(__func__, row);
            saved = true;
        }
    }
    if (saved)
        lib_system("sync");
    return 0;
}

// Hands a datagram to the dispatcher. A failed or empty receive is ignored.
static void serve_datagram(para_message &message, socklen_t &sender_size)
{
    const ssize_t length = recvfrom(server, message.text, sizeof message.text - 1, MSG_DONTWAIT,
                                    reinterpret_cast<sockaddr *>(&message.sender), &sender_size);
    if (length <= 0 || take_share_datagram(message.text, length))
        return;

    message.text[length] = '\0';
    para_server_message_Process(&message);
}

// Waits for a datagram, 100 ms at the most. Returns what select returned.
static int wait_for_datagram(const fd_set &watched, fd_set &readable)
{
    readable = watched;
    timeval turn = {0, 100000};
    return select((server < 0 ? 0 : server) + 1, &readable, nullptr, nullptr, &turn);
}

void *platformparam_Process(void *)
{
    prctl(PR_SET_NAME, "Para_Process");

    para_message message = {};
    message.socket = server;
    message.sender_length = sizeof message.sender;
    socklen_t sender_size = sizeof message.sender;

    fd_set watched;
    FD_ZERO(&watched);
    if (server >= 0)
        FD_SET(server, &watched);

    while (true) {
        fd_set readable;
        if (wait_for_datagram(watched, readable) < 0)
            break; // interrupted or not (ThreadCalls.AFailedWaitEndsTheThreadWithoutAPass)
        if (server >= 0 && FD_ISSET(server, &readable))
            serve_datagram(message, sender_size);
        if (load_word(stop_requested) != 0)
            break; // the final save is platformparam_stop's
        save_param(save_mode::due);
    }
    return nullptr;
}

int start_save_thread(int server_socket)
{
    server = server_socket;
    pthread_t started = no_thread;
    const int result = pthread_create(&started, nullptr, platformparam_Process, nullptr);
    if (result == 0) // else the handle is undefined
        thread = started;
    return result;
}

int platformparam_save()
{
    return save_param(save_mode::forced);
}

int platformparam_stop(int stop)
{
    store_word(stop_requested, stop);
    if (stop == 0 || thread == no_thread)
        return 0;

    pthread_join(thread, nullptr);
    thread = no_thread;
    save_param(save_mode::forced);
    PARA_TRACE(PARA_INFO, "platformparam_stop ok");
    return 0;
}

int platformparam_set_save_param_time(int audio_ms, int video_ms)
{
    para_set_audio_save_param_time(audio_ms);
    para_set_video_save_param_time(video_ms);
    return 0;
}
