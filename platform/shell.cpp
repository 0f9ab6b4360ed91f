#include <paths.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <mutex>

#include "camparam/platform.h"
#include "platform/command_group.h"
#include "platform/file_sync.h"
#include "platform/signals.h"

namespace {

// SIGINT and SIGQUIT of the process, which ignores them while any thread waits for a command.
std::mutex keyboard_lock;
int keyboard_waits = 0;
struct sigaction usual_interrupt; // while keyboard_waits > 0
struct sigaction usual_quit;

class keyboard_ignored {
public:
    keyboard_ignored()
    {
        const std::lock_guard<std::mutex> guard(keyboard_lock);
        if (keyboard_waits++ > 0)
            return;
        struct sigaction ignore = {};
        ignore.sa_handler = SIG_IGN;
        sigaction(SIGINT, &ignore, &usual_interrupt);
        sigaction(SIGQUIT, &ignore, &usual_quit);
    }
    ~keyboard_ignored()
    {
        const std::lock_guard<std::mutex> guard(keyboard_lock);
        if (--keyboard_waits > 0)
            return;
        sigaction(SIGINT, &usual_interrupt, nullptr);
        sigaction(SIGQUIT, &usual_quit, nullptr);
    }
    keyboard_ignored(const keyboard_ignored &) = delete;
    keyboard_ignored &operator=(const keyboard_ignored &) = delete;
};

pid_t start_command(const char *command, const sigset_t &mask)
{
    const pid_t host = getpid();
    const pid_t child = fork();
    if (child != 0)
        return child;
    sigaction(SIGINT, &usual_interrupt, nullptr);
    sigaction(SIGQUIT, &usual_quit, nullptr);
    lead_command_group(command, host, mask);
}

int status_of(pid_t child)
{
    int status = -1;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            return -1;
    }
    return status;
}

// As system(3) does it.
int run_in_shell(const char *command)
{
    const keyboard_ignored ignored;
    const signals_held_back started;
    const pid_t child = start_command(command, started.usual());
    if (child < 0)
        return -1;

    // A handler of SIGCHLD would take the status of the command.
    sigset_t waiting = started.usual();
    sigaddset(&waiting, SIGCHLD);
    pthread_sigmask(SIG_SETMASK, &waiting, nullptr);
    return status_of(child);
}

} // namespace

int lib_system(const char *command)
{
    if (command == nullptr)
        return access(_PATH_BSHELL, X_OK) == 0 ? 1 : 0;
    if (strcmp(command, "sync") != 0)
        return run_in_shell(command);
    sync_soon();
    return 0;
}
