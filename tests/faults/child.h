// A part of a test in a process of its own, for what a process can do only once.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

class Child {
public:
    // Runs a function in a copy of this process, which must have one thread; its text is the
    // result.
    explicit Child(const std::function<std::string()> &run);
    Child(Child &&other) noexcept;
    ~Child();
    Child &operator=(Child &&) = delete;

    // Waits for the end. A crash, a leak and a report of a sanitizer are failures of the test.
    std::string result();

private:
    pid_t process;
    int reading;
};
