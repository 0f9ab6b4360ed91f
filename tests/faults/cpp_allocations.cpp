// C++ allocations by the C library's functions, which can fail in this program.
#include <cstddef>
#include <cstdlib>
#include <new>

// The sanitizers' own never fail.
__attribute__((visibility("default"))) void *operator new(size_t size)
{
    void *const block = malloc(size > 0 ? size : 1);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

__attribute__((visibility("default"))) void *operator new(size_t size,
                                                          const std::nothrow_t &) noexcept
{
    return malloc(size > 0 ? size : 1);
}

__attribute__((visibility("default"))) void operator delete(void *block) noexcept
{
    free(block);
}

__attribute__((visibility("default"))) void operator delete(void *block, size_t) noexcept
{
    free(block);
}
