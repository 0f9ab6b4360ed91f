#include "platform/standard_error.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>

#include "platform/descriptor.h"

static ssize_t write_once(int file, std::string_view bytes)
{
    ssize_t written;
    do {
        written = write(file, bytes.data(), bytes.size());
    } while (written < 0 && errno == EINTR);
    return written;
}

static bool has_room()
{
    pollfd asked = {.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
    return poll(&asked, 1, 0) == 1;
}

// A pipe with room takes PIPE_BUF bytes; a terminal takes one at least.
static ssize_t write_pieces(std::string_view bytes, size_t piece)
{
    size_t done = 0;
    ssize_t written = 0;
    while (done < bytes.size() && has_room()) {
        written = write_once(STDERR_FILENO, bytes.substr(done, piece));
        if (written < 0)
            break;
        done += static_cast<size_t>(written);
    }
    if (done > 0 || bytes.empty())
        return static_cast<ssize_t>(done);
    if (written == 0)
        errno = EAGAIN;
    return -1;
}

// O_NONBLOCK belongs to the open file, so the pipe or terminal is opened once more. That fails
// where /proc is missing or the pipe belongs to another user.
static ssize_t write_to_pipe(std::string_view bytes, size_t piece)
{
    const descriptor own(open("/proc/self/fd/2", O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    return own ? write_once(own.number(), bytes) : write_pieces(bytes, piece);
}

ssize_t write_to_standard_error(std::string_view bytes)
{
    struct stat status = {};
    if (fstat(STDERR_FILENO, &status) != 0)
        return -1;
    if (S_ISSOCK(status.st_mode))
        return send(STDERR_FILENO, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (S_ISFIFO(status.st_mode))
        return write_to_pipe(bytes, PIPE_BUF);
    if (S_ISCHR(status.st_mode) && isatty(STDERR_FILENO) != 0)
        return write_to_pipe(bytes, 1);
    return write_once(STDERR_FILENO, bytes);
}
