#include "platform/command_group.h"

#include <paths.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

// All of this runs in the child of a process with threads, where nothing may take a lock or
// allocate.

static const int not_run = 127; // what a shell says of a command that it cannot run

static void set_action(int number, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigaction(number, &action, nullptr);
}

// A handler of the host would act for the host here.
static void forget_handlers()
{
    struct sigaction action = {};
    for (int number = 1; number < NSIG; number++) {
        if (sigaction(number, nullptr, &action) == 0 && action.sa_handler != SIG_IGN)
            set_action(number, SIG_DFL);
    }
    set_action(SIGCHLD, SIG_DFL); // ignored, the status of the shell would be lost
}

[[noreturn]] static void become_shell(const char *command, const sigset_t &mask)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    pthread_sigmask(SIG_SETMASK, &mask, nullptr);
    execl(_PATH_BSHELL, "sh", "-c", command, static_cast<char *>(nullptr));
    _exit(not_run);
}

// Among the host's descriptors is its port, which must be free at once when the host ends.
static void close_descriptors()
{
#ifdef SYS_close_range
    if (syscall(SYS_close_range, STDERR_FILENO + 1, ~0U, 0) == 0)
        return;
#endif
    rlimit open_files = {};
    getrlimit(RLIMIT_NOFILE, &open_files);
    const rlim_t most = 65536;
    const int end = static_cast<int>(open_files.rlim_cur < most ? open_files.rlim_cur : most);
    for (int number = STDERR_FILENO + 1; number < end; number++)
        close(number);
}

[[noreturn]] static void end_as(int status)
{
    if (WIFEXITED(status))
        _exit(WEXITSTATUS(status));

    const int number = WTERMSIG(status);
    const rlimit no_core = {};
    setrlimit(RLIMIT_CORE, &no_core);
    sigset_t this_one;
    sigemptyset(&this_one);
    sigaddset(&this_one, number);
    kill(getpid(), number);
    pthread_sigmask(SIG_UNBLOCK, &this_one, nullptr);
    _exit(not_run);
}

void lead_command_group(const char *command, pid_t host, const sigset_t &mask)
{
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGHUP);
    forget_handlers();
    const pid_t shell = fork();
    if (shell == 0)
        become_shell(command, mask);
    if (shell < 0)
        _exit(not_run);
    close_descriptors();

    sigset_t awaited;
    sigemptyset(&awaited);
    sigaddset(&awaited, SIGCHLD);
    sigaddset(&awaited, SIGHUP);
    for (;;) {
        int status = 0;
        if (waitpid(shell, &status, WNOHANG) == shell)
            end_as(status);
        if (getppid() != host) {
            kill(shell, SIGKILL);
            kill(-getpid(), SIGKILL);
        }
        sigwaitinfo(&awaited, nullptr);
    }
}
