#include "base/late_file.h"

#include <sys/stat.h>

#include <cerrno>

#include "base/backup.h"
#include "base/file.h"
#include "base/guard.h"

static missed_file missed_at(const char *path)
{
    struct stat folder = {};
    if (stat(folder_of(path).text, &folder) != 0)
        return {.missing = true, .device = 0, .folder = 0};
    return {.missing = true, .device = folder.st_dev, .folder = folder.st_ino};
}

bool is_missing_at_load(const char *path, save_state &state)
{
    const bool missing = is_missing(path);
    if (guard_is_on())
        note_missed(state, missing ? missed_at(path) : missed_file{});
    return missing;
}

int find_late_file(const char *path, const save_state &state)
{
    const missed_file before = last_missed(state);
    if (!before.missing)
        return 0;
    const missed_file now = missed_at(path);
    if (before.device == now.device && before.folder == now.folder)
        return 0;
    struct stat about = {};
    if (stat(path, &about) == 0)
        return S_ISREG(about.st_mode) ? EEXIST : 0;
    return errno == ENOENT || errno == ENOTDIR ? 0 : errno;
}
