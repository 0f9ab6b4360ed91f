// The result of a command on several settings, some of which may fail.
#pragma once

#include "client/failure.h"
#include "client/json.h"

struct outcome {
    int done = 0;
    int refused = 0;
    int missing = 0; // no such setting

    exit_code status() const;

    outcome operator+(const outcome &other) const
    {
        return {done + other.done, refused + other.refused, missing + other.missing};
    }
};

// Counts the "accepted" and "refused" of an answer from a command that changes settings, and the
// names that it has no room for: as refused, where those that it tells are all refused.
outcome outcome_of(const cJSON *answer);

// How many more names there are than the answer has room for.
int omitted_in(const cJSON *answer);
