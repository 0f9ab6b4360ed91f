#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>

#include "camparam/platform.h"
#include "platform/guard.h"
#include "platform/standard_error.h"
#include "platform/trace_line.h"

int dbgout_profile[2] = {0, 3};

namespace {

// The lines on their way to standard error, in order.
class trace_output {
public:
    void add(std::string line);
    int add_none();
    void finish();

private:
    bool begin(std::string line);
    bool go_on();
    bool tell_lost();

    std::mutex lock;
    std::string rest; // of a line that was written in part; nothing else may come between
    unsigned long long lost = 0;
};

// Never destroyed: threads of the host may trace while the process exits.
trace_output &output()
{
    static trace_output *const only = [] {
        trace_output *const made = new trace_output;
        std::atexit([] { output().finish(); });
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

void trace_output::add(std::string line)
{
    const std::lock_guard<std::mutex> guard(lock);
    if (!go_on() || !tell_lost() || !begin(std::move(line)))
        lost++;
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
    if (guard.owns_lock() && go_on())
        tell_lost();
}

struct text_free {
    void operator()(char *text) const { free(text); }
};

int write_message(const char *format, va_list arguments)
{
    char *text = nullptr;
    const int length = vasprintf(&text, format, arguments);
    if (length < 0)
        return -1;
    const std::unique_ptr<char, text_free> owner(text);
    output().add(trace_line(format, {text, static_cast<size_t>(length)}));
    return 0;
}

} // namespace

void wnk_traceout(int level, const char *format, ...)
{
    (void)level;
    const int callers_errno = errno; // callers may trace before they check errno

    va_list arguments;
    va_start(arguments, format);
    if (guarded(-1, [&] { return write_message(format, arguments); }) != 0)
        guarded(-1, [] { return output().add_none(); });
    va_end(arguments);
    errno = callers_errno;
}
