#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

#include "af_table.h"
#include "commands.h"
#include "outcome.h"
#include "request.h"
#include "word.h"

namespace {

const af_member *find_present(const char *name)
{
    const auto member =
        std::find_if(std::begin(af_members), std::end(af_members), [&](const af_member &row) {
            return strcmp(row.name, name) == 0 && is_present(row);
        });
    return member != std::end(af_members) ? member : nullptr;
}

// Whether valueint holds the number exactly: cJSON saturates large numbers and truncates fractions.
bool is_int(const cJSON *node)
{
    return cJSON_IsNumber(node) && node->valuedouble == static_cast<double>(node->valueint);
}

// Sets one member. Returns the reason when it is refused, else an empty text.
std::string set(const cJSON *item)
{
    const af_member *const member = find_present(item->string);
    if (member == nullptr)
        return "no such member";
    if (!is_int(item))
        return "not a 32-bit integer";

    // The setter returns 0 either way; the current value shows whether it was accepted.
    member->set(item->valueint);
    if (load_word(para_af_cur[member->slot]) != item->valueint)
        return out_of_range(load_word(para_af_min[member->slot]),
                            load_word(para_af_max[member->slot]));
    return "";
}

} // namespace

int lens_command(int mode, para_message *message, cJSON **reply)
{
    const json_ptr request = parse_request(*message);
    const cJSON *const data = data_of(request);
    if (mode != PARA_SET || data == nullptr)
        return -1;

    json_ptr answer = start_reply(request);
    outcome result(answer.get());
    const cJSON *item = nullptr;
    cJSON_ArrayForEach(item, data)
    {
        result.add(item->string, set(item));
    }
    *reply = answer.release();
    return 0;
}
