#include "log.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "camparam/platform.h"

void log_line(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    log_line_of(format, arguments);
    va_end(arguments);
}

void log_line_of(const char *format, va_list arguments)
{
    char *text = nullptr;
    if (vasprintf(&text, format, arguments) < 0)
        return;

    std::string line = text;
    free(text);
    std::replace_if(
        line.begin(), line.end(),
        [](unsigned char letter) { return letter < ' ' || letter == 0x7f; }, '?');
    const int progress = 6;
    wnk_traceout(progress, "camparamd: %s\n", line.c_str());
}
