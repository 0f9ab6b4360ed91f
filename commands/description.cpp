#include "description.h"

void description::begin(const char *name, const char *kind)
{
    member = json.object(members, name);
    json.text(member, "kind", kind);
}

void description::begin_number(const char *name, int min, int max)
{
    begin(name, "number");
    json.number(member, "min", min);
    json.number(member, "max", max);
}

void description::begin_enum(const char *name)
{
    begin(name, "enum");
    names = json.array(member, "names");
}

void description::begin_text(const char *name)
{
    begin(name, "text");
}

void description::add_name(const char *name)
{
    json.append(names, name);
}

void description::add_default(const char *value)
{
    if (value != nullptr)
        json.text(member, "default", value);
}

void description::add_current(const char *value)
{
    if (value != nullptr)
        json.text(member, "current", value);
}

void description::add_default(int value)
{
    json.number(member, "default", value);
}

void description::add_current(int value)
{
    json.number(member, "current", value);
}

void description::mark_read_only()
{
    json.truth(member, "read_only");
}
