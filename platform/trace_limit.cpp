#include "platform/trace_limit.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

// The format's own place, else one whose second is over. Null when all are in use.
trace_limit::kind *trace_limit::find(const char *format, long long now_ms)
{
    const auto own = std::find_if(std::begin(kinds), std::end(kinds),
                                  [=](const kind &each) { return each.format == format; });
    const auto free = std::find_if(std::begin(kinds), std::end(kinds), [=](const kind &each) {
        return each.format == nullptr || each.is_over(now_ms);
    });
    kind *const found = own != std::end(kinds) ? own : free;
    if (found == std::end(kinds))
        return nullptr;
    if (found->format != format || found->is_over(now_ms)) {
        *found = {.format = format, .begin_ms = now_ms};
        snprintf(found->shown, sizeof found->shown, "%s", format);
    }
    return found;
}

bool trace_limit::admit(const char *format, long long now_ms)
{
    kind *const found = find(format, now_ms);
    if (found == nullptr)
        return true;
    if (found->written < most_a_second) {
        found->written++;
        return true;
    }
    found->withheld++;
    return false;
}

std::optional<std::string> trace_limit::take_report(long long now_ms)
{
    const auto due = std::find_if(std::begin(kinds), std::end(kinds), [=](const kind &each) {
        return each.withheld != 0 && each.is_over(now_ms);
    });
    if (due == std::end(kinds))
        return std::nullopt;
    std::string report = std::to_string(due->withheld) + " more of: " + due->shown;
    due->withheld = 0;
    report.erase(report.find_last_not_of('\n') + 1);
    return report;
}
