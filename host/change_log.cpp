#include "change_log.h"

#include <chrono>
#include <cstdarg>
#include <mutex>
#include <utility>

#include "log.h"
#include "rate_limit.h"

namespace {

constexpr long long most_a_second = 100;

std::mutex lock; // guards what follows
token_bucket listed;
long long filled_ms = 0; // 0: never
unsigned long long unlisted = 0;

long long now_ms()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

bool is_listed()
{
    const long long now = now_ms();
    const std::lock_guard<std::mutex> guard(lock);
    if (filled_ms == 0)
        listed.fill_up(most_a_second);
    else
        listed.fill(most_a_second, now - filled_ms);
    filled_ms = now;
    if (!listed.has_one()) {
        unlisted++;
        return false;
    }
    listed.take(1);
    return true;
}

unsigned long long take_unlisted()
{
    const std::lock_guard<std::mutex> guard(lock);
    return std::exchange(unlisted, 0);
}

} // namespace

void log_change(const char *format, ...)
{
    if (!is_listed())
        return;
    va_list arguments;
    va_start(arguments, format);
    log_line_of(format, arguments);
    va_end(arguments);
}

void tell_unlisted_changes(bool at_once)
{
    static long long next_ms = 0;
    const long long now = now_ms();
    if (now < next_ms && !at_once)
        return;
    const unsigned long long changes = take_unlisted();
    if (changes == 0)
        return;
    next_ms = now + 1000;
    log_line("%llu more changes", changes);
}
