// Taking an input apart.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

class input_reader {
public:
    input_reader(const uint8_t *data, size_t size) : next(data), end(data + size) {}

    bool empty() const { return next == end; }

    // 0 behind the end.
    uint8_t byte() { return empty() ? uint8_t{0} : *next++; }

    // Below the limit.
    int choice(int limit) { return byte() % limit; }

    std::string bytes(size_t length)
    {
        const size_t kept = std::min(length, static_cast<size_t>(end - next));
        std::string text(reinterpret_cast<const char *>(next), kept);
        next += kept;
        return text;
    }

    std::string rest() { return bytes(static_cast<size_t>(end - next)); }

private:
    const uint8_t *next;
    const uint8_t *end;
};

// The parts of a text that stand between bytes 0xff, which no UTF-8 text has; at least one.
inline std::vector<std::string> parts_of(const std::string &text)
{
    std::vector<std::string> parts;
    size_t start = 0;
    for (size_t mark; (mark = text.find('\xff', start)) != std::string::npos; start = mark + 1)
        parts.push_back(text.substr(start, mark - start));
    parts.push_back(text.substr(start));
    return parts;
}
