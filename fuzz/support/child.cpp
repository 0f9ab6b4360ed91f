#include "fuzz/support/child.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "fuzz/support/device.h"
#include "fuzz/support/target.h"

namespace {

// What libFuzzer watches; empty without it.
uint8_t *counters = nullptr;
size_t counters_size = 0;

// Memory that forked processes share with this one.
uint8_t *make_shared_bytes(size_t size)
{
    void *const made =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    require(made != MAP_FAILED, "no shared memory");
    return static_cast<uint8_t *>(made);
}

int wait_for(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        require(errno == EINTR, "waitpid: %s", strerror(errno));
    return status;
}

// As fork(), for a process that ends with this one.
pid_t fork_process()
{
    const pid_t child = fork();
    require(child >= 0, "fork: %s", strerror(errno));
    if (child == 0)
        prctl(PR_SET_PDEATHSIG, SIGKILL);
    return child;
}

// libFuzzer's alarm clock interrupts.
ssize_t read_all_the_same(int descriptor, void *bytes, size_t size)
{
    ssize_t length;
    do {
        length = read(descriptor, bytes, size);
    } while (length < 0 && errno == EINTR);
    return length;
}

constexpr size_t largest_input = 1 << 20;

// The process that runs inputs, as this one sees it.
class input_server {
public:
    explicit input_server(void (*target)(const uint8_t *, size_t));
    void run(const uint8_t *data, size_t size);

private:
    void serve();

    void (*const run_target)(const uint8_t *, size_t);
    uint8_t *const input = make_shared_bytes(largest_input);
    uint8_t *const covered = make_shared_bytes(counters_size);
    int requests[2] = {-1, -1}; // lengths of inputs
    int answers[2] = {-1, -1};
};

input_server::input_server(void (*target)(const uint8_t *, size_t)) : run_target(target)
{
    folders(); // belong to this process, which removes them
    require(pipe(requests) == 0 && pipe(answers) == 0, "no pipe");
    if (fork_process() == 0)
        serve();
    close(requests[0]);
    close(answers[1]);
}

void input_server::serve()
{
    close(requests[1]);
    close(answers[0]);
    size_t size = 0;
    while (read_all_the_same(requests[0], &size, sizeof size) == sizeof size) {
        memset(counters, 0, counters_size);
        run_target(input, size);
        memcpy(covered, counters, counters_size);
        require(write(answers[1], "", 1) == 1, "nobody waits");
    }
    _exit(0);
}

void input_server::run(const uint8_t *data, size_t size)
{
    size = std::min(size, largest_input);
    memcpy(input, data, size);
    require(write(requests[1], &size, sizeof size) == sizeof size, "nobody serves");
    char done = 0;
    if (read_all_the_same(answers[0], &done, 1) != 1)
        abort(); // the server has told why
    memcpy(counters, covered, counters_size);
}

} // namespace

// A program tells libFuzzer its counters at start (the linker's option --wrap).
extern "C" {
void __real___sanitizer_cov_8bit_counters_init(uint8_t *, uint8_t *) __attribute__((weak));

void __wrap___sanitizer_cov_8bit_counters_init(uint8_t *first, uint8_t *end)
{
    counters = first;
    counters_size = static_cast<size_t>(end - first);
    __real___sanitizer_cov_8bit_counters_init(first, end);
}
} // extern "C"

void in_child(const std::function<void()> &action)
{
    static uint8_t *const covered = counters_size > 0 ? make_shared_bytes(counters_size) : nullptr;

    const pid_t child = fork_process();
    if (child == 0) {
        action();
        if (covered != nullptr)
            memcpy(covered, counters, counters_size);
        _exit(0);
    }
    if (wait_for(child) != 0)
        abort(); // the child has told why
    if (covered != nullptr)
        memcpy(counters, covered, counters_size);
}

void serve_input(void (*target)(const uint8_t *, size_t), const uint8_t *data, size_t size)
{
    if (counters_size == 0) {
        target(data, size);
        return;
    }
    static auto *const server = new input_server(target);
    server->run(data, size);
}
