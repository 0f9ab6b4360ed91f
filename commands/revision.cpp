#include "revision.h"

#include <utility>

// With the zero at its end, so that no two texts run together. FNV-1a: what differs by a letter
// differs in the number, as good as always.
void revision::add(const char *text)
{
    do {
        hash = (hash ^ static_cast<unsigned char>(*text)) * 16777619U;
    } while (*text++ != '\0');
}

void revision::begin_module(int row, const para_module &module, const char *command)
{
    add(module.name);
    sink.begin_module(row, module, command);
}

void revision::take(const char *name, json_ptr member)
{
    add(name);
    const cJSON *item = nullptr;
    cJSON_ArrayForEach(item, member.get())
    {
        if (is_value(item->string))
            continue;
        const printed_ptr text(cJSON_PrintUnformatted(item));
        if (text == nullptr) {
            member.reset();
            break;
        }
        add(item->string);
        add(text.get());
    }
    sink.take(name, std::move(member));
}

int revision::number() const
{
    const auto positive = static_cast<int>(hash & 0x7fffffffU);
    return positive != 0 ? positive : 1;
}
