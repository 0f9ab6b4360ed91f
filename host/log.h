// The host's own messages.
#pragma once

// Writes "camparamd: ", the text and a line end to standard error, as one write. Control characters
// in the text, which may come from the network, become "?", so that it stays one line. Any thread.
void log_line(const char *format, ...) __attribute__((format(printf, 1, 2)));
