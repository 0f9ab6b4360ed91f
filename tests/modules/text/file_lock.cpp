#include "modules/text/file_lock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>

#include "camparam/api.h"

namespace {

std::atomic<int> attempts{0};

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
    if ((operation & LOCK_EX) != 0)
        attempts++;
    return static_cast<int>(syscall(SYS_flock, descriptor, operation));
}

int lock_attempts()
{
    return attempts;
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
