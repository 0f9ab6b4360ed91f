// An open file descriptor, closed at the end of its scope.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

class descriptor {
public:
    explicit descriptor(int opened = -1) : owned(opened) {}
    descriptor(descriptor &&other) noexcept : owned(std::exchange(other.owned, -1)) {}
    descriptor(const descriptor &) = delete;
    descriptor &operator=(const descriptor &) = delete;
    descriptor &operator=(descriptor &&) = delete;
    // Leaves errno alone: it tells why the scope ends.
    ~descriptor()
    {
        const int error = errno;
        if (owned >= 0)
            close(owned);
        errno = error;
    }

    explicit operator bool() const { return owned >= 0; }
    int number() const { return owned; }

private:
    int owned;
};
