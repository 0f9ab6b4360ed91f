#include "runtime/thread.h"

#include <pthread.h>
#include <sys/prctl.h>
#include <sys/select.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <initializer_list>

#include "base/counters.h"
#include "base/guard.h"
#include "base/observer.h"
#include "base/trace.h"
#include "base/word.h"
#include "camparam/audio.h"
#include "camparam/control.h"
#include "camparam/video.h"
#include "runtime/save_pass.h"
#include "server/request_filter.h"
#include "server/socket.h"
#include "share/datagram.h"

// Host thread only; no_thread when none runs.
constexpr pthread_t no_thread = 0;
static pthread_t thread = no_thread;

// Set by a host thread, read by Para_Process once a turn.
static int stop_requested = 0;

// Fixed before the thread starts; -1: none. With the guard on, what this machine sends itself has a
// socket of its own.
static int server = -1, loopback_server = -1;

// --- Para_Process ---

// Whether bytes other than zeros stand behind the text of a datagram.
static bool holds_more_than_text(const char *bytes, ssize_t length)
{
    const char *const end = bytes + length;
    return std::any_of(bytes + strlen(bytes), end, [](char byte) { return byte != '\0'; });
}

// One datagram to its end: a share datagram, or a request.
static void process_datagram(para_message &message, const reception &received)
{
    const request_scope scope(&message.sender); // a share datagram's changes are its sender's, too
    if (take_share_datagram(message.text, received.length))
        return;
    // What was cut off may be text behind the document.
    if (guard_is_on() && (received.cut || holds_more_than_text(message.text, received.length))) {
        PARA_TRACE(PARA_ERROR, "cJSON_Parse err,Rec buffer: %s", message.text);
        return;
    }
    para_server_message_Process(&message);
}

// How many datagrams that are dropped a turn takes. They fill the socket's queue, where others then
// find no room, so that it is emptied of them faster than by one a turn; but saving must go on.
constexpr int most_dropped = 256;

static bool is_to_be_served(const para_message &message, const reception &received)
{
    return is_admitted(message.sender, message.text, received.length) && !received.to_many;
}

// Serves the next datagram that is not dropped, if there is one. An empty receive is ignored, and a
// failed one too. Returns false for a failure that the next receive would meet again.
static bool serve_datagram(int socket, para_message &message, socklen_t &sender_size)
{
    message.socket = socket; // a command's handler may have changed it
    for (int dropped = 0; dropped < most_dropped; dropped++) {
        const reception received = receive_datagram(socket, message, sender_size);
        if (received.length < 0)
            return errno == EAGAIN || errno == EINTR;
        count_one(counter::received);
        if (!is_to_be_served(message, received)) {
            count_one(counter::dropped);
            continue;
        }
        if (received.length > 0)
            process_datagram(message, received);
        return true;
    }
    return true;
}

// Waits for a datagram, for the rest of the turn at the most. Returns what select returned.
static int wait_for_datagram(const fd_set &watched, fd_set &readable, timeval &rest)
{
    readable = watched;
    const int last = std::max({server, loopback_server, 0});
    return select(last + 1, &readable, nullptr, nullptr, &rest);
}

static void watch(int socket, fd_set &watched)
{
    if (socket >= 0)
        FD_SET(socket, &watched);
}

static bool is_readable(int socket, const fd_set &readable)
{
    return socket >= 0 && FD_ISSET(socket, &readable);
}

// Linux has left in it what remains of the turn. An interruption just ends it early. Not by
// select(), which may be what fails.
static void sleep_out(const timeval &rest)
{
    const timespec time = {.tv_sec = rest.tv_sec, .tv_nsec = rest.tv_usec * 1000};
    nanosleep(&time, nullptr);
}

// Serves a datagram of each socket that has one. Returns false for a failure that would meet the
// next turn again, as the socket stays readable.
static bool serve_sockets(const fd_set &readable, para_message &message, socklen_t &sender_size)
{
    bool served = true;
    for (const int socket : {loopback_server, server}) {
        if (is_readable(socket, readable))
            served = serve_datagram(socket, message, sender_size) && served;
    }
    return served;
}

void *platformparam_Process(void *)
{
    prctl(PR_SET_NAME, "Para_Process");

    para_message message = {};
    message.sender_length = sizeof message.sender;
    socklen_t sender_size = sizeof message.sender;

    fd_set watched;
    FD_ZERO(&watched);
    watch(server, watched);
    watch(loopback_server, watched);

    while (true) {
        fd_set readable;
        timeval rest = {.tv_sec = 0, .tv_usec = 100000};
        const bool waited = wait_for_datagram(watched, readable, rest) >= 0;
        if (!waited && !guard_is_on())
            break; // also when interrupted (ThreadCalls.AFailedWaitEndsTheThreadWithoutAPass)
        if (!waited || !serve_sockets(readable, message, sender_size))
            sleep_out(rest); // or the loop would not rest
        if (load_word(stop_requested) != 0)
            break; // platformparam_stop() saves
        save_param(save_mode::due);
    }
    return nullptr;
}

// --- The host's side ---

int start_thread(int server_socket)
{
    server = server_socket;
    loopback_server = server >= 0 && guard_is_on() ? open_loopback_socket(server) : -1;
    pthread_t started = no_thread;
    const int result = pthread_create(&started, nullptr, platformparam_Process, nullptr);
    if (result == 0) // on failure the handle is undefined
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
