// Runs the cases of a test program with a network and shared memory of its own, so that port 6800
// is always free, nobody else's share maps are in the way, and any number of them may run at once.
// Where namespaces are forbidden it runs them on the machine's network, one program at a time.
#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "camparam/command.h"
#include "support/shared_memory.h"

namespace {

// "machine": use the machine's network. A number: the namespaces are there; the descriptor tells
// the process outside that they are ready.
const char *const network = "CAMPARAM_TEST_NETWORK";

// Another name than a store's or a host's: only tests take it. foreign_platform_test does, too.
const char *const lock_path = "/tmp/camparam-test-port-6800.lock";

bool only_lists_cases(int argc, char **argv)
{
    for (int i = 1; i < argc; i++) {
        if (strcmp(argv[i], "--gtest_list_tests") == 0)
            return true;
    }
    return false;
}

// By unshare(1): a process that the sanitizers have already given a second thread cannot enter a
// user namespace itself.
[[noreturn]] void start_in_own_namespaces(int argc, char **argv, int ready)
{
    std::vector<char *> command;
    for (const char *word : {"unshare", "--map-root-user", "--net", "--mount", "--"})
        command.push_back(const_cast<char *>(word));
    static char self[4096];
    const ssize_t length = readlink("/proc/self/exe", self, sizeof self - 1);
    command.push_back(length > 0 ? self : argv[0]);
    command.insert(command.end(), argv + 1, argv + argc);
    command.push_back(nullptr);

    setenv(network, std::to_string(ready).c_str(), 1);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    execvp(command[0], command.data());
    perror("unshare");
    _exit(1);
}

// Ends as a program ended.
int end_like(int status)
{
    if (!WIFSIGNALED(status))
        return WEXITSTATUS(status);
    signal(WTERMSIG(status), SIG_DFL);
    raise(WTERMSIG(status));
    return 1;
}

// Nothing when namespaces are forbidden: then no case has run.
std::optional<int> run_in_own_namespaces(int argc, char **argv)
{
    int ready[2];
    if (pipe(ready) != 0)
        return std::nullopt;
    const pid_t inner = fork();
    if (inner == 0) {
        close(ready[0]);
        start_in_own_namespaces(argc, argv, ready[1]);
    }
    close(ready[1]);
    char mark = 0;
    const bool started = read(ready[0], &mark, 1) == 1;
    close(ready[0]);
    int status = 0;
    waitpid(inner, &status, 0);
    return started ? std::optional<int>(end_like(status)) : std::nullopt;
}

bool loopback_up()
{
    ifreq request = {};
    strncpy(request.ifr_name, "lo", sizeof request.ifr_name - 1);
    const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
    bool up = ioctl(descriptor, SIOCGIFFLAGS, &request) == 0;
    request.ifr_flags = static_cast<short>(request.ifr_flags | IFF_UP | IFF_RUNNING);
    up = up && ioctl(descriptor, SIOCSIFFLAGS, &request) == 0;
    close(descriptor);
    return up;
}

bool set_up_namespaces(int ready)
{
    if (!loopback_up()) {
        perror("loopback interface");
        return false;
    }
    if (mount("tmpfs", "/dev/shm", "tmpfs", 0, nullptr) != 0) {
        perror("/dev/shm");
        return false;
    }
    const bool told = write(ready, "", 1) == 1;
    close(ready);
    return told;
}

bool can_bind(const sockaddr_in &address)
{
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const auto *const any = reinterpret_cast<const sockaddr *>(&address);
    const bool bound = bind(descriptor, any, sizeof address) == 0;
    close(descriptor);
    return bound;
}

// The kernel may free the lock of a case that ends a moment before it frees the port.
bool port_becomes_free()
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(PARA_SERVER_PORT);
    for (int turns_left = 500; turns_left > 0; turns_left--) {
        if (can_bind(address))
            return true;
        usleep(2000);
    }
    return false;
}

// The lock lasts as long as this process.
bool take_machines_network()
{
    // Creating a file that exists may be forbidden to others than its owner.
    int lock = open(lock_path, O_RDONLY | O_CLOEXEC);
    if (lock < 0)
        lock = open(lock_path, O_RDONLY | O_CLOEXEC | O_CREAT, 0644);
    // Not by flock(), which some tests replace and count.
    if (lock < 0 || syscall(SYS_flock, lock, LOCK_EX) != 0) {
        perror(lock_path);
        return false;
    }
    if (!port_becomes_free()) {
        fprintf(stderr, "UDP port 6800 is taken, and there are no network namespaces here\n");
        return false;
    }
    remove_share_maps(); // of a case that was ended: no store uses them, the port is free
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    const char *const given = getenv(network);
    const bool own = given != nullptr && strcmp(given, "machine") != 0;
    const bool lists = only_lists_cases(argc, argv);
    if (!lists) {
        if (given == nullptr) {
            const std::optional<int> result = run_in_own_namespaces(argc, argv);
            if (result)
                return *result;
        }
        if (own ? !set_up_namespaces(atoi(given)) : !take_machines_network())
            return 1;
    }
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    if (!lists && !own)
        remove_share_maps();
    return result;
}
