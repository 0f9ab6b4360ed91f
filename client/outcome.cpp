#include "client/outcome.h"

exit_code outcome::status() const
{
    if (refused + missing == 0)
        return DONE;
    if (done > 0)
        return PARTLY_DONE;
    return refused > 0 ? REFUSED : NO_SUCH_SETTING;
}

outcome outcome_of(const cJSON *answer)
{
    outcome result;
    result.done = cJSON_GetArraySize(member_of(answer, "accepted"));
    result.refused = cJSON_GetArraySize(member_of(answer, "refused")) +
                     cJSON_GetArraySize(member_of(answer, "failed"));
    return result;
}
