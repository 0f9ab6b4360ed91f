#include "modules/fixed/fixed_module.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "base/file.h"
#include "base/trace.h"
#include "camparam/control.h"

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

void param_read_range(const param_table &table, int instance, const cJSON *object)
{
    for (int i = 0; i < table.member_count; i++) {
        const param_member &member = table.members[i];
        if (member.loaded)
            get_range_param(table, member, param_slot(table, instance, member), object);
    }
}

void param_read_defaults(const param_table &table, int instance, const cJSON *object)
{
    for (int i = 0; i < table.member_count; i++) {
        const param_member &member = table.members[i];
        if (member.loaded)
            get_def_param(table, member, param_slot(table, instance, member), object);
    }
}

void param_read_values(const param_table &table, int *values, const cJSON *object)
{
    for (int i = 0; i < table.member_count; i++) {
        const param_member &member = table.members[i];
        if (!member.loaded)
            continue;
        const cJSON *const item = cJSON_GetObjectItem(object, member.key);
        if (item != nullptr)
            read_value(table, member, item, values[member.slot]);
    }
}

static void read_current(const param_table &table, int instance, const cJSON *object)
{
    param_read_values(table, table.cur + first_slot(table, instance), object);
}

using object_reader = void (*)(const param_table &, int, const cJSON *);

static void read_instances(const param_table &table, const cJSON *root, object_reader reader)
{
    if (table.instances == nullptr) {
        reader(table, 0, root);
        return;
    }
    for (int instance = 0; instance < instance_count(table); instance++) {
        const instance_key key(*table.instances, instance);
        reader(table, instance, cJSON_GetObjectItem(root, key.text));
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

static json_ptr load(const param_table &table, const file_path &path, const char *unreadable)
{
    json_file file = read_json_file(path.text, table.init_function, PARA_INFO, "\n");
    if (!file.readable && table.rules.traces_unreadable)
        PARA_TRACE_AS(table.init_function, PARA_INFO, "%s\n", unreadable);
    return std::move(file.root);
}

json_ptr param_load_home_file(const param_table &table, const char *suffix, const char *unreadable)
{
    return load(table, module_file(para_profile.home_dir, table, suffix), unreadable);
}

json_ptr param_load_current_file(const param_table &table)
{
    const file_path path = current_file(table);
    if (access(path.text, F_OK) != 0)
        return nullptr;
    return load(table, path, "Error read cur buf");
}

void param_end_start(const param_table &table)
{
    for (int slot = 0; slot < table.slots; slot++)
        store_word(table.init[slot], load_word(table.cur[slot]));
    param_page(table);
}

static int load_range(const param_table &table)
{
    const json_ptr root = param_load_home_file(table, "_range.json", "Error range def buf");
    if (!root)
        return -1;
    if (table.instances != nullptr)
        *table.instances->count = param_count_instances(*table.instances, root.get());
    read_instances(table, root.get(), param_read_range);
    return 0;
}

// Every member that the defaults file names starts with its default as current value.
static int load_defaults(const param_table &table)
{
    const json_ptr root = param_load_home_file(table, "_def.json", "Error read def buf");
    if (!root)
        return -1;
    read_instances(table, root.get(), param_read_defaults);
    read_instances(table, root.get(), read_current);
    return 0;
}

static void load_current(const param_table &table)
{
    const json_ptr root = param_load_current_file(table);
    if (root)
        read_instances(table, root.get(), read_current);
    PARA_TRACE_AS(table.init_function, PARA_INFO, "parse_ok:%d", root ? 1 : 0);
}

int param_start(const param_table &table)
{
    for (int slot = 0; table.rules.clears_presence && slot < table.slots; slot++)
        store_word(table.exist[slot], 0);

    if (load_range(table) != 0 || load_defaults(table) != 0)
        return -1;
    load_current(table);
    param_end_start(table);
    return 0;
}

// --- Changes ---

int param_change(const param_table &table, int slot, int value)
{
    // The value first: a save that sees the mark must see the value too, or it would clear the mark
    // of a value that it has not written.
    store_word(table.cur[slot], value);
    stamp_change(table.stamp);
    return 1;
}

bool param_set_as_requested(const param_table &table, int instance, const param_member &member,
                            int number, const char *text)
{
    const int slot = param_slot(table, instance, member);
    const int needed = is_named(member) ? PRESENT_AS_NAME : PRESENT_AS_NUMBER;
    if ((load_word(table.exist[slot]) & needed) == 0)
        return false;
    const int value = is_named(member) ? number_of_text(*member.names, text) : number;
    return param_accepts(table, slot, value) && param_change(table, slot, value) == 1;
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

static int value_of(const param_table &table, const int *values, int slot)
{
    return table.rules.get_needs_presence ? value_if_present(values, table.exist, slot)
                                          : load_word(values[slot]);
}

int param_get_member(const param_table &table, const int *values, int instance, const char *name,
                     int *value, const char **text)
{
    const param_member *const member = param_find(table, name);
    if (member == nullptr || !member->queried)
        return 0;

    const int slot = param_slot(table, instance, *member);
    const int presence = load_word(table.exist[slot]);
    *value = value_of(table, values, slot);
    if (text != nullptr && is_named(*member)) {
        const bool as_name = (presence & PRESENT_AS_NAME) != 0;
        *text = as_name ? name_of_number(*member->names, *value) : nullptr;
    }
    return presence;
}

static void add_member(const param_member &member, int value, cJSON *object)
{
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

// What is written in which place: the table's own order, or its members as they stand.
static param_written written_at(const param_table &table, int place)
{
    if (table.written != nullptr)
        return table.written[place];
    return {table.members[place].slot, table.members[place].slot};
}

cJSON *param_answer_all(const param_table &table, const int *values, int instance)
{
    cJSON *const object = cJSON_CreateObject();
    const int first = first_slot(table, instance);
    const int count = table.written != nullptr ? table.written_count : table.member_count;
    for (int place = 0; place < count; place++) {
        const param_written row = written_at(table, place);
        if (load_word(table.exist[first + row.if_present]) != 0)
            add_member(member_of_slot(table, row.slot), load_word(values[first + row.slot]),
                       object);
    }
    return object;
}

cJSON *param_answer_listed(const param_table &table, const int *values, int instance,
                           const cJSON *item)
{
    cJSON *const object = cJSON_CreateObject();
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, item)
    {
        const char *const name = element->valuestring;
        if (name == nullptr)
            continue;
        int value = 0;
        const char *text = nullptr;
        const int presence = param_get_member(table, values, instance, name, &value, &text);
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
        return json_ptr(param_answer_all(table, table.cur, 0));

    json_ptr root(cJSON_CreateObject());
    for (int instance = 0; instance < instance_count(table); instance++) {
        cJSON_AddItemToObject(root.get(), instance_key(*table.instances, instance).text,
                              param_answer_all(table, table.cur, instance));
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
    if (!member.queried || (table.rules.page_needs_presence && load_word(table.exist[slot]) == 0))
        return;
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
            PARA_TRACE_AS(function, PARA_INFO, "%s%d param:%s", table.instances->page_noun,
                          instance, table.instances->page_break);
        for (int i = 0; i < table.member_count; i++) {
            const param_member &member = table.members[i];
            page_row(table, member, param_slot(table, instance, member));
        }
    }
    PARA_TRACE_AS(function, PARA_INFO, "--------------------------------\n");
}
