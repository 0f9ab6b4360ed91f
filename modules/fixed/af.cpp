// Focus and zoom. Changed by the direct setters alone: its row has no set_opt.
#include "camparam/af.h"

#include "base/query.h"
#include "base/text.h"
#include "base/trace.h"
#include "base/word.h"
#include "camparam/control.h"
#include "modules/fixed/fixed_module.h"

int para_af_def[7], para_af_min[7], para_af_max[7];
int para_af_init[7], para_af_cur[7], para_af_exist[7];
timespec af_item_start_time;
static int af_item_changed;

static constexpr param_member members[] = {
#define AF_MEMBER(slot, name) {slot, #name, &null_names},
#include "camparam/af_members.def"
};

constexpr int member_count = sizeof members / sizeof members[0];
constexpr int slots = sizeof para_af_cur / sizeof para_af_cur[0];
static_assert(member_count == slots - 1, "slot 0 is reserved");

static constexpr param_table table = {
    PARAM_ARRAYS(af), "af",
    first_form,       slots,
    members,          member_count,
    nullptr,          0,
    nullptr,          {&af_item_start_time, &af_item_changed},
    &save_delay_ms,   "AF",
    "para_init_af",   "af_page",
};

#define AF_MEMBER(slot, name)                                                                      \
    int para_get_af_##name##_def()                                                                 \
    {                                                                                              \
        return load_word(para_af_def[slot]);                                                       \
    }                                                                                              \
    int para_get_af_##name##_min()                                                                 \
    {                                                                                              \
        return load_word(para_af_min[slot]);                                                       \
    }                                                                                              \
    int para_get_af_##name##_max()                                                                 \
    {                                                                                              \
        return load_word(para_af_max[slot]);                                                       \
    }                                                                                              \
    int para_get_af_##name##_init()                                                                \
    {                                                                                              \
        return load_word(para_af_init[slot]);                                                      \
    }                                                                                              \
    int para_get_af_##name##_cur()                                                                 \
    {                                                                                              \
        return load_word(para_af_cur[slot]);                                                       \
    }                                                                                              \
    int para_set_af_##name##_cur(int value)                                                        \
    {                                                                                              \
        if (!param_accepts(table, slot, value))                                                    \
            return 0;                                                                              \
        return param_take(table, slot, value, para_profile.af_set_notify_hook,                     \
                          para_set_af_##name##_cur);                                               \
    }
#include "camparam/af_members.def"

int para_init_af(const char *)
{
    return param_start(table);
}

int para_get_af_member_json(const char *name, int *value, const char **)
{
    return param_get_member(table, table.cur, 0, name, value, nullptr);
}

// Over the length of the key, so any prefix of "af" is answered (AfQuery.KeyMayBeCutShort).
static bool is_addressed(const cJSON *item)
{
    return item->string == nullptr || begins_with("af", item->string);
}

int para_get_af_opt(const char *, const cJSON *item, cJSON **answer, const char *)
{
    PARA_TRACE(PARA_INFO, "inter");
    if (is_addressed(item)) {
        if (asks_for_all(item)) {
            *answer = param_answer_all(table, table.cur, 0);
            return 0;
        }
        *answer = param_answer_listed(table, table.cur, 0, item);
    }
    PARA_TRACE(PARA_INFO, "leave");
    return 0;
}

int para_need_save_af(const char *)
{
    return param_due(table) ? 1 : 0;
}

int para_save_af(const char *)
{
    return param_save(table);
}

void af_page()
{
    param_page(table);
}
