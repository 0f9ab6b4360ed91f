// The border between this library, which may throw, and its C interface, which must not.
#pragma once

#include <exception>

// Runs an action that allocates or starts a thread. Returns what it returns, or on_failure when
// memory or threads run out.
template <typename result, typename action> result guarded(result on_failure, action run) noexcept
{
    try {
        return run();
    } catch (const std::exception &) {
        return on_failure;
    }
}
