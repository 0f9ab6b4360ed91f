// How much each source may ask for: a token bucket for its requests, and one for the bytes of its
// replies.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>

struct rate {
    long long requests_per_second = 500;
    long long reply_bytes_per_second = 128LL * 1024;
};

// What a second brings, a bucket holds at the most. It may owe: the size of a reply is known only
// when it has been sent.
class token_bucket {
public:
    void fill(long long per_second, long long elapsed_ms);
    void fill_up(long long per_second) { thousandths = per_second * 1000; }
    void take(long long tokens) { thousandths -= tokens * 1000; }
    bool has_one() const { return thousandths >= 1000; }

private:
    long long thousandths = 0;
};

// Any thread. The memory is fixed: another source takes the place of the one that was not heard of
// for the longest time, and what is left in its buckets, so that nobody gains by changing
// addresses.
class rate_limit {
public:
    static constexpr size_t sources = 256;

    explicit rate_limit(const rate &of_each) : allowed(of_each) {}

    // Whether a request of the source is within its rate; then it is counted.
    bool admit(uint32_t address, long long now_ms);

    // Counts a reply to the source.
    void charge(uint32_t address, int reply_bytes, long long now_ms);

private:
    struct source {
        uint32_t address = 0;
        bool used = false;
        long long heard_ms = 0;
        token_bucket requests, reply_bytes;
    };

    source &place_for(uint32_t address);
    source &source_of(uint32_t address, long long now_ms);

    const rate allowed;
    std::mutex lock; // guards the sources
    std::array<source, sources> known;
};
