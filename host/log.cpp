#include "log.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "camparam/platform.h"

void log_line(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    char *text = nullptr;
    const int length = vasprintf(&text, format, arguments);
    va_end(arguments);
    if (length < 0)
        return;

    std::string line = text;
    free(text);
    std::replace_if(
        line.begin(), line.end(),
        [](unsigned char letter) { return letter < ' ' || letter == 0x7f; }, '?');
    const int progress = 6;
    wnk_traceout(progress, "camparamd: %s\n", line.c_str());
}
