// Reading the files of a module with fixed members.

#include <utility>

#include "base/backup.h"
#include "base/file.h"
#include "base/late_file.h"
#include "modules/fixed/fixed_module.h"
#include "modules/fixed/module_file.h"

// --- Members ---

// A value as a file gives it.
struct file_value {
    int presence; // 0: the file has none
    bool usable;  // it is a number, or one of the member's names
    int value;
};

static file_value value_of(const fixed_module &module, const fixed_member &member,
                           const cJSON *item)
{
    if (item == nullptr)
        return {.presence = 0, .usable = false, .value = 0};
    if (!module.rules.named_values || cJSON_IsNumber(item))
        return {
            .presence = module.rules.presence_of_number, .usable = true, .value = item->valueint};
    const int named = cJSON_IsString(item) ? name_in_file(*member.names, item->valuestring) : -1;
    if (named < 0)
        return {.presence = PARA_PRESENT, .usable = false, .value = 0};
    return {.presence = PARA_PRESENT | PARA_PRESENT_AS_NAME, .usable = true, .value = named};
}

static void store_if_usable(int &slot, const file_value &read)
{
    if (read.usable)
        store_word(slot, read.value);
}

struct file_range {
    file_value min, max;
};

static file_range get_range_param(const fixed_module &module, const fixed_member &member,
                                  const cJSON *object)
{
    const cJSON *const range = find_item(object, member.key);
    if (cJSON_GetArraySize(range) <= 1 || (module.rules.range_is_array && !cJSON_IsArray(range)))
        return {};
    return {.min = value_of(module, member, cJSON_GetArrayItem(range, 0)),
            .max = value_of(module, member, cJSON_GetArrayItem(range, 1))};
}

static file_value get_value_param(const fixed_module &module, const fixed_member &member,
                                  const cJSON *object)
{
    return value_of(module, member, find_item(object, member.key));
}

void read_ranges(const fixed_module &module, int instance, const cJSON *object)
{
    for (const fixed_member &member : module.members) {
        if (!member.loaded)
            continue;
        const int slot = slot_of(module, instance, member);
        const file_range range = get_range_param(module, member, object);
        store_if_usable(module.values.min[slot], range.min);
        store_if_usable(module.values.max[slot], range.max);
    }
}

void read_defaults(const fixed_module &module, int instance, const cJSON *object)
{
    for (const fixed_member &member : module.members) {
        if (!member.loaded)
            continue;
        const int slot = slot_of(module, instance, member);
        const file_value read = get_value_param(module, member, object);
        store_if_usable(module.values.def[slot], read);
        if (read.presence != 0)
            store_word(module.values.exist[slot], read.presence);
    }
}

void read_values(const fixed_module &module, int *values, const cJSON *object)
{
    for (const fixed_member &member : module.members) {
        if (member.loaded)
            store_if_usable(values[member.slot], get_value_param(module, member, object));
    }
}

static void read_current(const fixed_module &module, int instance, const cJSON *object)
{
    read_values(module, module.values.cur + first_slot(module, instance), object);
}

using object_reader = void (*)(const fixed_module &, int, const cJSON *);

static void read_instances(const fixed_module &module, const cJSON *root, object_reader reader)
{
    if (module.instances == nullptr) {
        reader(module, 0, root);
        return;
    }
    for (int instance = 0; instance < instance_count(module); instance++) {
        const instance_key key(module, instance);
        reader(module, instance, find_item(root, key.text));
    }
}

// --- Files ---

int count_instances(const fixed_module &module, const cJSON *root, const trace_site &site)
{
    int count = 0;
    for (int instance = 0; instance < module.instances->capacity; instance++) {
        if (find_item(root, instance_key(module, instance).text) != nullptr)
            count++; // gaps are not tracked
    }
    PARA_TRACE_AT(site, PARA_INFO, "check %s num = %d", module.name, count);
    return count;
}

static json_ptr parsed(json_file file, const trace_site &site)
{
    if (file.readable && !file.root)
        PARA_TRACE_AT(site, PARA_INFO, "Error before: [%s]\n", file.error);
    return std::move(file.root);
}

json_ptr load_range_file(const fixed_module &module, const trace_site &site)
{
    json_file file = read_json_file(home_file(module, "_range.json").text);
    if (!file.readable && module.rules.traces_unreadable)
        PARA_TRACE_AT(site, PARA_INFO, "Error range def buf\n");
    return parsed(std::move(file), site);
}

static json_ptr load_defaults_file(const fixed_module &module, const trace_site &site)
{
    json_file file = read_json_file(home_file(module, "_def.json").text);
    if (!file.readable && module.rules.traces_unreadable)
        PARA_TRACE_AT(site, PARA_INFO, "Error read def buf\n");
    return parsed(std::move(file), site);
}

json_ptr load_current_file(const fixed_module &module, const trace_site &site)
{
    const file_path path = current_file(module);
    if (is_missing_at_load(path.text, *module.stamp.saves))
        return nullptr;
    json_file file = read_current_json(path.text, file_form::json, *module.stamp.saves);
    if (!file.readable && module.rules.traces_unreadable)
        PARA_TRACE_AT(site, PARA_INFO, "Error read cur buf\n");
    if (file.starved)
        note_load_failure(*module.stamp.saves, module.name); // the defaults must not replace it
    return parsed(std::move(file), site);
}

// --- Start-up ---

static void clear_presence(const fixed_module &module)
{
    for (int slot = 0; slot < slot_count(module); slot++)
        store_word(module.values.exist[slot], 0);
}

static int load_ranges(const fixed_module &module, const trace_site &site)
{
    const json_ptr root = load_range_file(module, site);
    if (!root)
        return -1;
    if (module.instances != nullptr)
        *module.instances->count = module.instances->count_in(root.get());
    read_instances(module, root.get(), read_ranges);
    return 0;
}

// Every member that the defaults file names starts with its default as current value.
static int load_defaults(const fixed_module &module, const trace_site &site)
{
    const json_ptr root = load_defaults_file(module, site);
    if (!root)
        return -1;
    read_instances(module, root.get(), read_defaults);
    read_instances(module, root.get(), read_current);
    return 0;
}

static void load_current(const fixed_module &module, const trace_site &site)
{
    const json_ptr root = load_current_file(module, site);
    if (root)
        read_instances(module, root.get(), read_current);
    PARA_TRACE_AT(site, PARA_INFO, "parse_ok:%d", root ? 1 : 0);
}

void keep_start_values(const fixed_module &module)
{
    for (int slot = 0; slot < slot_count(module); slot++)
        store_word(module.values.init[slot], load_word(module.values.cur[slot]));
}

int start_module(const fixed_module &module, const trace_site &site)
{
    if (module.rules.clears_presence)
        clear_presence(module);
    if (load_ranges(module, site) != 0 || load_defaults(module, site) != 0)
        return note_load_failure(*module.stamp.saves, module.name);
    load_current(module, site);
    keep_start_values(module);
    module.page();
    return 0;
}
