// A child process.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

class process {
public:
    // Starts a program by its path and arguments, with the text as standard input.
    explicit process(const std::vector<std::string> &command, const std::string &input = "");
    // Kills the process if it still runs.
    ~process();

    process(const process &) = delete;
    process &operator=(const process &) = delete;

    pid_t pid() const { return id; }
    void send_signal(int number);

    // Waits for the exit. Returns the exit status, or -1 if a signal killed the process or it does
    // not exit within 20 s.
    int wait_for_end();
    bool has_ended();

    // Its standard output and standard error so far.
    std::string output() const;
    std::string errors() const;

private:
    std::string folder;
    pid_t id = -1;
    int status = 0;
    bool ended = false;
};
