#include "modules/text/file_lock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <mutex>

#include "camparam/api.h"
#include "support/store.h"

namespace {

std::atomic<int> attempts{0}, to_interrupt{0}, lock_error{0};
std::atomic<bool> closes_on_exec{false};

std::mutex unlocked_lock;
std::string unlocked; // bytes of the file

void note_unlock(int descriptor)
{
    const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
    if (!std::filesystem::is_regular_file(path))
        return; // /dev/full has no end
    const std::lock_guard<std::mutex> guard(unlocked_lock);
    unlocked = read_file(path).value_or("none");
}

// Body of the other process: locks the file, says so, and waits for the end of the orders. A lock
// that is never free ends it instead, without an answer.
[[noreturn]] void hold(const char *path, int orders, int answers)
{
    alarm(20);
    const int file = open(path, O_RDWR | O_CREAT, 0666);
    const bool locked = file >= 0 && syscall(SYS_flock, file, LOCK_EX) == 0;
    alarm(0);
    char byte = locked ? 'L' : '-';
    if (write(answers, &byte, 1) == 1)
        (void)!read(orders, &byte, 1);
    _exit(0);
}

} // namespace

extern "C" PARA_API int flock(int descriptor, int operation) noexcept
{
    if ((operation & LOCK_EX) != 0) {
        attempts++;
        closes_on_exec = (fcntl(descriptor, F_GETFD) & FD_CLOEXEC) != 0;
        if (to_interrupt > 0) {
            to_interrupt--;
            errno = EINTR;
            return -1;
        }
        if (lock_error != 0) {
            errno = lock_error;
            return -1;
        }
    } else {
        note_unlock(descriptor);
    }
    return static_cast<int>(syscall(SYS_flock, descriptor, operation));
}

int lock_attempts()
{
    return attempts;
}

void interrupt_locks(int count)
{
    to_interrupt = count;
}

void fail_locks(int error)
{
    lock_error = error;
}

bool last_lock_closes_on_exec()
{
    return closes_on_exec;
}

std::string bytes_at_unlock()
{
    const std::lock_guard<std::mutex> guard(unlocked_lock);
    return unlocked;
}

lock_holder::lock_holder(const std::string &path)
{
    int orders[2], answers[2];
    EXPECT_EQ(pipe(orders) + pipe(answers), 0);
    process = fork();
    if (process == 0) {
        close(orders[1]);
        hold(path.c_str(), orders[0], answers[1]);
    }
    close(orders[0]);
    close(answers[1]);
    life = orders[1];

    char answer = 0;
    EXPECT_EQ(read(answers[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'L') << path;
    close(answers[0]);
}

void lock_holder::release()
{
    if (life < 0)
        return;
    close(life);
    life = -1;
    EXPECT_EQ(waitpid(process, nullptr, 0), process);
}
