// Runs the cases of a test program with a network and shared memory of its own, so that port 6800
// is always free, nobody else's share maps are in the way, and any number of them may run at once.
// Where namespaces are forbidden it runs them on the machine's network, one program at a time.
#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "camparam/command.h"
#include "support/shared_memory.h"

// Of the sanitizers' common interface; absent without one.
struct __sanitizer_sandbox_arguments {
    int coverage_sandboxed;
    intptr_t coverage_fd;
    unsigned coverage_max_block_size;
};
extern "C" __attribute__((weak)) void
__sanitizer_sandbox_on_notify(__sanitizer_sandbox_arguments *arguments);

namespace {

// "machine": use the machine's network. "own": the process is in namespaces of its own, as one that
// a test starts again is.
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

// A process with several threads may not enter a user namespace, and the thread sanitizer has
// started one by now, to be ended for sandboxes such as these.
void end_the_sanitizers_thread()
{
    __sanitizer_sandbox_arguments none = {};
    if (__sanitizer_sandbox_on_notify != nullptr)
        __sanitizer_sandbox_on_notify(&none);
}

bool write_file(const char *path, const std::string &text)
{
    const int descriptor = open(path, O_WRONLY | O_CLOEXEC);
    const bool written =
        write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(descriptor);
    return written;
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

// The user is root within, as by `unshare --map-root-user`.
bool set_up_namespaces(uid_t user, gid_t group)
{
    const bool mapped = write_file("/proc/self/setgroups", "deny") &&
                        write_file("/proc/self/uid_map", "0 " + std::to_string(user) + " 1") &&
                        write_file("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
    if (!mapped) {
        perror("user namespace");
        return false;
    }
    if (!loopback_up()) {
        perror("loopback interface");
        return false;
    }
    const bool mounted = mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                         mount("tmpfs", "/dev/shm", "tmpfs", 0, nullptr) == 0;
    if (!mounted)
        perror("/dev/shm");
    return mounted && setenv(network, "own", 1) == 0;
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

bool take_network()
{
    const char *const given = getenv(network);
    if (given != nullptr)
        return strcmp(given, "own") == 0 || take_machines_network();
    const uid_t user = geteuid();
    const gid_t group = getegid();
    end_the_sanitizers_thread();
    if (unshare(CLONE_NEWUSER | CLONE_NEWNET | CLONE_NEWNS) == 0)
        return set_up_namespaces(user, group);
    // Namespaces are forbidden.
    return setenv(network, "machine", 1) == 0 && take_machines_network();
}

} // namespace

int main(int argc, char **argv)
{
    const bool lists = only_lists_cases(argc, argv);
    if (!lists && !take_network())
        return 1;
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    if (!lists && strcmp(getenv(network), "machine") == 0)
        remove_share_maps();
    return result;
}
