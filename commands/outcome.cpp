#include "outcome.h"

#include <cstdio>

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

void outcome::add(const char *name, const reason &why)
{
    if (why.text[0] == '\0')
        reply.append(accepted, name);
    else
        reply.text(refused, name, why.text);
}
