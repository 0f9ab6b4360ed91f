// The image signal processor: its values come from a style, and may be overridden by the ODM store.
#include "modules/fixed/isp.h"

#include <cstdio>
#include <cstring>

#include "base/query.h"
#include "base/text.h"
#include "base/trace.h"
#include "base/word.h"
#include "camparam/control.h"
#include "camparam/odm.h"
#include "modules/fixed/fixed_module.h"

isp_record para_isp_def[2], para_isp_min[2], para_isp_max[2];
isp_record para_isp_init[2], para_isp_cur[2], para_isp_exist[2];
int isp_num;
int isp_inited;
timespec isp_item_start_time;
int isp_item_changed;

enum {
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written) word_##name = word,
#include "camparam/isp_members.def"
};
constexpr int record_words = sizeof(isp_record) / sizeof(int);
static_assert(sizeof(isp_record) == 156, "hosts see the size");

constexpr bool yes = true, no = false;

// In the order of the record.
static constexpr param_member members[] = {
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written)                                 \
    {word, #name, &null_names, loaded, accessor},
#include "camparam/isp_members.def"
};
constexpr int member_count = sizeof members / sizeof members[0];

// In the order of files and answers: that of the record, but for skin_saturation, which stands with
// the colours.
static constexpr int json_order[] = {
    word_style,
    word_exposure_mode,
    word_shutter,
    word_iris,
    word_bright,
    word_expcomp_mode,
    word_expcomp_level,
    word_backlight,
    word_gain_limit,
    word_manual_gain,
    word_antiflicker,
    word_meter,
    word_wdr_strength,
    word_wb_mode,
    word_awb_sens,
    word_rgain,
    word_bgain,
    word_rgain_tuning,
    word_bgain_tuning,
    word_ggain_tuning,
    word_rgain_onepush,
    word_bgain_onepush,
    word_saturation,
    word_skin_saturation,
    word_hue,
    word_temperature,
    word_len_type,
    word_luminance,
    word_contrast,
    word_sharpness,
    word_blackwhite_mode,
    word_gamma,
    word_drc,
    word_ccm_style,
    word_nr2d,
    word_nr3d,
    word_hotpixel,
};

// In the order in which a name is tried, drc behind wdr_strength: a name that begins with an
// earlier one is taken by that one, as rgain_tuning is by rgain.
static constexpr int by_name_order[] = {
    word_style,
    word_exposure_mode,
    word_shutter,
    word_iris,
    word_bright,
    word_expcomp_mode,
    word_expcomp_level,
    word_backlight,
    word_gain_limit,
    word_manual_gain,
    word_antiflicker,
    word_meter,
    word_wdr_strength,
    word_drc,
    word_wb_mode,
    word_awb_sens,
    word_rgain,
    word_bgain,
    word_rgain_tuning,
    word_bgain_tuning,
    word_ggain_tuning,
    word_rgain_onepush,
    word_bgain_onepush,
    word_saturation,
    word_skin_saturation,
    word_hue,
    word_temperature,
    word_luminance,
    word_contrast,
    word_sharpness,
    word_blackwhite_mode,
    word_gamma,
    word_nr2d,
    word_nr3d,
};

// A list of words holds exactly the members of a column.
template <int count> constexpr bool lists(const int (&order)[count], const bool (&column)[38])
{
    int listed = 0;
    for (const int word : order) {
        int times = 0;
        for (const int other : order)
            times += other == word ? 1 : 0;
        listed += times == 1 && column[word - 1] ? 1 : 0;
    }
    int wanted = 0;
    for (const bool in_column : column)
        wanted += in_column ? 1 : 0;
    return listed == count && wanted == count;
}
static constexpr bool written_column[] = {
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written) written,
#include "camparam/isp_members.def"
};
static constexpr bool by_name_column[] = {
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written) by_name,
#include "camparam/isp_members.def"
};
static_assert(lists(json_order, written_column), "every written member, once");
static_assert(lists(by_name_order, by_name_column), "every member that can be set by name, once");

template <int count> struct written_list {
    param_written rows[count];
};

template <int count> static constexpr written_list<count> written_in(const int (&order)[count])
{
    written_list<count> list = {};
    for (int i = 0; i < count; i++)
        list.rows[i] = {order[i], order[i]};
    return list;
}
static constexpr auto written = written_in(json_order);

static constexpr param_instances instances = {
    "isp", isp_instances, record_words, &isp_num, "check_isp_num", "isp", "\n",
};

// Values are numbers alone, ranges true arrays; absent members read as they stand.
static constexpr param_rules rules = {
    false, false, false, true, true, false, true, PRESENT_AS_NUMBER,
};

static constexpr param_table table = {
    {&para_isp_def[0].size, &para_isp_min[0].size, &para_isp_max[0].size, &para_isp_init[0].size,
     &para_isp_cur[0].size, &para_isp_exist[0].size},
    "isp",
    rules,
    isp_instances *record_words,
    members,
    member_count,
    written.rows,
    sizeof json_order / sizeof json_order[0],
    &instances,
    {&isp_item_start_time, &isp_item_changed},
    &save_delay_ms,
    "ISP",
    "para_init_isp",
    "isp_page",
};

void isp_read_values(isp_record &record, const cJSON *object)
{
    param_read_values(table, &record.size, object);
}

void isp_read_defaults(int instance, const cJSON *object)
{
    param_read_defaults(table, instance, object);
}

// --- Accessors ---

static int read_word(const isp_record *records, int instance, int isp_record::*member)
{
    return is_isp_instance(instance) ? load_word(records[instance].*member) : 0;
}

[[gnu::always_inline]] static inline bool accepts(int instance, int word, int value)
{
    return is_isp_instance(instance) && param_accepts(table, instance * record_words + word, value);
}

#define ISP_GETTER(name, field)                                                                    \
    int para_get_isp_##name##_##field(int instance)                                                \
    {                                                                                              \
        return read_word(para_isp_##field, instance, &isp_record::name);                           \
    }
#define ISP_ACCESSORS_yes(name)                                                                    \
    ISP_GETTER(name, def)                                                                          \
    ISP_GETTER(name, min)                                                                          \
    ISP_GETTER(name, max)                                                                          \
    ISP_GETTER(name, init)                                                                         \
    ISP_GETTER(name, cur)                                                                          \
    int _para_set_isp_##name##_cur(int instance, int value)                                        \
    {                                                                                              \
        if (!accepts(instance, word_##name, value))                                                \
            return 0;                                                                              \
        return param_change(table, instance * record_words + word_##name, value);                  \
    }                                                                                              \
    int para_set_isp_##name##_cur(int instance, int value)                                         \
    {                                                                                              \
        if (!accepts(instance, word_##name, value))                                                \
            return 0;                                                                              \
        return param_take(table, instance * record_words + word_##name, value,                     \
                          para_profile.isp_set_notify_hook, para_set_isp_##name##_cur, instance);  \
    }
#define ISP_ACCESSORS_no(name)
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written) ISP_ACCESSORS_##accessor(name)
#include "camparam/isp_members.def"

#define ISP_NUM_yes(name)                                                                          \
    int para_get_isp_##name##_num(const char *text)                                                \
    {                                                                                              \
        return number_of_text(null_names, text);                                                   \
    }
#define ISP_NUM_no(name)
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written) ISP_NUM_##loaded(name)
#include "camparam/isp_members.def"

// --- Start-up ---

int check_isp_num(const cJSON *root)
{
    return param_count_instances(instances, root);
}

static void write_sizes()
{
    constexpr int size = sizeof(isp_record);
    for (int instance = 0; instance < isp_instances; instance++) {
        store_word(para_isp_min[instance].size, size);
        store_word(para_isp_max[instance].size, size);
        store_word(para_isp_def[instance].size, size);
        store_word(para_isp_cur[instance].size, size);
    }
}

// Only the first instance has anything in the files; the second is counted.
static int load_range()
{
    const json_ptr root = param_load_home_file(table, "_range.json", "");
    if (!root)
        return -1;
    isp_num = check_isp_num(root.get());
    param_read_range(table, 0, cJSON_GetObjectItem(root.get(), "isp0"));
    return 0;
}

static void load_style(const cJSON *style)
{
    isp_read_defaults(0, style);
    isp_read_values(para_isp_cur[0], style);
}

static void load_default_style()
{
    const int index = para_get_isp_style_def_index(0);
    load_style(get_isp_style_json(index));
    store_word(para_isp_def[0].style, index);
    store_word(para_isp_cur[0].style, index);
    store_word(para_isp_exist[0].style, PRESENT | PRESENT_AS_NUMBER);
}

// The saved style first, so that its values stand where the file has none of its own. A style that
// differs from the default is a change: the file is saved again (IspStart.SavedStyle... tests).
static bool load_current()
{
    const json_ptr root = param_load_current_file(table);
    if (!root)
        return false;
    const cJSON *const saved = cJSON_GetObjectItem(root.get(), "isp0");
    const cJSON *const style = cJSON_GetObjectItem(saved, "style");
    if (style != nullptr)
        para_set_isp_style_cur(0, style->valueint);
    load_style(get_isp_style_json(para_get_isp_style_cur(0)));
    isp_read_values(para_isp_cur[0], saved);
    return true;
}

int para_init_isp(const char *)
{
    if (isp_inited != 0)
        return 0;
    write_sizes();
    isp_inited = 1;

    if (load_range() != 0)
        return -1;
    para_init_isp_style();
    load_default_style();
    const bool parse_ok = load_current();
    PARA_TRACE(PARA_INFO, "parse_ok:%d", parse_ok ? 1 : 0);
    parse_isp_def_odm(&para_isp_def[0]);
    param_end_start(table);
    return 0;
}

// --- Defaults ---

int para_isp_cur_restore_isp_def()
{
    for (int slot = 0; slot < table.slots; slot++)
        store_word(table.cur[slot], load_word(table.def[slot]));
    store_word(isp_item_changed, 1); // the time of the last change stands
    return 0;
}

int para_set_isp_antiflicker_def(int instance, int value)
{
    if (!is_isp_instance(instance) || load_word(para_isp_exist[instance].antiflicker) == 0)
        return 0;
    if (value < para_get_isp_antiflicker_min(instance) ||
        value > para_get_isp_antiflicker_max(instance))
        return 0;
    if (value == para_get_isp_antiflicker_def(instance))
        return 0;

    para_set_odm_int("isp0_antiflicker_def", value); // one key, whatever the instance
    store_word(para_isp_def[instance].antiflicker, value);
    return 0;
}

// --- Requests ---

static int get_member(const int *values, const char *name, int instance, int *value)
{
    return is_isp_instance(instance)
               ? param_get_member(table, values, instance, name, value, nullptr)
               : 0;
}

int para_get_isp_cur_member(const char *name, int instance, int *value, const char **)
{
    return get_member(table.cur, name, instance, value);
}

int para_get_isp_def_member(const char *name, int instance, int *value, const char **)
{
    return get_member(table.def, name, instance, value);
}

cJSON *isp_param_to_json(int instance, int use_defaults)
{
    if (!is_isp_instance(instance))
        return cJSON_CreateObject();
    return param_answer_all(table, use_defaults != 0 ? table.def : table.cur, instance);
}

int isp_set_member_by_name(const char *key, int instance, int number, const char *)
{
    if (!is_isp_instance(instance))
        return 0;
    for (const int word : by_name_order) {
        const param_member &member = members[word - 1];
        if (begins_with(key, member.key))
            return param_set_as_requested(table, instance, member, number, nullptr) ? 1 : 0;
    }
    return 0;
}

// What a query's key asks for: an instance and one of its tables; no values for any other key.
struct isp_query {
    int instance;
    const int *values;
};

static isp_query query_of(const char *key)
{
    struct {
        const char *suffix;
        const int *values;
    } const forms[] = {{"", table.cur}, {"_def", table.def}, {"_cur_all", table.cur}};
    for (int instance = 0; instance < isp_num; instance++) {
        for (const auto &form : forms) {
            char name[32];
            snprintf(name, sizeof name, "isp%d%s", instance, form.suffix);
            if (strcmp(key, name) == 0)
                return {instance, form.values};
        }
    }
    return {0, nullptr};
}

int para_get_isp_opt(const char *key, const cJSON *item, cJSON **answer, const char *)
{
    PARA_TRACE(PARA_DUMP, "inter %s", key);
    const isp_query query = query_of(key);
    if (query.values == nullptr)
        return 0;
    if (asks_for_all(item)) {
        *answer = param_answer_all(table, query.values, query.instance);
        return 0;
    }
    *answer = param_answer_listed(table, query.values, query.instance, item);
    PARA_TRACE(PARA_INFO, "leave");
    return 0;
}

constexpr int settable_keys = 6; // "isp0" to "isp5", of which two have a record

// The instance that the item's key names, or -1.
static int instance_to_set(const cJSON *item)
{
    for (int instance = 0; item->string != nullptr && instance < settable_keys; instance++) {
        if (strcmp(item->string, instance_key(instances, instance).text) == 0)
            return instance;
    }
    return -1;
}

// Tells no hook: IspSetRequest.TellsNoHook.
int para_set_isp_opt(const char *, const cJSON *item, const char *)
{
    PARA_TRACE(PARA_INFO, "inter");
    const int instance = instance_to_set(item);
    if (instance < 0)
        return 0;
    const cJSON *child = nullptr;
    cJSON_ArrayForEach(child, item)
    {
        if (child->string != nullptr)
            isp_set_member_by_name(child->string, instance, child->valueint, child->valuestring);
    }
    return 0;
}

int para_need_save_isp(const char *)
{
    return param_due(table) ? 1 : 0;
}

int para_save_isp(const char *)
{
    return param_save(table);
}

void isp_page()
{
    param_page(table);
}
