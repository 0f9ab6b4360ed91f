// Modules whose members come from a range file, and whose values are kept as text.
#include <cstdio>
#include <cstring>

#include "base/change.h"
#include "base/number.h"
#include "base/query.h"
#include "base/trace.h"
#include "camparam/control.h"
#include "camparam/json_util.h"
#include "camparam/misc.h"
#include "modules/text/text_module.h"

struct json_module {
    // Fixed after start-up. The objects are shared by all threads, and guard themselves.
    char name[module_name_size];
    cJSON *range;
    configure *cur;
    configure *def;
    bool loaded; // its files were read; else its current file is left alone
    // Any thread.
    timespec change_time;
    int changed;
};

constexpr int capacity = 16;
static json_module modules[capacity];

// 0: not started; else one more than the slots that are taken for good. The slot behind them may
// hold a module that failed to load, until the next one takes it.
static int json_module_num;

enum { NUMBER_KIND = cJSON_Number, ENUM_KIND = cJSON_String };

static change_stamp stamp_of(json_module &module)
{
    return {&module.change_time, &module.changed};
}

static json_module *find_module(const char *name)
{
    if (name == nullptr || name[0] == '\0')
        return nullptr;
    for (json_module &module : modules) {
        if (strcmp(module.name, name) == 0)
            return &module;
    }
    return nullptr;
}

// --- Start-up ---

static int loop4debug(void *, const char *key, const char *value)
{
    PARA_TRACE(PARA_INFO, "    %s=%s", key, value);
    return 0;
}

static void dump_conf(const json_module &module)
{
    if (!para_traces(PARA_INFO))
        return;
    PARA_TRACE(PARA_INFO, "%s cur:", module.name);
    module.cur->conf_loop(module.cur, loop4debug, nullptr);
}

// Empties the slot of a module that failed to load.
static void clear_slot(json_module &module)
{
    cJSON_Delete(module.range);
    configure_free(module.cur);
    configure_free(module.def);
    module = {};
}

static cJSON *load_range(const char *function, const char *name)
{
    const file_path path = module_path(para_profile.home_dir, name, "_range.json");
    json_file file = read_json_file(path.text, function, PARA_ERROR, "");
    if (!file.readable)
        PARA_TRACE_AS(function, PARA_ERROR, "Error range %s", path.text);
    if (file.root)
        cJSON_Print_safe(file.root.get());
    return file.root.release();
}

static bool load_values(const char *function, json_module &module, const char *name)
{
    const file_path home = module_path(para_profile.home_dir, name, ".conf");
    if (configure_parse(module.def, 0, home.text) != 0) {
        PARA_TRACE_AS(function, PARA_ERROR, "%s configure_parse fail", home.text);
        return false;
    }
    configure_parse(module.cur, 0, home.text);
    configure_parse(module.cur, 0, module_path(para_profile.data_dir, name, ".conf").text);
    return true;
}

static bool is_misc(const char *name)
{
    return strcmp(name, "misc") == 0;
}

static bool load_module(const char *function, json_module &module, const char *name)
{
    if (is_misc(name))
        return para_init_misc_legacy(name, &module.cur, &module.def, &module.range) == 0;
    module.cur = configure_init();
    module.def = configure_init();
    module.range = load_range(function, name);
    return module.range != nullptr && load_values(function, module, name);
}

int para_init_misc(const char *name)
{
    if (json_module_num == 0) { // the row "json": it stands for no module
        json_module_num = 1;
        return 0;
    }
    if (json_module_num > capacity) {
        PARA_TRACE(PARA_ERROR, "err not enough json module:%s", name);
        return 0;
    }

    json_module &module = modules[json_module_num - 1];
    clear_slot(module);
    snprintf(module.name, sizeof module.name, "%s", name);
    module.loaded = load_module(__func__, module, name);
    if (module.loaded || is_misc(name)) { // misc keeps its slot whatever became of it
        dump_conf(module);
        json_module_num++;
    }
    return 0;
}

// --- Ranges ---

const char *para_get_item_str(const cJSON *node)
{
    return cJSON_IsString(node) ? node->valuestring : nullptr;
}

int peek_array_enum_type(const cJSON *array)
{
    const cJSON *const first = cJSON_GetArrayItem(array, 0);
    if (first == nullptr) {
        PARA_TRACE(PARA_ERROR, "error cJSON null");
        return 0;
    }
    if (cJSON_IsString(first))
        return ENUM_KIND;
    if (cJSON_IsNumber(first))
        return NUMBER_KIND;
    PARA_TRACE(PARA_ERROR, "error type cJSON_Invalid");
    return 0;
}

static const cJSON *range_of(const json_module &module, const char *member)
{
    return cJSON_GetObjectItem(module.range, member);
}

static int kind_of(const json_module &module, const char *member)
{
    return peek_array_enum_type(range_of(module, member));
}

// Position of a text in a range, or -1.
static int position_of(const cJSON *range, const char *text)
{
    int position = 0;
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, range)
    {
        const char *const known = para_get_item_str(element);
        if (text != nullptr && known != nullptr && strcmp(known, text) == 0)
            return position;
        position++;
    }
    return -1;
}

static int enum_position(const json_module &module, const char *member, const char *text)
{
    return kind_of(module, member) == ENUM_KIND ? position_of(range_of(module, member), text) : -1;
}

int peek_json_enum_type(const char *module, const char *member)
{
    const json_module *const found = find_module(module);
    return found != nullptr ? kind_of(*found, member) : -1;
}

const char *para_get_json_emum_str(const char *module, const char *member, int index)
{
    const json_module *const found = find_module(module);
    if (found == nullptr)
        return nullptr;
    return para_get_item_str(cJSON_GetArrayItem(range_of(*found, member), index));
}

int para_get_json_enum_index(const char *module, const char *member, const char *text)
{
    const json_module *const found = find_module(module);
    if (found == nullptr || member == nullptr || text == nullptr)
        return -1;
    return enum_position(*found, member, text);
}

int para_get_json_item_number(const char *module, const cJSON *element, const char *member)
{
    if (cJSON_IsString(element))
        return para_get_json_enum_index(module, member, element->valuestring);
    return cJSON_IsNumber(element) ? element->valueint : -1;
}

int para_get_json_min(const char *module, const char *member)
{
    const json_module *const found = find_module(module);
    if (found == nullptr)
        return -1;
    return para_get_json_item_number(module, cJSON_GetArrayItem(range_of(*found, member), 0),
                                     member);
}

int para_get_json_max(const char *module, const char *member)
{
    const json_module *const found = find_module(module);
    if (found == nullptr)
        return -1;
    const cJSON *const range = range_of(*found, member);
    const int last = cJSON_GetArraySize(range) - 1;
    return para_get_json_item_number(module, cJSON_GetArrayItem(range, last), member);
}

// --- Values ---

static int number_in(const json_module &module, configure *conf, const char *member)
{
    char text[value_size];
    if (!read_conf_value(conf, member, text))
        return -1;
    return kind_of(module, member) == ENUM_KIND ? position_of(range_of(module, member), text)
                                                : leading_number(text);
}

int para_get_json_def(const char *module, const char *member)
{
    const json_module *const found = find_module(module);
    return found != nullptr ? number_in(*found, found->def, member) : -1;
}

int para_get_json_cur(const char *module, const char *member)
{
    const json_module *const found = find_module(module);
    return found != nullptr ? number_in(*found, found->cur, member) : -1;
}

int para_get_json_string(const char *module, const char *member, char *buffer, int size)
{
    const json_module *const found = find_module(module);
    if (found == nullptr || found->cur == nullptr || member == nullptr)
        return -1;
    return found->cur->conf_get(found->cur, member, buffer, size);
}

static int store_value(json_module &module, const char *member, const char *text)
{
    module.cur->conf_set(module.cur, member, text);
    stamp_change(stamp_of(module));
    return 1;
}

int para_set_json_cur_str(const char *module, const char *member, const char *text)
{
    json_module *const found = find_module(module);
    if (found == nullptr || enum_position(*found, member, text) < 0)
        return 0;
    char current[value_size];
    if (!read_conf_value(found->cur, member, current) || strcmp(current, text) == 0)
        return 0;
    return store_value(*found, member, text);
}

// The range is not enforced (JsonSetter.StoresNumbersOutsideTheRange).
int para_set_json_cur_number(const char *module, const char *member, int value)
{
    json_module *const found = find_module(module);
    if (found == nullptr || kind_of(*found, member) != NUMBER_KIND)
        return 0;
    char current[value_size];
    if (!read_conf_value(found->cur, member, current) || leading_number(current) == value)
        return 0;
    char text[32];
    return store_value(*found, member, lib_itoa(value, text));
}

int _para_set_json_cur(const char *module, const char *member, int value)
{
    const json_module *const found = find_module(module);
    if (found == nullptr)
        return -1;
    if (kind_of(*found, member) == ENUM_KIND)
        return para_set_json_cur_str(module, member, para_get_json_emum_str(module, member, value));
    return para_set_json_cur_number(module, member, value);
}

int para_set_json_cur(const char *module, const char *member, int value)
{
    const int result = _para_set_json_cur(module, member, value);
    if (result == 1 && para_profile.misc_set_notify_hook != nullptr) {
        const auto setter = reinterpret_cast<para_entry_point>(para_set_json_cur);
        para_profile.misc_set_notify_hook(module, setter, member, value);
    }
    return result;
}

// --- Requests ---

static int apply(const char *name, const cJSON *child)
{
    if (cJSON_IsString(child))
        return para_set_json_cur_str(name, child->string, child->valuestring);
    return para_set_json_cur_number(name, child->string, child->valueint);
}

int para_set_misc_opt(const char *, const cJSON *item, const char *name)
{
    bool changed = false;
    const cJSON *child = nullptr;
    cJSON_ArrayForEach(child, item)
    {
        const int type = child->type & 0xff;
        const int kind = peek_json_enum_type(name, child->string);
        if (type == kind)
            changed |= apply(name, child) == 1;
        else
            PARA_TRACE(PARA_ERROR, "%s type wrong,set:%d,def:%d",
                       child->string != nullptr ? child->string : "", type, kind);
    }
    if (!changed)
        return 0;

    PARA_TRACE(PARA_INFO, "need_to_notify");
    if (para_profile.misc_set_request_hook != nullptr)
        para_profile.misc_set_request_hook(name, item);
    return 0;
}

static configure *values_of(const json_module &module, bool defaults)
{
    return defaults ? module.def : module.cur;
}

struct object_of_module {
    const json_module *module;
    cJSON *object;
};

static void add_value(const object_of_module &answer, int kind, const char *member,
                      const char *text)
{
    if (kind == ENUM_KIND)
        cJSON_AddStringToObject(answer.object, member, text);
    else
        cJSON_AddNumberToObject(answer.object, member, leading_number(text));
}

static int add_entry(void *argument, const char *member, const char *text)
{
    const auto &answer = *static_cast<const object_of_module *>(argument);
    add_value(answer, kind_of(*answer.module, member), member, text);
    return 0;
}

static int add_all(const json_module &module, bool defaults, cJSON *object)
{
    configure *const values = values_of(module, defaults);
    object_of_module answer = {&module, object};
    return values != nullptr ? values->conf_loop(values, add_entry, &answer) : -1;
}

int Create_Json_Misc_Object(const char *module, cJSON *object, int defaults)
{
    const json_module *const found = find_module(module);
    return found != nullptr ? add_all(*found, defaults != 0, object) : -1;
}

static void add_listed(const json_module &module, bool defaults, const cJSON *item, cJSON *object)
{
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, item)
    {
        const char *const member = element->valuestring;
        if (member == nullptr)
            continue;
        const int kind = kind_of(module, member);
        char text[value_size];
        if (read_conf_value(values_of(module, defaults), member, text) && kind != 0)
            add_value({&module, object}, kind, member, text);
    }
}

int para_get_misc_opt(const char *key, const cJSON *item, cJSON **answer, const char *name)
{
    const bool defaults = asks_for_defaults(item);
    PARA_TRACE(PARA_DUMP, "inter %s def:%d", key, defaults ? 1 : 0);
    const json_module *const module = find_module(name);
    if (module == nullptr)
        return -1;

    *answer = cJSON_CreateObject();
    if (asks_for_all(item)) {
        add_all(*module, defaults, *answer);
        return 0;
    }
    add_listed(*module, defaults, item, *answer);
    PARA_TRACE(PARA_DUMP, "leave");
    return 0;
}

// --- Saving ---

int para_need_save_misc(const char *name)
{
    json_module *const module = find_module(name);
    if (module == nullptr)
        return -1;
    return change_due(stamp_of(*module), save_delay_ms) ? 1 : 0;
}

int para_save_misc(const char *name)
{
    json_module *const module = find_module(name);
    if (module == nullptr)
        return -1;
    clear_change(stamp_of(*module)); // first: a change from now on is saved again
    if (!module->loaded)
        return 0; // the values are in the file alone, and stay there
    if (is_misc(name))
        return para_save_misc_legacy(name, module->cur);
    const file_path path = module_path(para_profile.data_dir, name, ".conf");
    return write_conf_locked(path.text, module->cur);
}

int para_save_misc_conf_2_buf(const char *module, char *buffer, int size)
{
    const json_module *const found = find_module(module);
    if (found == nullptr || found->cur == nullptr)
        return -1;
    return write_conf_to_buffer(__func__, module, found->cur, buffer, size);
}
