#include "faults/child.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <utility>

extern "C" {
[[gnu::weak]] int __lsan_do_recoverable_leak_check();

// Else a process with another thread waits a second before it ends.
__attribute__((visibility("default"), no_sanitize("thread"))) const char *__tsan_default_options()
{
    return "atexit_sleep_ms=0";
}
}

namespace {

[[noreturn]] void report(const std::string &text, int writing)
{
    const bool told = write(writing, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    const bool leaks =
        __lsan_do_recoverable_leak_check != nullptr && __lsan_do_recoverable_leak_check() != 0;
    _exit(told && !leaks ? 0 : 1);
}

} // namespace

Child::Child(const std::function<std::string()> &run) : process(-1), reading(-1)
{
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    process = fork();
    if (process == 0) {
        close(ends[0]);
        report(run(), ends[1]);
    }
    close(ends[1]);
    reading = ends[0];
}

Child::Child(Child &&other) noexcept
    : process(std::exchange(other.process, -1)), reading(std::exchange(other.reading, -1))
{
}

Child::~Child()
{
    if (process > 0)
        result();
}

std::string Child::result()
{
    std::string text;
    char bytes[4096];
    for (ssize_t length; (length = read(reading, bytes, sizeof bytes)) > 0;)
        text.append(bytes, static_cast<size_t>(length));
    close(reading);
    int status = -1;
    EXPECT_GT(waitpid(std::exchange(process, -1), &status, 0), 0);
    EXPECT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    return text;
}
