#include "modules/fixed/param_table.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "camparam/control.h"
#include "core/json_file.h"
#include "core/trace.h"

instance_key::instance_key(const param_instances &instances, int instance)
{
    snprintf(text, sizeof text, "%s%d", instances.noun, instance);
}

static file_path module_file(const char *dir, const param_table &table, const char *suffix)
{
    char name[64];
    snprintf(name, sizeof name, "%s%s", table.module, suffix);
    return {dir, name};
}

static file_path home_file(const param_table &table, const char *suffix)
{
    return module_file(para_profile.home_dir, table, suffix);
}

static file_path current_file(const param_table &table)
{
    return module_file(para_profile.data_dir, table, "_cur.json");
}

static int instance_count(const param_table &table)
{
    return table.instances != nullptr ? *table.instances->count : 1;
}

// --- Reading files ---

// Stores the value of a file's item, unless it is of no use. Returns the presence that it gives.
static int read_value(const param_table &table, const param_member &member, const cJSON *item,
                      int &value)
{
    if (!table.rules.named_values || cJSON_IsNumber(item)) {
        store_word(value, item->valueint);
        return PRESENT | table.rules.number_bit;
    }
    const int named = cJSON_IsString(item) ? name_in_file(*member.names, item->valuestring) : -1;
    if (named < 0)
        return PRESENT; // named in the file, and nothing more
    store_word(value, named);
    return PRESENT | PRESENT_AS_NAME;
}

static void get_range_param(const param_table &table, const param_member &member, int slot,
                            const cJSON *object)
{
    const cJSON *const range = cJSON_GetObjectItem(object, member.key);
    if (cJSON_GetArraySize(range) <= 1 || (table.rules.range_is_array && !cJSON_IsArray(range)))
        return;
    read_value(table, member, cJSON_GetArrayItem(range, 0), table.min[slot]);
    read_value(table, member, cJSON_GetArrayItem(range, 1), table.max[slot]);
}

static void get_def_param(const param_table &table, const param_member &member, int slot,
                          const cJSON *object)
{
    const cJSON *const item = cJSON_GetObjectItem(object, member.key);
    if (item != nullptr)
        store_word(table.exist[slot], read_value(table, member, item, table.def[slot]));
}

static void get_cur_param(const param_table &table, const param_member &member, int slot,
                          const cJSON *object)
{
    const cJSON *const item = cJSON_GetObjectItem(object, member.key);
    if (item != nullptr)
        read_value(table, member, item, table.cur[slot]);
}

using member_reader = void (*)(const param_table &, const param_member &, int, const cJSON *);

static void read_members(const param_table &table, const cJSON *root, member_reader reader)
{
    for (int instance = 0; instance < instance_count(table); instance++) {
        const cJSON *object = root;
        if (table.instances != nullptr)
            object = cJSON_GetObjectItem(root, instance_key(*table.instances, instance).text);
        for (int i = 0; i < table.member_count; i++) {
            const param_member &member = table.members[i];
            reader(table, member, param_slot(table, instance, member), object);
        }
    }
}

// --- Start-up ---

int param_count_instances(const param_instances &instances, const cJSON *range_root)
{
    int count = 0;
    for (int instance = 0; instance < instances.capacity; instance++) {
        if (cJSON_GetObjectItem(range_root, instance_key(instances, instance).text) != nullptr)
            count++; // a gap shortens the count, and no more
    }
    PARA_TRACE_AS(instances.check_function, PARA_INFO, "check %s num = %d", instances.noun, count);
    return count;
}

// The parsed file; null after the trace that its failure gets.
static json_ptr load(const param_table &table, const file_path &path, const char *unreadable)
{
    json_file file = read_json_file(path.text, table.init_function, PARA_INFO);
    if (!file.readable && table.rules.traces_unreadable)
        PARA_TRACE_AS(table.init_function, PARA_INFO, "%s\n", unreadable);
    return std::move(file.root);
}

static int load_range(const param_table &table)
{
    const json_ptr root = load(table, home_file(table, "_range.json"), "Error range def buf");
    if (!root)
        return -1;
    if (table.instances != nullptr)
        *table.instances->count = param_count_instances(*table.instances, root.get());
    read_members(table, root.get(), get_range_param);
    return 0;
}

// Every member that the defaults file names starts with its default as current value.
static int load_defaults(const param_table &table)
{
    const json_ptr root = load(table, home_file(table, "_def.json"), "Error read def buf");
    if (!root)
        return -1;
    read_members(table, root.get(), get_def_param);
    read_members(table, root.get(), get_cur_param);
    return 0;
}

static void load_current(const param_table &table)
{
    const file_path path = current_file(table);
    int parse_ok = 0;
    if (access(path.text, F_OK) == 0) {
        const json_ptr root = load(table, path, "Error read cur buf");
        if (root) {
            read_members(table, root.get(), get_cur_param);
            parse_ok = 1;
        }
    }
    PARA_TRACE_AS(table.init_function, PARA_INFO, "parse_ok:%d", parse_ok);
}

int param_start(const param_table &table)
{
    for (int slot = 0; table.rules.clears_presence && slot < table.slots; slot++)
        store_word(table.exist[slot], 0);

    if (load_range(table) != 0 || load_defaults(table) != 0)
        return -1;
    load_current(table);

    for (int slot = 0; slot < table.slots; slot++)
        store_word(table.init[slot], load_word(table.cur[slot]));
    param_page(table);
    return 0;
}

// --- Changes ---

void param_change(const param_table &table, int slot, int value)
{
    stamp_change(table.stamp);
    store_word(table.cur[slot], value);
}

bool param_set_as_requested(const param_table &table, int instance, const param_member &member,
                            int number, const char *text)
{
    const int slot = param_slot(table, instance, member);
    const int needed = is_named(member) ? PRESENT_AS_NAME : PRESENT_AS_NUMBER;
    if ((load_word(table.exist[slot]) & needed) == 0)
        return false;
    return param_set(table, slot, is_named(member) ? number_of_text(*member.names, text) : number);
}

// --- Queries ---

const param_member *param_find(const param_table &table, const char *name)
{
    for (int i = 0; i < table.member_count; i++) {
        if (strcmp(table.members[i].key, name) == 0)
            return &table.members[i];
    }
    return nullptr;
}

static int current_value(const param_table &table, int slot)
{
    return table.rules.get_needs_presence ? value_if_present(table.cur, table.exist, slot)
                                          : load_word(table.cur[slot]);
}

int param_get_member(const param_table &table, int instance, const char *name, int *value,
                     const char **text)
{
    const param_member *const member = param_find(table, name);
    if (member == nullptr)
        return 0;

    const int slot = param_slot(table, instance, *member);
    const int presence = load_word(table.exist[slot]);
    *value = current_value(table, slot);
    if (text != nullptr && is_named(*member)) {
        const bool as_name = (presence & PRESENT_AS_NAME) != 0;
        *text = as_name ? name_of_number(*member->names, *value) : nullptr;
    }
    return presence;
}

static void add_if_present(const param_table &table, int instance, const param_member &member,
                           int presence_slot, cJSON *object)
{
    if (load_word(table.exist[presence_slot]) == 0)
        return;
    const int value = load_word(table.cur[param_slot(table, instance, member)]);
    const char *const name = is_named(member) ? name_of_number(*member.names, value) : nullptr;
    if (name != nullptr)
        cJSON_AddStringToObject(object, member.key, name);
    else
        cJSON_AddNumberToObject(object, member.key, value); // a value beyond its names stays whole
}

// The members of an instance: their slots follow one another.
static const param_member &member_of_slot(const param_table &table, int slot)
{
    return table.members[slot - table.members[0].slot];
}

cJSON *param_answer_all(const param_table &table, int instance)
{
    cJSON *const object = cJSON_CreateObject();
    if (table.written == nullptr) {
        for (int i = 0; i < table.member_count; i++) {
            const param_member &member = table.members[i];
            add_if_present(table, instance, member, param_slot(table, instance, member), object);
        }
    }
    for (int i = 0; i < table.written_count; i++) {
        const param_member &member = member_of_slot(table, table.written[i].slot);
        const param_member &decides = member_of_slot(table, table.written[i].if_present);
        add_if_present(table, instance, member, param_slot(table, instance, decides), object);
    }
    return object;
}

cJSON *param_answer_listed(const param_table &table, int instance, const cJSON *item)
{
    cJSON *const object = cJSON_CreateObject();
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, item)
    {
        const char *const name = element->valuestring;
        int value = 0;
        const char *text = nullptr;
        const int presence =
            name != nullptr ? param_get_member(table, instance, name, &value, &text) : 0;
        if ((presence & PRESENT_AS_NAME) != 0)
            cJSON_AddStringToObject(object, name, text);
        else if ((presence & table.rules.number_bit) != 0)
            cJSON_AddNumberToObject(object, name, value);
    }
    return object;
}

// --- Saving and dumping ---

bool param_due(const param_table &table)
{
    return change_due(table.stamp, load_word(*table.save_delay_ms));
}

int param_save_after(const param_table &table, int delay_ms)
{
    if (change_due(table.stamp, delay_ms)) {
        clear_change(table.stamp);
        param_save(table);
    }
    return 0;
}

static json_ptr current_document(const param_table &table)
{
    if (table.instances == nullptr)
        return json_ptr(param_answer_all(table, 0));

    json_ptr root(cJSON_CreateObject());
    for (int instance = 0; instance < instance_count(table); instance++) {
        cJSON_AddItemToObject(root.get(), instance_key(*table.instances, instance).text,
                              param_answer_all(table, instance));
    }
    return root;
}

int param_save(const param_table &table)
{
    const file_path path = current_file(table);
    const int flushed = write_json_file(path.text, current_document(table).get());
    // Last, and even when nothing was written: see SavedFile.FailedSaveIsNotRetried.
    clear_change(table.stamp);
    return flushed;
}

static void page_row(const param_table &table, const param_member &member, int slot)
{
    PARA_TRACE_AS(table.page_function, PARA_INFO, "%16s : cur:[%d],\tdef:[%d],\trange:[%d,%d]",
                  member.key, load_word(table.cur[slot]), load_word(table.def[slot]),
                  load_word(table.min[slot]), load_word(table.max[slot]));
}

void param_page(const param_table &table)
{
    const char *const function = table.page_function;
    PARA_TRACE_AS(function, PARA_INFO, "----------%s PARAM-----------\n", table.banner);
    for (int instance = 0; instance < instance_count(table); instance++) {
        if (table.instances != nullptr)
            PARA_TRACE_AS(function, PARA_INFO, "%s%d param:", table.instances->page_noun, instance);
        for (int i = 0; i < table.member_count; i++) {
            const param_member &member = table.members[i];
            page_row(table, member, param_slot(table, instance, member));
        }
    }
    PARA_TRACE_AS(function, PARA_INFO, "--------------------------------\n");
}
