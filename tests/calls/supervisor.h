// A child process whose system calls on files, or on sockets, are decided one by one: carried out,
// failed, or the last thing that it does.
#pragma once

#include <functional>
#include <vector>

struct ruling {
    enum { carry_out, fail, end_process } kind = carry_out;
    int error = 0; // of a call that fails
};

struct outcome {
    bool killed; // by a ruling
    int status;  // exit status; -1 when it ended in any other way
    long calls;  // how many were counted
};

// The errors that a call of that number may have: at least one.
struct possible_errors {
    int number;     // __NR_...
    int errors[12]; // up to the first 0
};
using call_list = std::vector<possible_errors>;
extern const call_list file_calls, socket_calls;

// Runs a function in a child of its own and exits with its result. Between the marks that the
// function makes, each of these system calls is counted, from 1, and ruled on.
outcome run_supervised(const std::function<int()> &child,
                       const std::function<ruling(long call, int number)> &rule,
                       const call_list &calls = file_calls);

// The marks, for the child.
void begin_counting();
void end_counting();

const possible_errors &errors_of(int number);
