#include "client/outcome.h"

exit_code outcome::status() const
{
    if (refused + missing == 0)
        return DONE;
    if (done > 0)
        return PARTLY_DONE;
    return refused > 0 ? REFUSED : NO_SUCH_SETTING;
}

int omitted_in(const cJSON *answer)
{
    const cJSON *const count = member_of(answer, "omitted");
    return cJSON_IsNumber(count) && count->valueint > 0 ? count->valueint : 0;
}

outcome outcome_of(const cJSON *answer)
{
    outcome result;
    result.done = cJSON_GetArraySize(member_of(answer, "accepted"));
    result.refused = cJSON_GetArraySize(member_of(answer, "refused")) +
                     cJSON_GetArraySize(member_of(answer, "failed"));
    (result.refused > 0 && result.done == 0 ? result.refused : result.done) += omitted_in(answer);
    return result;
}
