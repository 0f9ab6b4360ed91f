#include "progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

progress::progress(std::string what, double total)
    : title(std::move(what)), whole(total), is_seen(isatty(STDERR_FILENO) == 1)
{
}

progress::~progress()
{
    if (is_drawn)
        fputs("\r\033[K", stderr);
}

double progress::passed_s() const
{
    return std::chrono::duration<double>(clock::now() - begin).count();
}

void progress::tell(double done)
{
    so_far = done;
    const auto now = clock::now();
    const bool is_due = passed_s() > 1 && now - drawn > std::chrono::milliseconds(100);
    if (!is_seen || !is_due)
        return;
    drawn = now;
    is_drawn = true;
    const int width = 30;
    const double part = whole > 0 ? std::clamp(done / whole, 0.0, 1.0) : 1;
    const int filled = static_cast<int>(part * width);
    fprintf(stderr, "\r%s [%s%s] %.0f of %.0f\033[K", title.c_str(),
            std::string(static_cast<size_t>(filled), '#').c_str(),
            std::string(static_cast<size_t>(width - filled), ' ').c_str(), done, whole);
    fflush(stderr);
}

void progress::tell_time()
{
    tell(std::min(passed_s(), whole));
}
