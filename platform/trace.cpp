#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "camparam/platform.h"

int dbgout_profile[2] = {0, 3};

static void write_message(const char *message, int length)
{
    ssize_t written;
    do {
        written = write(STDERR_FILENO, message, static_cast<size_t>(length));
    } while (written < 0 && errno == EINTR);
}

void wnk_traceout(int level, const char *format, ...)
{
    (void)level;
    const int callers_errno = errno; // callers may trace before they check errno

    va_list arguments;
    va_start(arguments, format);
    char *message = nullptr;
    const int length = vasprintf(&message, format, arguments);
    va_end(arguments);

    if (length >= 0) {
        write_message(message, length);
        free(message);
    }
    errno = callers_errno;
}
