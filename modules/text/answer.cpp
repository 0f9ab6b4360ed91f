// Answering queries about modules whose values are texts.
#include "base/json.h"
#include "base/memory.h"
#include "base/number.h"
#include "modules/text/pattern_module.h"
#include "modules/text/text_module.h"

// PARA_KIND_ENUM for a value that is answered as text; 0 for a member without a range.
static int kind_in(const text_module &module, answer_form form, const char *member)
{
    return form == answer_form::by_range ? kind_of(module, member) : PARA_KIND_ENUM;
}

static bool add_value(cJSON *answer, int kind, const char *member, const char *text)
{
    return kind == PARA_KIND_ENUM ? add_text(answer, member, text)
                                  : add_number(answer, member, leading_number(text));
}

struct answer_state {
    const text_module *module;
    answer_form form;
    cJSON *answer;
    bool complete;
};

static int add_entry(void *argument, const char *member, const char *text)
{
    auto &state = *static_cast<answer_state *>(argument);
    const int kind = kind_in(*state.module, state.form, member);
    state.complete = state.complete && add_value(state.answer, kind, member, text);
    return 0;
}

int add_all(const text_module &module, configure *values, answer_form form, cJSON *answer)
{
    if (values == nullptr)
        return -1;
    answer_state state = {.module = &module, .form = form, .answer = answer, .complete = true};
    const memory_watch memory; // a host's object may need some to loop
    const int result = values->conf_loop(values, add_entry, &state);
    return state.complete && !memory.ran_out() ? result : no_memory;
}

bool add_listed(const text_module &module, configure *values, answer_form form, const cJSON *item,
                cJSON *answer)
{
    bool complete = true;
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, item)
    {
        const char *const member = element->valuestring;
        if (member == nullptr)
            continue;
        const int kind = kind_in(module, form, member);
        char text[value_size];
        if (read_value(values, member, text) && kind != 0)
            complete = complete && add_value(answer, kind, member, text);
    }
    return complete;
}
