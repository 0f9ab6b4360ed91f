#include "outcome.h"

#include <cstdio>

#include "page.h"

reason out_of_range(int min, int max)
{
    reason why = {};
    snprintf(why.text, sizeof why.text, "out of range, %d to %d", min, max);
    return why;
}

outcome::outcome(json_builder &in)
    : reply(in), accepted(in.array(in.root(), "accepted")), refused(in.object(in.root(), "refused"))
{
}

// With the quotes, commas and white space of cJSON_Print().
bool outcome::has_room_for(const char *name, const reason &why)
{
    constexpr size_t frame = sizeof "\t\t\"\":\t\"\",\n";
    used += frame + longest_in_json(name) + longest_in_json(why.text);
    return used <= most_listed_bytes;
}

void outcome::omit()
{
    cJSON *const count = cJSON_GetObjectItemCaseSensitive(reply.root(), "omitted");
    if (count == nullptr)
        reply.number(reply.root(), "omitted", 1);
    else
        cJSON_SetNumberHelper(count, count->valuedouble + 1);
}

void outcome::add(const char *name, const reason &why)
{
    if (!has_room_for(name, why))
        omit();
    else if (why.text[0] == '\0')
        reply.append(accepted, name);
    else
        reply.text(refused, name, why.text);
}
