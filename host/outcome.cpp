#include "outcome.h"

outcome::outcome(cJSON *reply)
    : accepted(cJSON_AddArrayToObject(reply, "accepted")),
      refused(cJSON_AddObjectToObject(reply, "refused"))
{
}

void outcome::add(const char *name, const std::string &reason)
{
    if (reason.empty())
        cJSON_AddItemToArray(accepted, cJSON_CreateString(name));
    else
        cJSON_AddStringToObject(refused, name, reason.c_str());
}

std::string out_of_range(int min, int max)
{
    return "out of range, " + std::to_string(min) + " to " + std::to_string(max);
}
