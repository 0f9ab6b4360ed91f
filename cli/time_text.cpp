#include "time_text.h"

#include <cstdio>
#include <ctime>

std::string time_text(long long ms)
{
    const auto seconds = static_cast<time_t>(ms / 1000);
    tm local = {};
    localtime_r(&seconds, &local);
    char date[32] = "", fraction[8] = "";
    strftime(date, sizeof date, "%Y-%m-%d %H:%M:%S", &local);
    snprintf(fraction, sizeof fraction, ".%03d", static_cast<int>(ms % 1000));
    return std::string(date) + fraction;
}

std::string span_text(long long seconds)
{
    struct {
        long long seconds;
        const char *name;
    } const units[] = {{86400, "d"}, {3600, "h"}, {60, "min"}, {1, "s"}};
    for (size_t i = 0; i < 3; i++) {
        if (seconds < units[i].seconds)
            continue;
        const long long rest = seconds % units[i].seconds / units[i + 1].seconds;
        return std::to_string(seconds / units[i].seconds) + " " + units[i].name + " " +
               std::to_string(rest) + " " + units[i + 1].name;
    }
    return std::to_string(seconds) + " s";
}
