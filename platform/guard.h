// Keeps exceptions, which this library uses, out of its C interface.
#pragma once

#include <cerrno>
#include <exception>

// Runs an action that allocates or starts a thread. Returns what it returns, or on_failure and
// errno ENOMEM when memory or threads run out.
template <typename result, typename action> result guarded(result on_failure, action run) noexcept
{
    try {
        return run();
    } catch (const std::exception &) {
        errno = ENOMEM;
        return on_failure;
    }
}
