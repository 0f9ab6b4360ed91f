#include "support/reallocation.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

// The sanitizers' own allocator, where it is linked; else the C library's.
extern "C" {
[[gnu::weak]] void *__interceptor_realloc(void *block, size_t size);
void *__libc_realloc(void *block, size_t size);
}

static std::atomic<reallocation_hook> current{nullptr};
static __thread bool is_called;

void on_reallocation(reallocation_hook hook)
{
    current = hook;
}

static bool is_granted()
{
    const reallocation_hook hook = current;
    if (hook == nullptr || is_called)
        return true;
    is_called = true;
    const bool granted = hook();
    is_called = false;
    return granted;
}

extern "C" __attribute__((visibility("default"))) void *realloc(void *block, size_t size)
{
    if (!is_granted()) {
        errno = ENOMEM;
        return nullptr;
    }
    return __interceptor_realloc != nullptr ? __interceptor_realloc(block, size)
                                            : __libc_realloc(block, size);
}
