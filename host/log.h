// Messages of camparamd itself.
#pragma once

#include <cstdarg>

// Writes "camparamd: ", the text and a newline the way traces go, whatever the level, so that a
// message never waits for its reader. Control characters, which may come from the network, are
// replaced with "?", so that it stays on its line. Any thread.
void log_line(const char *format, ...) __attribute__((format(printf, 1, 2)));
void log_line_of(const char *format, va_list arguments) __attribute__((format(printf, 1, 0)));
