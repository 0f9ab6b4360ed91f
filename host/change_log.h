// Messages about changes, of which clients may make any number.
#pragma once

// As log_line(), but of 100 messages a second at the most. The others are counted. Any thread.
void log_change(const char *format, ...) __attribute__((format(printf, 1, 2)));

// Tells in a message how many changes were not listed, if any. Main thread only, a few times a
// second: it does so once a second, or at once.
void tell_unlisted_changes(bool at_once);
