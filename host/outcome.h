// The reply of a command that changes settings: accepted names, and refused names with reasons.
#pragma once

#include <cjson/cJSON.h>

#include <string>

class outcome {
public:
    // Adds the array "accepted" and the object "refused" to the reply.
    explicit outcome(cJSON *reply);

    // Reports a name, as accepted if the reason is empty.
    void add(const char *name, const std::string &reason);

private:
    cJSON *accepted;
    cJSON *refused;
};

// Why a value outside its range was refused.
std::string out_of_range(int min, int max);
