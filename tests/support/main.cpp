// Runs the cases of a test program with a network and shared memory of its own, so that port 6800
// is always free, nobody else's share maps are in the way, and any number of them may run at once.
#include <gtest/gtest.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

const char *const inside = "CAMPARAM_TEST_NAMESPACES";

bool only_lists_cases(int argc, char **argv)
{
    for (int i = 1; i < argc; i++) {
        if (strcmp(argv[i], "--gtest_list_tests") == 0)
            return true;
    }
    return false;
}

// Starts this program again by unshare(1): a process that the sanitizers have already given a
// second thread cannot enter a user namespace itself.
int run_in_own_namespaces(int argc, char **argv)
{
    std::vector<char *> command;
    for (const char *word : {"unshare", "--map-root-user", "--net", "--mount", "--"})
        command.push_back(const_cast<char *>(word));
    static char self[4096];
    const ssize_t length = readlink("/proc/self/exe", self, sizeof self - 1);
    command.push_back(length > 0 ? self : argv[0]);
    command.insert(command.end(), argv + 1, argv + argc);
    command.push_back(nullptr);

    setenv(inside, "1", 1);
    execvp(command[0], command.data());
    perror("unshare");
    return 1;
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

} // namespace

int main(int argc, char **argv)
{
    if (!only_lists_cases(argc, argv)) {
        if (getenv(inside) == nullptr)
            return run_in_own_namespaces(argc, argv);
        if (!loopback_up()) {
            perror("loopback interface");
            return 1;
        }
        if (mount("tmpfs", "/dev/shm", "tmpfs", 0, nullptr) != 0) {
            perror("/dev/shm");
            return 1;
        }
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
