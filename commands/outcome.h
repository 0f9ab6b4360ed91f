// The reply of a command that changes settings: accepted names, and refused names with reasons.
#pragma once

#include "json.h"

struct reason {
    char text[64]; // empty: none
};
inline constexpr reason no_reason = {};

// Why a value outside its range was refused.
reason out_of_range(int min, int max);

class outcome {
public:
    // Adds the array "accepted" and the object "refused" to the reply.
    explicit outcome(json_builder &in);

    // Reports a name, as accepted without a reason. A name for which a datagram has no room is
    // counted in "omitted".
    void add(const char *name, const reason &why);

    // Memory ran out for a part of the reply.
    void lack() { reply.lack(); }

private:
    bool has_room_for(const char *name, const reason &why);
    void omit();

    json_builder &reply;
    cJSON *const accepted;
    cJSON *const refused;
    size_t used = 0;
};
