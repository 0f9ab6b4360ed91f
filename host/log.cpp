#include "log.h"

#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

void log_line(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    char *text = nullptr;
    const int length = vasprintf(&text, format, arguments);
    va_end(arguments);
    if (length < 0)
        return;

    std::string line = "camparamd: ";
    line += text;
    free(text);
    std::replace_if(
        line.begin(), line.end(),
        [](unsigned char letter) { return letter < ' ' || letter == 0x7f; }, '?');
    line += '\n';
    // A message that cannot be written is lost.
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
}
