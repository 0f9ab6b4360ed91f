#include "support/device.h"

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <mutex>

namespace {

struct record {
    std::mutex lock;
    std::vector<trace_line> traces;
    std::vector<std::string> shell_commands;
    int shell_status = 0;
    std::vector<std::vector<fifo_work>> work;
};

// Never destroyed: the store's thread may still trace while the process ends.
record &seen()
{
    static record *const all = new record;
    return *all;
}

std::atomic<long long> clock_moved_ms{0};
std::atomic<bool> clock_stopped{false};
std::atomic<long long> stopped_at_seconds{0};
std::atomic<long> stopped_at_nanoseconds{0};
std::atomic<bool> wall_clock_stopped{false};
std::atomic<long long> wall_clock_seconds{0};
std::atomic<void (*)()> clock_watcher{nullptr};
std::atomic<int> shell_error{0};

trace_line split(int level, const char *format, const std::string &message)
{
    // "[para " function " +" line, padded "]" text
    const size_t name = 6;
    const size_t plus = message.find(" +");
    const size_t end = message.find(']', plus);
    if (message.compare(0, name, "[para ") != 0 || end == std::string::npos)
        return {level, "", message, 0, format};
    return {level, message.substr(name, plus - name), message.substr(end + 1),
            atoi(message.c_str() + plus + 2), format};
}

} // namespace

extern "C" {

PARA_API int clock_gettime(clockid_t clock, timespec *now) noexcept
{
    const long result = syscall(SYS_clock_gettime, clock, now);
    if (result == 0 && clock == CLOCK_MONOTONIC) {
        if (clock_stopped)
            *now = {static_cast<time_t>(stopped_at_seconds), stopped_at_nanoseconds};
        const long long moved = clock_moved_ms.load();
        const long long nanoseconds = now->tv_nsec + moved % 1000 * 1000000;
        now->tv_sec += static_cast<time_t>(moved / 1000 + nanoseconds / 1000000000);
        now->tv_nsec = static_cast<long>(nanoseconds % 1000000000);
        if (void (*const watcher)() = clock_watcher)
            watcher();
    }
    if (result == 0 && clock == CLOCK_REALTIME && wall_clock_stopped)
        *now = {static_cast<time_t>(wall_clock_seconds), 0};
    return static_cast<int>(result);
}

PARA_API void wnk_traceout(int level, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    char *message = nullptr;
    if (vasprintf(&message, format, arguments) >= 0) {
        const std::lock_guard<std::mutex> guard(seen().lock);
        seen().traces.push_back(split(level, format, message));
        free(message);
    }
    va_end(arguments);
}

PARA_API int lib_system(const char *command)
{
    const std::lock_guard<std::mutex> guard(seen().lock);
    seen().shell_commands.emplace_back(command);
    errno = shell_error;
    return shell_error != 0 ? -1 : seen().shell_status;
}

PARA_API int add_fifo_work(const fifo_work *works, int count)
{
    const std::lock_guard<std::mutex> guard(seen().lock);
    seen().work.emplace_back(works, works + count);
    return 0;
}

} // extern "C"

void move_clock(int milliseconds)
{
    clock_moved_ms += milliseconds;
}

void stop_clock()
{
    timespec now = {};
    syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &now);
    stopped_at_seconds = now.tv_sec;
    stopped_at_nanoseconds = now.tv_nsec;
    clock_stopped = true;
}

void set_clock(long long seconds, long nanoseconds)
{
    stopped_at_seconds = seconds;
    stopped_at_nanoseconds = nanoseconds;
    clock_moved_ms = 0;
    clock_stopped = true;
}

void set_wall_clock(long long seconds)
{
    wall_clock_seconds = seconds;
    wall_clock_stopped = true;
}

void watch_clock(void (*watcher)())
{
    clock_watcher = watcher;
}

void set_trace_level(int level)
{
    __atomic_store_n(&dbgout_profile[1], level, __ATOMIC_RELAXED);
}

std::vector<trace_line> traces()
{
    const std::lock_guard<std::mutex> guard(seen().lock);
    return seen().traces;
}

std::vector<std::string> traces_of(const std::string &function)
{
    std::vector<std::string> texts;
    for (const trace_line &line : traces()) {
        if (line.function == function)
            texts.push_back(line.text);
    }
    return texts;
}

void forget_traces()
{
    const std::lock_guard<std::mutex> guard(seen().lock);
    seen().traces.clear();
}

int count_traces(const std::string &text, const std::string &function)
{
    const std::vector<trace_line> all = traces();
    return static_cast<int>(std::count_if(all.begin(), all.end(), [&](const trace_line &line) {
        return line.text == text + "\n" && (function.empty() || line.function == function);
    }));
}

std::vector<int> levels_of(const std::string &text, const std::string &function)
{
    std::vector<int> levels;
    for (const trace_line &line : traces()) {
        const bool counts = line.text == text + "\n" && line.function == function;
        if (counts && std::find(levels.begin(), levels.end(), line.level) == levels.end())
            levels.push_back(line.level);
    }
    return levels;
}

std::vector<std::string> shell_commands()
{
    const std::lock_guard<std::mutex> guard(seen().lock);
    return seen().shell_commands;
}

void set_shell_status(int status)
{
    const std::lock_guard<std::mutex> guard(seen().lock);
    seen().shell_status = status;
}

void fail_shell_commands(int error)
{
    shell_error = error;
}

std::vector<std::vector<fifo_work>> registered_work()
{
    const std::lock_guard<std::mutex> guard(seen().lock);
    return seen().work;
}

para_module_status status_of(const std::string &row)
{
    para_module_status found = {};
    EXPECT_EQ(platformparam_get_status(row.c_str(), &found), 0) << row;
    return found;
}

bool wait_until(const std::function<bool()> &condition)
{
    const long turn_us = 2000;
    for (long waited_us = 0; waited_us < 20000000; waited_us += turn_us) {
        if (condition())
            return true;
        usleep(static_cast<useconds_t>(turn_us));
    }
    return condition();
}
