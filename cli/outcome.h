// How a command ends that handles several settings, some of which may fail.
#pragma once

#include "failure.h"
#include "json.h"

struct outcome {
    int done = 0;
    int refused = 0;
    int missing = 0; // there is no such setting

    exit_code status() const;
};

// Counts the members "accepted" and "refused", by which the host's commands that change settings
// report.
outcome outcome_of(const cJSON *answer);
