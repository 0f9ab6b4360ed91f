#include "description.h"

#include <utility>

void description::begin(const char *name, const char *kind)
{
    end_member();
    member = name;
    json = json_builder();
    json.text(json.root(), "kind", kind);
}

void description::end_member()
{
    if (member != nullptr)
        sink.take(member, json.take());
    member = nullptr;
}

void description::begin_number(const char *name, int min, int max)
{
    begin(name, "number");
    json.number(json.root(), "min", min);
    json.number(json.root(), "max", max);
}

void description::begin_number(const char *name)
{
    begin(name, "number");
}

void description::begin_enum(const char *name)
{
    begin(name, "enum");
    names = json.array(json.root(), "names");
}

void description::begin_text(const char *name)
{
    begin(name, "text");
}

void description::begin_json(const char *name)
{
    begin(name, "json");
}

void description::add_name(const char *name)
{
    json.append(names, name);
}

void description::add_default(const char *value)
{
    if (value != nullptr)
        json.text(json.root(), "default", value);
}

void description::add_current(const char *value)
{
    if (value != nullptr)
        json.text(json.root(), "current", value);
}

void description::add_start(const char *value)
{
    if (value != nullptr)
        json.text(json.root(), "start", value);
}

void description::add_default(int value)
{
    json.number(json.root(), "default", value);
}

void description::add_start(int value)
{
    json.number(json.root(), "start", value);
}

void description::add_current(double value)
{
    json.number(json.root(), "current", value);
}

void description::add_current(json_ptr value)
{
    json.value(json.root(), "current", std::move(value));
}

void description::mark_read_only()
{
    json.truth(json.root(), "read_only");
}

void description::lack()
{
    sink.take("", nullptr);
}
