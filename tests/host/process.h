// A program that runs beside the test.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

class process {
public:
    // Starts the program, whose path comes first. It reads the input and then an end of file.
    explicit process(const std::vector<std::string> &command, const std::string &input = "");
    // Kills the program if it still runs.
    ~process();

    process(const process &) = delete;
    process &operator=(const process &) = delete;

    void send_signal(int number);

    // Waits for the end. The exit status; -1 when a signal ended it or it does not end.
    int wait_for_end();
    bool has_ended();

    // What it has written so far.
    std::string output() const;
    std::string errors() const;

private:
    std::string folder;
    pid_t id = -1;
    int status = 0;
    bool ended = false;
};
