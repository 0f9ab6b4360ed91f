// Exit statuses, and the exception that carries one.
#pragma once

#include <stdexcept>
#include <string>

enum exit_code {
    DONE = 0,
    OTHER = 1,
    USAGE = 2,
    NO_ANSWER = 3,
    REFUSED = 4,
    NO_SUCH_SETTING = 5,
    PARTLY_DONE = 6,
    DIFFERENT = 7,
    UNSAVED = 8,
};

// Ends the program with a message and an exit status.
struct failure : std::runtime_error {
    failure(exit_code status, const std::string &message)
        : std::runtime_error(message), code(status)
    {
    }

    exit_code code;
};
