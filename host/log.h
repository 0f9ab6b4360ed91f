// Messages of camparamd itself.
#pragma once

// Writes "camparamd: ", the text and a newline to standard error in one write. Control characters,
// which may come from the network, are replaced with "?", so that a message stays on its line. Any
// thread.
void log_line(const char *format, ...) __attribute__((format(printf, 1, 2)));
