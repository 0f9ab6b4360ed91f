// Focus and zoom. Changed by the direct setters alone: its row has no set_opt.
#include "camparam/af.h"

#include "base/text.h"
#include "modules/fixed/accessors.h"

DEFINE_TABLES(af, PARA_AF_SLOTS)
timespec af_item_start_time;
static int af_item_changed;
static save_state saves;

static constexpr fixed_member members[] = {
#define AF_MEMBER(number, name) {.slot = PARA_AF_##name, .key = #name},
#include "camparam/af_members.def"
};
static constexpr auto order = order_of(members);

static constexpr fixed_module af = {
    .name = "af",
    .title = "AF",
    .page = af_page,
    .values = VALUE_TABLES(af),
    .members = list_of(members),
    .file_order = order.list(),
    .stamp = {.time = &af_item_start_time, .changed = &af_item_changed, .saves = &saves},
    .rules = {.clears_presence = true,
              .traces_unreadable = false,
              .named_values = false,
              .range_is_array = false,
              .set_needs_presence = false,
              .get_needs_presence = false,
              .presence_of_number = PARA_PRESENT},
};

DEFINE_SET(af)
#define AF_MEMBER(slot, name)                                                                      \
    DEFINE_GETTERS(af, name, PARA_AF_##name) DEFINE_SETTER(af, name, PARA_AF_##name)
#include "camparam/af_members.def"

DEFINE_START(af)

int para_get_af_member_json(const char *name, int *value, const char **)
{
    return get_member(af, para_af_cur, 0, name, value, nullptr);
}

// Over the length of the key, so any prefix of "af" is answered (AfQuery.KeyMayBeCutShort).
static bool is_addressed(const cJSON *item)
{
    return item->string == nullptr || begins_with("af", item->string);
}

int answer_af(const char *, const cJSON *item, const char *, answer_sink &sink)
{
    const trace_site site = PARA_IN(para_get_af_opt);
    PARA_TRACE_AT(site, PARA_INFO, "inter");
    if (is_addressed(item))
        return answer_query(af, para_af_cur, 0, item, sink, site);
    PARA_TRACE_AT(site, PARA_INFO, "leave");
    return 0;
}
DEFINE_GET_OPT(af)

DEFINE_ROW(af)
