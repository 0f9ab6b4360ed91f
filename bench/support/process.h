// Programs that run beside the measurement, and end with it.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

class process {
public:
    explicit process(const std::vector<std::string> &command); // its output is dropped
    ~process();
    process(const process &) = delete;
    process &operator=(const process &) = delete;

    pid_t id() const { return child; }

private:
    pid_t child;
};

// Whether the shell would find it.
bool is_installed(const std::string &program);

// Tries for 10 s. Returns whether it succeeded.
bool succeeds_soon(const std::function<bool()> &attempt);

// A folder that is removed at the end.
class scratch_folder {
public:
    scratch_folder();
    ~scratch_folder();
    scratch_folder(const scratch_folder &) = delete;
    scratch_folder &operator=(const scratch_folder &) = delete;

    const std::string &path() const { return name; }

private:
    std::string name;
};
