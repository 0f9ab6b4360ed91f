// How far a command has come.
#pragma once

#include <chrono>
#include <string>

// A bar on standard error, if that is a terminal: from the second second on, until its end.
class progress {
public:
    progress(std::string what, double total);
    ~progress();
    progress(const progress &) = delete;
    progress &operator=(const progress &) = delete;

    // Of the total. It may be told as often as one likes.
    void tell(double done);
    void step(double more = 1) { tell(so_far + more); }
    // A total of seconds: as many as have passed.
    void tell_time();

private:
    using clock = std::chrono::steady_clock;
    double passed_s() const;

    const std::string title;
    const double whole;
    const bool is_seen;
    const clock::time_point begin = clock::now();
    clock::time_point drawn = begin;
    double so_far = 0;
    bool is_drawn = false;
};
