// Modules whose members come from a range file.
#include <cstring>

#include "base/answer_tree.h"
#include "base/memory.h"
#include "base/query.h"
#include "camparam/control.h"
#include "camparam/json_util.h"
#include "modules/text/pattern_module.h"
#include "modules/text/rows.h"

static text_module records[16];
text_registry patterns = {.records = records, .capacity = sizeof records / sizeof records[0]};

// --- Start-up ---

static int loop4debug(void *, const char *key, const char *value)
{
    PARA_TRACE(PARA_INFO, "    %s=%s", key, value);
    return 0;
}

static void dump_conf(const text_module &module)
{
    if (!para_traces(PARA_INFO))
        return;
    PARA_TRACE(PARA_INFO, "%s cur:", module.name);
    if (module.cur != nullptr)
        module.cur->conf_loop(module.cur, loop4debug, nullptr);
}

static cJSON *load_range(const char *name, const trace_site &site)
{
    const file_path path = module_path(para_profile.home_dir, name, "_range.json");
    json_file file = read_json_file(path.text);
    if (!file.readable)
        PARA_TRACE_AT(site, PARA_ERROR, "Error range %s", path.text);
    else if (!file.root)
        PARA_TRACE_AT(site, PARA_ERROR, "Error before: [%s]", file.error);
    else
        cJSON_Print_safe(file.root.get());
    return file.root.release();
}

static bool load_pattern(text_module &module, const char *name, const trace_site &site)
{
    module.cur = configure_init();
    module.def = configure_init();
    module.range = load_range(name, site);
    if (module.range == nullptr)
        return false;
    if (load_conf_files(name, module.def, module.cur, module.saves))
        return true;
    const file_path home = module_path(para_profile.home_dir, name, ".conf");
    PARA_TRACE_AT(site, PARA_ERROR, "%s configure_parse fail", home.text);
    return false;
}

static write_result save_pattern(text_module &module)
{
    return save_conf_lines(module.name, conf_lines(module.cur), file_lock::exclusive, module.saves);
}

static const file_set file_sets[] = {
    {.module = "misc", .keeps_failed_record = true, .load = load_misc, .save = save_misc},
    {.load = load_pattern, .save = save_pattern},
};

static const file_set &files_of(const char *name)
{
    const file_set *files = file_sets;
    while (files->module != nullptr && strcmp(files->module, name) != 0)
        files++;
    return *files;
}

int para_init_misc(const char *name)
{
    if (patterns.next == 0) { // the row "json": no module
        patterns.next = 1;
        return 0;
    }
    text_module *const module = take_record(patterns, name);
    if (module == nullptr) {
        PARA_TRACE(PARA_ERROR, "err not enough json module:%s", name);
        return 0;
    }
    module->files = &files_of(name);
    const bool loaded = module->files->load(*module, name, PARA_HERE);
    if (!loaded)
        note_load_failure(module->saves, name);
    if (loaded || module->files->keeps_failed_record) {
        dump_conf(*module);
        patterns.next++;
    }
    return 0;
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
    bool starved = false;
    const cJSON *child = nullptr;
    cJSON_ArrayForEach(child, item)
    {
        const int type = child->type & 0xff;
        const int kind = peek_json_enum_type(name, child->string);
        const memory_watch memory;
        if (type == kind && apply(name, child) == 1)
            changed = true;
        else if (type == kind)
            starved |= memory.ran_out();
        else
            PARA_TRACE(PARA_ERROR, "%s type wrong,set:%d,def:%d",
                       child->string != nullptr ? child->string : "", type, kind);
    }
    const int result = starved ? no_memory : 0;
    if (!changed)
        return result;

    PARA_TRACE(PARA_INFO, "need_to_notify");
    if (para_profile.misc_set_request_hook != nullptr)
        para_profile.misc_set_request_hook(name, item);
    return result;
}

int answer_misc(const char *key, const cJSON *item, const char *name, answer_sink &sink)
{
    const trace_site site = PARA_IN(para_get_misc_opt);
    const bool defaults = asks_for_defaults(item);
    PARA_TRACE_AT(site, PARA_DUMP, "inter %s def:%d", key, defaults ? 1 : 0);
    const text_module *const module = find_module(patterns, name);
    if (module == nullptr)
        return -1;

    configure *const values = defaults ? module->def : module->cur;
    sink.open(key);
    if (asks_for_all(item)) {
        if (answer_all(*module, values, answer_form::by_range, sink) == no_memory)
            return no_memory;
    } else {
        answer_listed(*module, values, answer_form::by_range, item, sink);
        PARA_TRACE_AT(site, PARA_DUMP, "leave");
    }
    sink.close();
    return 0;
}
DEFINE_GET_OPT(misc)

// --- Saving ---

int para_need_save_misc(const char *name)
{
    return need_save(patterns, name);
}

int para_save_misc(const char *name)
{
    text_module *const module = find_module(patterns, name);
    if (module == nullptr)
        return -1;
    if (!may_be_saved(module->saves))
        return refuse_save(name);
    const change_stamp stamp = stamp_of(*module);
    const unsigned changes = counted_changes(stamp);
    clear_change(stamp); // before the values are read: a later change is saved again
    return end_save(stamp, changes, module->files->save(*module));
}

para_module_status pattern_status(const char *row)
{
    return status_in(patterns, row);
}
