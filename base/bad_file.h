// With the guard on: where a file goes that is of no use.
#pragma once

#include "base/backup.h"

// Renames a file to "<path>.bad", in place of the one before; where that is no file of the same
// kind, to the first free one of "<path>.bad.1" to "<path>.bad.9". Stores the new name. Returns 0,
// or the error number when the file stays.
int set_aside(const char *path, file_beside &kept);
