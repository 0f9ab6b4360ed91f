#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

#include "support/refused_call.h"
#include "tests/platform/folder.h"

// Whether a wait for one child begins when that has ended.
static std::atomic<bool> waits_come_late{false};

extern "C" PARA_API pid_t waitpid(pid_t child, int *status, int options)
{
    siginfo_t ended = {};
    if (waits_come_late && child > 0)
        waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT);
    return static_cast<pid_t>(syscall(SYS_wait4, child, status, options, nullptr));
}

class ShellCommand : public Folder {
protected:
    // Whether nobody but this process has the end of a pipe while a command runs.
    bool keeps_an_end_for_the_host()
    {
        const std::string fifo = path("fifo");
        EXPECT_EQ(mkfifo(fifo.c_str(), 0600), 0);
        int ends[2];
        EXPECT_EQ(pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
        std::thread caller([&] { EXPECT_EQ(lib_system(("read line < " + fifo).c_str()), 0); });
        std::ofstream line(fifo);
        close(ends[1]);
        char byte;
        const bool ended = eventually([&] { return ::read(ends[0], &byte, 1) == 0; });
        close(ends[0]);
        line << "end" << std::endl;
        caller.join();
        return ended;
    }

    // The signals below the C library's own that a command ignores.
    unsigned long ignored_by_a_command(int (*run)(const char *)) const
    {
        const std::string command = "grep ^SigIgn: /proc/self/status > " + path("ignored");
        EXPECT_EQ(run(command.c_str()), 0);
        const std::string line = read("ignored");
        return std::stoul(line.substr(line.find('\t')), nullptr, 16) & 0x7fffffff;
    }
};

TEST_F(ShellCommand, IsRunByAShellAndWaitedFor)
{
    const std::string command = "x=done && echo $x | tr d D > '" + path("out") + "'";
    EXPECT_EQ(lib_system(command.c_str()), 0);
    EXPECT_EQ(read("out"), "Done\n");
}

TEST_F(ShellCommand, ReturnsWhatTheSystemFunctionDoes)
{
    const int status = lib_system("exit 3");
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 3);
    for (const char *command :
         {"", "true", "false", "exit 300", "kill -KILL $$", "kill -TERM $$", "kill -CHLD $$",
          "no/such/command 2>/dev/null", "if 2>/dev/null", "exit 3 & wait $!"})
        EXPECT_EQ(lib_system(command), system(command)) << command;
    EXPECT_NE(lib_system(nullptr), 0) << "there is a shell";
}

TEST_F(ShellCommand, RunsNoHandlerOfTheHost)
{
    signal(SIGUSR1, [](int) { _exit(9); });
    EXPECT_EQ(lib_system("kill -USR1 $$"), SIGUSR1) << "its end is repeated by a copy of the host";
}

TEST_F(ShellCommand, IgnoresTheSignalsThatItsCallerIgnores)
{
    EXPECT_EQ(ignored_by_a_command(lib_system), ignored_by_a_command(system));
    signal(SIGPIPE, SIG_IGN);
    signal(SIGQUIT, SIG_IGN);
    EXPECT_EQ(ignored_by_a_command(lib_system), ignored_by_a_command(system));
    EXPECT_NE(ignored_by_a_command(lib_system), 0U);
}

TEST_F(ShellCommand, LeavesTheKeyboardsSignalsToTheCommand)
{
    const std::string host = std::to_string(getpid());
    EXPECT_EQ(lib_system(("kill -INT " + host + "; kill -QUIT " + host).c_str()), 0);
    struct sigaction after = {};
    sigaction(SIGINT, nullptr, &after);
    EXPECT_EQ(after.sa_handler, SIG_DFL);
    sigaction(SIGQUIT, nullptr, &after);
    EXPECT_EQ(after.sa_handler, SIG_DFL);
}

TEST_F(ShellCommand, LosesItsStatusToNoHandler)
{
    static std::atomic<int> handled{0};
    signal(SIGCHLD, [](int) {
        const int error = errno;
        handled++;
        waitpid(-1, nullptr, WNOHANG);
        errno = error;
    });
    sigset_t before;
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    waits_come_late = true;
    EXPECT_EQ(lib_system("exit 3"), 3 << 8);
    EXPECT_EQ(handled, 1);
    sigset_t after;
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    for (int number = 1; number < NSIG; number++)
        EXPECT_EQ(sigismember(&after, number), sigismember(&before, number)) << number;
}

TEST_F(ShellCommand, HasNoStatusWhileChildrenAreIgnored)
{
    signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(lib_system(("echo ran > " + path("out")).c_str()), -1);
    EXPECT_EQ(errno, ECHILD);
    EXPECT_EQ(read("out"), "ran\n");
}

TEST_F(ShellCommand, IsWaitedForThoughASignalComes)
{
    static std::atomic<bool> interrupted{false};
    struct sigaction interrupt = {};
    interrupt.sa_handler = [](int) { interrupted = true; };
    ASSERT_EQ(sigaction(SIGUSR1, &interrupt, nullptr), 0);
    const std::string fifo = path("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    std::atomic<bool> done{false};
    std::thread caller([&] {
        EXPECT_EQ(lib_system(("read line < " + fifo + "; exit 3").c_str()), 3 << 8);
        done = true;
    });
    std::ofstream line(fifo); // opens when the command does
    pthread_kill(caller.native_handle(), SIGUSR1);
    EXPECT_TRUE(eventually([] { return interrupted.load(); }));
    EXPECT_FALSE(done);
    line << "end" << std::endl;
    caller.join();
}

TEST_F(ShellCommand, MayRunInSeveralThreads)
{
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; i++) {
        threads.emplace_back([i] {
            const std::string command = "exit " + std::to_string(i);
            for (int turn = 0; turn < 20; turn++)
                EXPECT_EQ(lib_system(command.c_str()), i << 8);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    struct sigaction after = {};
    sigaction(SIGINT, nullptr, &after);
    EXPECT_EQ(after.sa_handler, SIG_DFL);
}

// Only what has no O_CLOEXEC goes to the command, and nothing to whatever runs beside it.
TEST_F(ShellCommand, HoldsNoDescriptorOfTheHost)
{
    EXPECT_TRUE(keeps_an_end_for_the_host()) << "someone may write";
}

TEST_F(ShellCommand, HoldsNoneWhereTheKernelClosesOneAtATime)
{
#ifdef SYS_close_range
    refuse_call(SYS_close_range, ENOSYS);
#endif
    EXPECT_TRUE(keeps_an_end_for_the_host()) << "someone may write";
}

TEST_F(ShellCommand, ThatCannotBeRunHasAStatusThatSaysSo)
{
    const std::string too_long(4 << 20, ' ');
    EXPECT_EQ(lib_system(too_long.c_str()), 127 << 8);
    EXPECT_EQ(lib_system(too_long.c_str()), system(too_long.c_str()));

    const pid_t child = fork(); // a leak sanitizer makes a process at the end of this one
    if (child == 0) {
        refuse_processes();
        errno = 0;
        _exit(lib_system("true") == -1 ? errno : 0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, EAGAIN << 8);
}

// Whether a process is there; one that has ended but was not waited for is not.
static bool runs(const std::string &id)
{
    std::ifstream status("/proc/" + id + "/stat");
    std::string number, name, state;
    return status >> number >> name >> state && state != "Z" && state != "X";
}

TEST_F(ShellCommand, EndsWithTheHostHoweverThatEnds)
{
    const std::string command = "sleep 300 & echo $PPID $$ $! end > '" + path("ids") + "'; wait";
    write("ids", "");
    const pid_t host = fork();
    if (host == 0) {
        lib_system(command.c_str());
        _exit(1);
    }
    std::vector<std::string> ids;
    ASSERT_TRUE(eventually([&] {
        std::istringstream words(read("ids"));
        ids.assign(std::istream_iterator<std::string>(words), {});
        return ids.size() == 4;
    }));
    ids.pop_back();
    for (const std::string &id : ids)
        EXPECT_TRUE(runs(id)) << id;

    kill(host, SIGKILL);
    waitpid(host, nullptr, 0);
    for (const std::string &id : ids)
        EXPECT_TRUE(eventually([&] { return !runs(id); })) << id;
}
