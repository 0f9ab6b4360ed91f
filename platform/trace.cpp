#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <memory>
#include <mutex>
#include <string>

#include "camparam/platform.h"
#include "camparam/platform_trace.h"
#include "platform/guard.h"
#include "platform/hidden_names.h"
#include "platform/standard_error.h"
#include "platform/trace_limit.h"
#include "platform/trace_line.h"

int dbgout_profile[2] = {0, 3};

namespace {

// The lines on their way to standard error, in order.
class trace_output {
public:
    // Whether a message is to be added; one that is not is counted.
    bool admits(int level, const char *format);
    void add(std::string line);
    int add_none();
    void finish();

private:
    void put(std::string line);
    void tell_withheld(long long now_ms);
    bool begin(std::string line);
    bool go_on();
    bool tell_lost();

    std::mutex lock;
    std::string rest; // of a line that was written in part; nothing else may come between
    unsigned long long lost = 0;
    trace_limit errors;
};

// Never destroyed: threads of the host may trace while the process exits.
trace_output &output()
{
    static trace_output *const only = [] {
        trace_output *const made = new trace_output;
        std::atexit([] { guarded(0, [] { return output().finish(), 0; }); });
        return made;
    }();
    return *only;
}

// Whether nothing of a line is left to write.
bool trace_output::go_on()
{
    while (!rest.empty()) {
        const ssize_t written = write_to_standard_error(rest);
        if (written <= 0)
            return false;
        rest.erase(0, static_cast<size_t>(written));
    }
    return true;
}

// Whether at least a part of the line was written.
bool trace_output::begin(std::string line)
{
    const size_t length = line.size();
    rest = std::move(line);
    if (go_on() || rest.size() < length)
        return true;
    rest.clear();
    return false;
}

bool trace_output::tell_lost()
{
    if (lost == 0)
        return true;
    if (!begin(std::to_string(lost) + (lost == 1 ? " message lost\n" : " messages lost\n")))
        return false;
    lost = 0;
    return rest.empty();
}

void trace_output::put(std::string line)
{
    if (!go_on() || !tell_lost() || !begin(std::move(line)))
        lost++;
}

void trace_output::tell_withheld(long long now_ms)
{
    while (const auto report = errors.take_report(now_ms))
        put(trace_line("\n", *report));
}

long long now_ms()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

// Progress and dumps are asked for, and come in any number.
bool trace_output::admits(int level, const char *format)
{
    const int error_level = 3;
    const std::lock_guard<std::mutex> guard(lock);
    const long long now = now_ms();
    tell_withheld(now);
    return level > error_level || errors.admit(format, now);
}

void trace_output::add(std::string line)
{
    const std::lock_guard<std::mutex> guard(lock);
    put(std::move(line));
}

// Counts a message that there was no memory for.
int trace_output::add_none()
{
    const std::lock_guard<std::mutex> guard(lock);
    lost++;
    return 0;
}

// Does not wait for a thread that writes: the child of a fork may have the lock without the thread.
void trace_output::finish()
{
    const std::unique_lock<std::mutex> guard(lock, std::try_to_lock);
    if (!guard.owns_lock())
        return;
    tell_withheld(std::numeric_limits<long long>::max());
    if (go_on())
        tell_lost();
}

// Never destroyed, as the output is not.
std::atomic<const hidden_names *> hidden;

struct text_free {
    void operator()(char *text) const { free(text); }
};

int write_message(int level, const char *format, va_list arguments)
{
    if (!output().admits(level, format))
        return 0;
    char *text = nullptr;
    const int length = vasprintf(&text, format, arguments);
    if (length < 0)
        return -1;
    const std::unique_ptr<char, text_free> owner(text);
    const std::string_view message(text, static_cast<size_t>(length));
    const hidden_names *const secrets = hidden.load(std::memory_order_acquire);
    output().add(secrets == nullptr ? trace_line(format, message)
                                    : trace_line(format, secrets->shown(message)));
    return 0;
}

} // namespace

int hide_in_traces(const char *const *names, int count)
{
    return guarded(-1, [&] {
        std::unique_ptr<hidden_names> made;
        if (count > 0)
            made = std::make_unique<hidden_names>();
        for (int i = 0; i < count; i++)
            made->add(names[i]);
        delete hidden.exchange(made.release());
        return 0;
    });
}

void wnk_traceout(int level, const char *format, ...)
{
    const int callers_errno = errno; // callers may trace before they check errno

    va_list arguments;
    va_start(arguments, format);
    if (guarded(-1, [&] { return write_message(level, format, arguments); }) != 0)
        guarded(-1, [] { return output().add_none(); });
    va_end(arguments);
    errno = callers_errno;
}
