#include "platform/file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "camparam/platform.h"
#include "platform/guard.h"

static bool readable(const struct stat &status)
{
    if (S_ISDIR(status.st_mode))
        errno = EISDIR;
    else if (!S_ISREG(status.st_mode))
        errno = EINVAL;
    else if (status.st_size > static_cast<off_t>(largest_file))
        errno = EFBIG;
    else
        return true;
    return false;
}

// Looks before it opens, as to open a device may start something, and again at what it opened, as
// the path may lead elsewhere by then. O_NONBLOCK: not to wait for the other end of a FIFO.
descriptor open_to_read(const char *path)
{
    struct stat status = {};
    if (path == nullptr) {
        errno = EINVAL;
        return descriptor();
    }
    if (stat(path, &status) != 0 || !readable(status))
        return descriptor();

    descriptor file(open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file || fstat(file.number(), &status) != 0 || !readable(status))
        return descriptor();
    return file;
}

static ssize_t read_block(int file, char *block, size_t size)
{
    ssize_t length;
    do {
        length = read(file, block, size);
    } while (length < 0 && errno == EINTR);
    return length;
}

std::optional<std::string> read_rest(const descriptor &file)
{
    std::string bytes;
    std::array<char, 16384> block;
    ssize_t length;
    while ((length = read_block(file.number(), block.data(), block.size())) > 0) {
        if (bytes.size() + static_cast<size_t>(length) > largest_file) {
            errno = EFBIG;
            return std::nullopt;
        }
        bytes.append(block.data(), static_cast<size_t>(length));
    }
    if (length < 0)
        return std::nullopt;
    return bytes;
}

// The pauses are counted too, so that the wait ends when the clock stands.
bool lock_to_read(const descriptor &file)
{
    using namespace std::chrono;
    constexpr milliseconds longest{2000};
    constexpr milliseconds pause{10};
    const steady_clock::time_point deadline = steady_clock::now() + longest;
    for (int pauses = 0; flock(file.number(), LOCK_SH | LOCK_NB) != 0; pauses++) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            return true;
        if (pauses == longest / pause || steady_clock::now() >= deadline) {
            errno = EWOULDBLOCK;
            return false;
        }
        std::this_thread::sleep_for(pause);
    }
    return true;
}

static char *heap_text(const std::string &bytes)
{
    char *const text = static_cast<char *>(malloc(bytes.size() + 1));
    if (text != nullptr)
        memcpy(text, bytes.c_str(), bytes.size() + 1);
    return text;
}

char *read_file_to_buf(const char *path)
{
    return guarded<char *>(nullptr, [path]() -> char * {
        const descriptor file = open_to_read(path);
        if (!file)
            return nullptr;
        const std::optional<std::string> bytes = read_rest(file);
        return bytes ? heap_text(*bytes) : nullptr;
    });
}

char *cat_file_name(char *path, const char *dir, const char *name)
{
    const size_t dir_length = dir != nullptr ? strlen(dir) : 0;
    const size_t name_length = strlen(name);
    const bool bare = dir == nullptr || (dir_length > 0 && dir[dir_length - 1] == '/');
    const size_t separator_length = bare ? 0 : 1;

    path[0] = '\0';
    if (dir_length + separator_length + name_length >= PARA_PATH_SIZE)
        return path;

    if (dir_length > 0)
        memcpy(path, dir, dir_length);
    if (!bare)
        path[dir_length] = '/';
    memcpy(path + dir_length + separator_length, name, name_length + 1);
    return path;
}
