#include "faults/allocations.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>

// The sanitizers' own allocators, where they are linked; else the C library's.
extern "C" {
[[gnu::weak]] void *__interceptor_malloc(size_t size);
[[gnu::weak]] void *__interceptor_calloc(size_t count, size_t size);
[[gnu::weak]] void *__interceptor_realloc(void *block, size_t size);
[[gnu::weak]] void __interceptor_free(void *block);
void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *block, size_t size);
void __libc_free(void *block);
}

namespace {

// Plain words: this is read while the process starts.
struct thread_state {
    bool armed;
    shortage lasting;
    long failing, tried, kept;
};
__thread thread_state of_thread;

bool fails()
{
    if (!of_thread.armed)
        return false;
    const long number = ++of_thread.tried;
    const bool failed = of_thread.failing != 0 &&
                        (number == of_thread.failing ||
                         (number > of_thread.failing && of_thread.lasting == shortage::for_ever));
    if (failed)
        errno = ENOMEM;
    return failed;
}

void count(const void *got, const void *given_back)
{
    if (of_thread.armed)
        of_thread.kept += (got != nullptr ? 1 : 0) - (given_back != nullptr ? 1 : 0);
}

} // namespace

Allocations::Allocations(long failing, shortage lasting)
{
    of_thread = {true, lasting, failing, 0, 0};
}

Allocations::~Allocations()
{
    of_thread.armed = false;
}

long Allocations::tried() const
{
    return of_thread.tried;
}

long Allocations::kept() const
{
    return of_thread.kept;
}

extern "C" {

__attribute__((visibility("default"))) void *malloc(size_t size)
{
    if (fails())
        return nullptr;
    void *const block =
        __interceptor_malloc != nullptr ? __interceptor_malloc(size) : __libc_malloc(size);
    count(block, nullptr);
    return block;
}

__attribute__((visibility("default"))) void *calloc(size_t number, size_t size)
{
    if (fails())
        return nullptr;
    void *const block = __interceptor_calloc != nullptr ? __interceptor_calloc(number, size)
                                                        : __libc_calloc(number, size);
    count(block, nullptr);
    return block;
}

__attribute__((visibility("default"))) void *realloc(void *block, size_t size)
{
    if (fails())
        return nullptr;
    void *const moved = __interceptor_realloc != nullptr ? __interceptor_realloc(block, size)
                                                         : __libc_realloc(block, size);
    count(moved, block);
    return moved;
}

__attribute__((visibility("default"))) void free(void *block)
{
    count(nullptr, block);
    if (__interceptor_free != nullptr)
        __interceptor_free(block);
    else
        __libc_free(block);
}

// The sanitizers' own would not ask for memory here.
__attribute__((visibility("default"))) char *strdup(const char *text)
{
    const size_t size = strlen(text) + 1;
    auto *const copy = static_cast<char *>(malloc(size));
    return copy != nullptr ? static_cast<char *>(memcpy(copy, text, size)) : nullptr;
}

} // extern "C"
