// Answering queries about modules whose values are texts.
#include "base/memory.h"
#include "base/number.h"
#include "modules/text/pattern_module.h"
#include "modules/text/text_module.h"

// PARA_KIND_ENUM for a value that is answered as text; 0 for a member without a range.
static int kind_in(const text_module &module, answer_form form, const char *member)
{
    return form == answer_form::by_range ? kind_of(module, member) : PARA_KIND_ENUM;
}

static void answer_value(answer_sink &sink, int kind, const char *member, const char *text)
{
    if (kind == PARA_KIND_ENUM)
        sink.text(member, text);
    else
        sink.number(member, leading_number(text));
}

struct answer_state {
    const text_module *module;
    answer_form form;
    answer_sink *sink;
};

static int answer_entry(void *argument, const char *member, const char *text)
{
    const auto &state = *static_cast<answer_state *>(argument);
    answer_value(*state.sink, kind_in(*state.module, state.form, member), member, text);
    return 0;
}

int answer_all(const text_module &module, configure *values, answer_form form, answer_sink &sink)
{
    if (values == nullptr)
        return -1;
    answer_state state = {.module = &module, .form = form, .sink = &sink};
    const memory_watch memory; // a host's object may need some to loop
    const int result = values->conf_loop(values, answer_entry, &state);
    return sink.complete() && !memory.ran_out() ? result : no_memory;
}

void answer_listed(const text_module &module, configure *values, answer_form form,
                   const cJSON *item, answer_sink &sink)
{
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, item)
    {
        const char *const member = element->valuestring;
        if (member == nullptr)
            continue;
        const int kind = kind_in(module, form, member);
        char text[value_size];
        if (read_value(values, member, text) && kind != 0)
            answer_value(sink, kind, member, text);
    }
}
