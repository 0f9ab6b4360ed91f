#include "modules/fixed/param_table.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "camparam/control.h"
#include "core/json_file.h"
#include "core/trace.h"
#include "core/word.h"

// Files that are longer than this have no path either way.
struct file_name {
    file_name(const char *module, const char *suffix)
    {
        snprintf(text, sizeof text, "%s%s", module, suffix);
    }
    char text[path_size];
};

static file_path home_file(const param_table &table, const char *suffix)
{
    return {para_profile.home_dir, file_name(table.module, suffix).text};
}

static file_path current_file(const param_table &table)
{
    return {para_profile.data_dir, file_name(table.module, "_cur.json").text};
}

static void get_range_param(const param_table &table, const param_member &member, const cJSON *root)
{
    const cJSON *const range = cJSON_GetObjectItem(root, member.key);
    if (cJSON_GetArraySize(range) <= 1)
        return;
    store_word(table.min[member.slot], cJSON_GetArrayItem(range, 0)->valueint);
    store_word(table.max[member.slot], cJSON_GetArrayItem(range, 1)->valueint);
}

static void get_def_param(const param_table &table, const param_member &member, const cJSON *root)
{
    const cJSON *const value = cJSON_GetObjectItem(root, member.key);
    if (value == nullptr)
        return;
    store_word(table.def[member.slot], value->valueint);
    store_word(table.exist[member.slot], 1);
}

static void get_cur_param(const param_table &table, const param_member &member, const cJSON *root)
{
    const cJSON *const value = cJSON_GetObjectItem(root, member.key);
    if (value != nullptr)
        store_word(table.cur[member.slot], value->valueint);
}

using member_reader = void (*)(const param_table &, const param_member &, const cJSON *);

static void read_members(const param_table &table, const cJSON *root, member_reader reader)
{
    for (int i = 0; i < table.member_count; i++)
        reader(table, table.members[i], root);
}

static int load_range(const param_table &table)
{
    const file_path path = home_file(table, "_range.json");
    const json_file file = read_json_file(path.text, table.init_function, PARA_INFO);
    if (!file.root)
        return -1;
    read_members(table, file.root.get(), get_range_param);
    return 0;
}

// Every member that the defaults file names starts with its default as current value.
static int load_defaults(const param_table &table)
{
    const file_path path = home_file(table, "_def.json");
    const json_file file = read_json_file(path.text, table.init_function, PARA_INFO);
    if (!file.root)
        return -1;
    read_members(table, file.root.get(), get_def_param);
    read_members(table, file.root.get(), get_cur_param);
    return 0;
}

static void load_current(const param_table &table)
{
    const file_path path = current_file(table);
    int parse_ok = 0;
    if (access(path.text, F_OK) == 0) {
        const json_file file = read_json_file(path.text, table.init_function, PARA_INFO);
        if (file.root) {
            read_members(table, file.root.get(), get_cur_param);
            parse_ok = 1;
        }
    }
    PARA_TRACE_AS(table.init_function, PARA_INFO, "parse_ok:%d", parse_ok);
}

int param_start(const param_table &table)
{
    for (int slot = 0; slot < table.slots; slot++)
        store_word(table.exist[slot], 0);

    if (load_range(table) != 0 || load_defaults(table) != 0)
        return -1;
    load_current(table);

    for (int slot = 0; slot < table.slots; slot++)
        store_word(table.init[slot], load_word(table.cur[slot]));
    param_page(table);
    return 0;
}

bool param_set(const param_table &table, int slot, int value)
{
    if (value < load_word(table.min[slot]) || value > load_word(table.max[slot]))
        return false;
    if (value == load_word(table.cur[slot]))
        return false; // restamping would let a client that repeats itself hold off the save

    stamp_change(table.stamp);
    store_word(table.cur[slot], value);
    return true;
}

int param_get_member(const param_table &table, const char *name, int *value)
{
    for (int i = 0; i < table.member_count; i++) {
        const param_member &member = table.members[i];
        if (strcmp(member.key, name) == 0) {
            *value = load_word(table.cur[member.slot]);
            return load_word(table.exist[member.slot]);
        }
    }
    return 0;
}

cJSON *param_answer_all(const param_table &table)
{
    cJSON *const object = cJSON_CreateObject();
    for (int i = 0; i < table.member_count; i++) {
        const param_member &member = table.members[i];
        if (load_word(table.exist[member.slot]) != 0)
            cJSON_AddNumberToObject(object, member.key, load_word(table.cur[member.slot]));
    }
    return object;
}

cJSON *param_answer_listed(const param_table &table, const cJSON *item)
{
    cJSON *const object = cJSON_CreateObject();
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, item)
    {
        const char *const name = element->valuestring;
        int value = 0;
        if (name != nullptr && param_get_member(table, name, &value) != 0)
            cJSON_AddNumberToObject(object, name, value);
    }
    return object;
}

bool param_due(const param_table &table)
{
    return change_due(table.stamp, load_word(*table.save_delay_ms));
}

int param_save(const param_table &table)
{
    const file_path path = current_file(table);
    const json_ptr root(param_answer_all(table));
    const int flushed = write_json_file(path.text, root.get());
    // Last, and even when nothing was written: see SavedFile.FailedSaveIsNotRetried.
    clear_change(table.stamp);
    return flushed;
}

void param_page(const param_table &table)
{
    const char *const function = table.page_function;
    PARA_TRACE_AS(function, PARA_INFO, "----------%s PARAM-----------\n", table.banner);
    for (int i = 0; i < table.member_count; i++) {
        const param_member &member = table.members[i];
        PARA_TRACE_AS(function, PARA_INFO, "%16s : cur:[%d],\tdef:[%d],\trange:[%d,%d]", member.key,
                      load_word(table.cur[member.slot]), load_word(table.def[member.slot]),
                      load_word(table.min[member.slot]), load_word(table.max[member.slot]));
    }
    PARA_TRACE_AS(function, PARA_INFO, "--------------------------------\n");
}
