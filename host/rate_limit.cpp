#include "rate_limit.h"

#include <algorithm>

void token_bucket::fill(long long per_second, long long elapsed_ms)
{
    const long long full = per_second * 1000;
    const long long longest_ms = 1000000; // keeps the product small
    const long long elapsed = std::clamp(elapsed_ms, 0LL, longest_ms);
    thousandths = std::min(full, thousandths + per_second * elapsed);
}

// The source's own place, else a free one, else that of the source that was silent the longest.
rate_limit::source &rate_limit::place_for(uint32_t address)
{
    const auto own = std::find_if(known.begin(), known.end(), [&](const source &each) {
        return each.used && each.address == address;
    });
    if (own != known.end())
        return *own;
    return *std::min_element(known.begin(), known.end(), [](const source &one, const source &two) {
        return one.used != two.used ? !one.used : one.heard_ms < two.heard_ms;
    });
}

rate_limit::source &rate_limit::source_of(uint32_t address, long long now_ms)
{
    source &found = place_for(address);
    if (found.used) {
        found.requests.fill(allowed.requests_per_second, now_ms - found.heard_ms);
        found.reply_bytes.fill(allowed.reply_bytes_per_second, now_ms - found.heard_ms);
    } else {
        found.requests.fill_up(allowed.requests_per_second);
        found.reply_bytes.fill_up(allowed.reply_bytes_per_second);
    }
    found.used = true;
    found.address = address;
    found.heard_ms = now_ms;
    return found;
}

bool rate_limit::admit(uint32_t address, long long now_ms)
{
    const std::lock_guard<std::mutex> guard(lock);
    source &asking = source_of(address, now_ms);
    if (!asking.requests.has_one() || !asking.reply_bytes.has_one())
        return false;
    asking.requests.take(1);
    return true;
}

void rate_limit::charge(uint32_t address, int reply_bytes, long long now_ms)
{
    const std::lock_guard<std::mutex> guard(lock);
    source_of(address, now_ms).reply_bytes.take(reply_bytes);
}
