// How often an error is traced: what the network can cause would otherwise fill the log.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

// Not for several threads at once.
class trace_limit {
public:
    static constexpr unsigned most_a_second = 50; // of one format

    // Whether a message of that format is to be written; otherwise it is counted. All that is due
    // has been reported before.
    bool admit(const char *format, long long now_ms);

    // A message about one format's count of a second that is over; nothing when there is none.
    std::optional<std::string> take_report(long long now_ms);

private:
    struct kind {
        const char *format = nullptr; // only compared: it may have gone
        char shown[100] = "";         // its text, perhaps cut
        long long begin_ms = 0;
        unsigned written = 0;
        unsigned long long withheld = 0;

        bool is_over(long long now_ms) const { return now_ms - begin_ms >= 1000; }
    };

    kind *find(const char *format, long long now_ms);

    kind kinds[32];
};
