// Memory that runs out at a chosen allocation of the calling thread: of the store, of its JSON
// library and of the C library, whose allocators the test program replaces.
#pragma once

// How long memory is gone once it has run out.
enum class shortage { once, for_ever };

// Until the end of the block the chosen allocation of this thread fails, counted from 1; 0: none.
// Blocks do not nest.
class Allocations {
public:
    explicit Allocations(long failing = 0, shortage lasting = shortage::once);
    ~Allocations();
    Allocations(const Allocations &) = delete;
    Allocations &operator=(const Allocations &) = delete;

    // So far in this block: allocations tried, and blocks got but not given back.
    long tried() const;
    long kept() const;
};
