// Answering queries about modules whose values are texts.
#include "base/number.h"
#include "modules/text/pattern_module.h"
#include "modules/text/text_module.h"

// PARA_KIND_ENUM for a value that is answered as text; 0 for a member without a range.
static int kind_in(const text_module &module, answer_form form, const char *member)
{
    return form == answer_form::by_range ? kind_of(module, member) : PARA_KIND_ENUM;
}

static void add_value(cJSON *answer, int kind, const char *member, const char *text)
{
    if (kind == PARA_KIND_ENUM)
        cJSON_AddStringToObject(answer, member, text);
    else
        cJSON_AddNumberToObject(answer, member, leading_number(text));
}

struct answer_state {
    const text_module *module;
    answer_form form;
    cJSON *answer;
};

static int add_entry(void *argument, const char *member, const char *text)
{
    const auto &state = *static_cast<const answer_state *>(argument);
    add_value(state.answer, kind_in(*state.module, state.form, member), member, text);
    return 0;
}

int add_all(const text_module &module, configure *values, answer_form form, cJSON *answer)
{
    answer_state state = {.module = &module, .form = form, .answer = answer};
    return values != nullptr ? values->conf_loop(values, add_entry, &state) : -1;
}

void add_listed(const text_module &module, configure *values, answer_form form, const cJSON *item,
                cJSON *answer)
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
            add_value(answer, kind, member, text);
    }
}
