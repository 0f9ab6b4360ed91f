// The image signal processor: its values come from a style, and may be overridden by the ODM store.
#include "modules/fixed/isp.h"

#include "base/observer.h"
#include "camparam/odm.h"
#include "modules/fixed/accessors.h"

isp_record para_isp_def[PARA_ISP_INSTANCES], para_isp_min[PARA_ISP_INSTANCES];
isp_record para_isp_max[PARA_ISP_INSTANCES], para_isp_init[PARA_ISP_INSTANCES];
isp_record para_isp_cur[PARA_ISP_INSTANCES], para_isp_exist[PARA_ISP_INSTANCES];
int isp_num;
int isp_inited;
timespec isp_item_start_time;
int isp_item_changed;
static save_state saves;

static_assert(sizeof(isp_record) == PARA_ISP_SLOTS * sizeof(int),
              "a slot is a place in the record");

constexpr bool yes = true, no = false;

static constexpr fixed_member members[] = {
#define ISP_MEMBER(number, name, in_files, accessor, by_name, in_answers)                          \
    {.slot = PARA_ISP_##name,                                                                      \
     .key = #name,                                                                                 \
     .loaded = in_files,                                                                           \
     .queried = accessor,                                                                          \
     .settable = by_name,                                                                          \
     .written = in_answers},
#include "camparam/isp_members.def"
};

static constexpr file_move moves[] = {
    {.slot = PARA_ISP_skin_saturation,
     .before = PARA_ISP_hue, // to the other colour settings
     .if_present = PARA_ISP_skin_saturation},
};
static constexpr auto order = order_of(members, moves);

static void page_title(int instance, const trace_site &site)
{
    PARA_TRACE_AT(site, PARA_INFO, "isp%d param:\n", instance);
}

static constexpr module_instances instances = {
    .capacity = PARA_ISP_INSTANCES,
    .count = &isp_num,
    .stride = PARA_ISP_SLOTS,
    .page_title = page_title,
    .share_a_row = true,
};

// The address of a table's first record, as that of its first word.
#define RECORD_TABLE(field) (&para_isp_##field[0].size)

constexpr fixed_module isp = {
    .name = "isp",
    .title = "ISP",
    .page = isp_page,
    .values = {.def = RECORD_TABLE(def),
               .min = RECORD_TABLE(min),
               .max = RECORD_TABLE(max),
               .init = RECORD_TABLE(init),
               .cur = RECORD_TABLE(cur),
               .exist = RECORD_TABLE(exist)},
    .members = list_of(members),
    .file_order = order.list(),
    .instances = &instances,
    .stamp = {.time = &isp_item_start_time, .changed = &isp_item_changed, .saves = &saves},
    .rules = {.traces_unreadable = false,
              .named_values = false,
              .get_needs_presence = false,
              .page_needs_presence = true},
};

// --- Accessors ---

static int read(int instance, const isp_record *records, int slot)
{
    if (!is_isp_instance(instance))
        return 0;
    return load_word(reinterpret_cast<const int *>(records)[instance * PARA_ISP_SLOTS + slot]);
}

static int read_current(int instance, const isp_record *records, int slot)
{
    return read(instance, records, slot); // of an absent member too
}

[[gnu::noinline]] static int change(int instance, int slot, int value)
{
    if (!is_isp_instance(instance))
        return 0;
    return set_value(isp, instance * PARA_ISP_SLOTS + slot, value);
}

[[gnu::noinline]] static int set(int instance, int slot, int value, int (*setter)(int, int))
{
    if (!is_isp_instance(instance))
        return 0;
    return set_and_notify(isp, instance * PARA_ISP_SLOTS + slot, value,
                          para_profile.isp_set_notify_hook, setter, instance);
}

#define ISP_ACCESSORS_yes(name)                                                                    \
    DEFINE_INSTANCE_GETTERS(isp, name, PARA_ISP_##name)                                            \
    DEFINE_INSTANCE_SETTERS(isp, name, PARA_ISP_##name)
#define ISP_ACCESSORS_no(name)
#define ISP_MEMBER(slot, name, loaded, accessor, by_name, written) ISP_ACCESSORS_##accessor(name)
#include "camparam/isp_members.def"

#define ISP_NUM_yes(name) DEFINE_NUM(isp, name, null_names)
#define ISP_NUM_no(name)
#define ISP_MEMBER(slot, name, loaded, accessor, by_name, written) ISP_NUM_##loaded(name)
#include "camparam/isp_members.def"

// --- Start-up ---

int check_isp_num(const cJSON *root)
{
    return count_instances(isp, root, PARA_HERE);
}

static void write_sizes()
{
    constexpr int size = sizeof(isp_record);
    for (int instance = 0; instance < PARA_ISP_INSTANCES; instance++) {
        store_word(para_isp_min[instance].size, size);
        store_word(para_isp_max[instance].size, size);
        store_word(para_isp_def[instance].size, size);
        store_word(para_isp_cur[instance].size, size);
    }
}

// Only instance 0 has values in files; instance 1 is counted.
static int load_range(const trace_site &site)
{
    const json_ptr root = load_range_file(isp, site);
    if (!root)
        return -1;
    isp_num = check_isp_num(root.get());
    read_ranges(isp, 0, find_item(root.get(), "isp0"));
    return 0;
}

static void load_style(const cJSON *style)
{
    read_defaults(isp, 0, style);
    read_values(isp, &para_isp_cur[0].size, style);
}

static void load_default_style()
{
    const int index = para_get_isp_style_def_index(0);
    load_style(get_isp_style_json(index));
    store_word(para_isp_def[0].style, index);
    store_word(para_isp_cur[0].style, index);
    store_word(para_isp_exist[0].style, PARA_PRESENT | PARA_PRESENT_AS_NUMBER);
}

// Selects the saved style first, so that members missing from the file get its values. A style that
// differs from the default counts as a change, and the file is saved again (IspStart.SavedStyle...
// tests).
static bool load_current(const trace_site &site)
{
    const json_ptr root = load_current_file(isp, site);
    if (!root)
        return false;
    const cJSON *const saved = find_item(root.get(), "isp0");
    const cJSON *const style = find_item(saved, "style");
    if (style != nullptr)
        para_set_isp_style_cur(0, style->valueint);
    load_style(get_isp_style_json(para_get_isp_style_cur(0)));
    read_values(isp, &para_isp_cur[0].size, saved);
    return true;
}

// Whether a style has told which members are present; the file has no others.
static bool has_style()
{
    return get_isp_style_json(para_get_isp_style_def_index(0)) != nullptr ||
           get_isp_style_json(para_get_isp_style_cur(0)) != nullptr;
}

int para_init_isp(const char *)
{
    if (isp_inited != 0)
        return 0;
    write_sizes();
    isp_inited = 1;

    if (load_range(PARA_HERE) != 0)
        return note_load_failure(saves, isp.name);
    const bool has_styles = para_init_isp_style() == 0; // the defaults are the style file's
    load_default_style();
    const bool parse_ok = load_current(PARA_HERE);
    if (!has_styles || !has_style())
        note_load_failure(saves, isp.name);
    PARA_TRACE(PARA_INFO, "parse_ok:%d", parse_ok ? 1 : 0);
    parse_isp_def_odm(&para_isp_def[0]);
    keep_start_values(isp);
    isp_page();
    return 0;
}

// --- Defaults ---

int para_isp_cur_restore_isp_def()
{
    int before[PARA_ISP_INSTANCES * PARA_ISP_SLOTS] = {};
    for (int slot = 0; slot < slot_count(isp); slot++) {
        before[slot] = load_word(isp.values.cur[slot]);
        store_word(isp.values.cur[slot], load_word(isp.values.def[slot]));
    }
    count_change(isp.stamp);
    mark_change(isp.stamp); // the time of the last change is kept
    tell_change_of_row("isp0");
    for (int slot = 0; slot < slot_count(isp); slot++) {
        const int after = load_word(isp.values.def[slot]);
        if (has_observers() && after != before[slot])
            tell_change_of(isp, slot, {.before = before[slot], .after = after},
                           tell_change_of_setting);
    }
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

    para_set_odm_int(odm_antiflicker_def, value); // one key, whatever the instance
    store_word(para_isp_def[instance].antiflicker, value);
    return 0;
}

DEFINE_ROW(isp)
