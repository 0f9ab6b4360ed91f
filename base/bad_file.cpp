#include "base/bad_file.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

#include "base/file.h"

static bool is_of_another_kind(int error)
{
    return error == EISDIR || error == ENOTDIR || error == ENOTEMPTY || error == EEXIST;
}

// A link to nothing takes a name as well.
static bool is_free(const char *path)
{
    struct stat about = {};
    return lstat(path, &about) != 0 && errno == ENOENT;
}

int set_aside(const char *path, file_beside &kept)
{
    const int error = error_of(rename(path, kept.text) == 0);
    if (!is_of_another_kind(error))
        return error;
    constexpr int last = 9;
    for (int number = 1; number <= last; number++) {
        char suffix[16];
        snprintf(suffix, sizeof suffix, ".bad.%d", number);
        const file_beside next(path, suffix);
        if (is_free(next.text)) {
            kept = next;
            return error_of(rename(path, next.text) == 0);
        }
    }
    return error;
}
