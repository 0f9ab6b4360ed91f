// The command "lens": AF members have no set request of their own.
#include <cstring>

#include "af_table.h"
#include "base/word.h"
#include "command.h"
#include "lens.h"

static const af_member *find_present(const char *name)
{
    for (const af_member &member : af_members) {
        if (strcmp(member.name, name) == 0 && is_present(member))
            return &member;
    }
    return nullptr;
}

reason set_lens(const cJSON *item)
{
    const af_member *const member = find_present(item->string);
    if (member == nullptr)
        return {"no such member"};
    if (!is_int(item))
        return {"not a 32-bit integer"};

    // The setter returns 0 either way; the current value shows whether it was accepted.
    member->set(item->valueint);
    if (load_word(para_af_cur[member->slot]) != item->valueint)
        return out_of_range(load_word(para_af_min[member->slot]),
                            load_word(para_af_max[member->slot]));
    return no_reason;
}

answered answer_lens(const request &request, json_builder &reply)
{
    if (request.data == nullptr)
        return answered::invalid;
    outcome result(reply);
    const cJSON *item = nullptr;
    cJSON_ArrayForEach(item, request.data)
    {
        result.add(item->string, set_lens(item));
    }
    return answered::now;
}
