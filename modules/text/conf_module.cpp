// Modules whose settings are kept in ".conf" files of other programs.
#include "modules/text/conf_module.h"

#include "base/answer_tree.h"
#include "base/guard.h"
#include "base/lock.h"
#include "base/memory.h"
#include "base/query.h"
#include "camparam/conf.h"
#include "camparam/control.h"
#include "modules/text/rows.h"

static text_module records[64];
text_registry conf_modules = {.records = records, .capacity = sizeof records / sizeof records[0]};

static pthread_rwlock_t locks[sizeof records / sizeof records[0]];

pthread_rwlock_t &objects_lock(const text_module &module)
{
    return locks[&module - records];
}

static bool writes_files()
{
    return para_profile.conf_save_hook != nullptr;
}

// --- Loading ---

// What start-up has found out about the saved file.
static constexpr unsigned load_flags = PARA_STATUS_LOAD_FAILED | PARA_STATUS_NOT_SAVED;

static bool has_changes_to_save(const text_module &module)
{
    const para_module_status status = status_of(module.saves);
    return status.changes != status.saved && writes_files() && may_be_saved(module.saves);
}

// With the guard on.
static int load_again(text_module &module, const trace_site &site)
{
    if (has_changes_to_save(module)) {
        PARA_TRACE_AT(site, PARA_ERROR, "%s is not read again before its changes are saved",
                      module.name);
        return -1;
    }
    const unsigned before = status_of(module.saves).flags & load_flags;
    remove_flags(module.saves, load_flags);
    if (reload_conf_files(module.name, module.def, module.cur, module.saves))
        return 0;
    add_flags(module.saves, before);
    if (module.cur == nullptr)
        return note_load_failure(module.saves, module.name);
    PARA_TRACE_AT(site, PARA_ERROR, "%s is not read again, and keeps its values", module.name);
    return -1;
}

int para_init_single_conf(const char *name)
{
    text_module *const module = find_module(conf_modules, name);
    if (module == nullptr)
        return -1;

    const write_guard guard(objects_lock(*module));
    if (module->cur != nullptr && guard_is_on())
        return load_again(*module, PARA_HERE);
    if (module->cur == nullptr) { // a reload keeps the objects, for key-change detection
        module->def = configure_init();
        module->cur = configure_init();
        remove_flags(module->saves, PARA_STATUS_LOAD_FAILED); // of an earlier try
    }
    if (load_conf_files(name, module->def, module->cur, module->saves))
        return 0;
    free_values(*module);
    return note_load_failure(module->saves, name);
}

void para_conf_need_update(const char *module)
{
    PARA_TRACE(PARA_INFO, "enter");
    para_init_single_conf(module);
    if (para_profile.conf_update_hook != nullptr)
        para_profile.conf_update_hook(module);
    PARA_TRACE(PARA_INFO, "leave");
}

static int reload_netport(void *name)
{
    para_conf_need_update(static_cast<const char *>(name));
    return 0;
}

static void start_store()
{
    static const fifo_work reload = {
        .name = netport, .handler = reload_netport, .argument = const_cast<char *>(netport)};
    add_fifo_work(&reload, 1);
    conf_modules.next = 1;
}

int para_init_conf(const char *name)
{
    if (conf_modules.next == 0) { // the row "conf": no module
        start_store();
        return 0;
    }
    const text_module *const module = take_record(conf_modules, name);
    if (module == nullptr) {
        PARA_TRACE(PARA_ERROR, "err not enough conf module:%s", name);
        return 0;
    }
    pthread_rwlock_init(&objects_lock(*module), nullptr);
    para_init_single_conf(name);
    conf_modules.next++; // also after a failure: a later reload may succeed
    return 0;
}

// --- Requests ---

// With the guard on, only files and the host add keys.
static bool may_be_requested(const char *name, const char *key)
{
    return !guard_is_on() || (key != nullptr && para_conf_get_member(name, key) != nullptr);
}

int para_set_conf_opt(const char *, const cJSON *item, const char *name)
{
    bool changed = false;
    bool starved = false;
    const cJSON *child = nullptr;
    cJSON_ArrayForEach(child, item)
    {
        if (!cJSON_IsString(child) || !may_be_requested(name, child->string))
            continue;
        const memory_watch memory;
        if (_para_conf_set_member(name, child->string, child->valuestring) == 1)
            changed = true;
        else
            starved |= memory.ran_out();
    }
    const int result = starved ? no_memory : 0;
    if (!changed)
        return result;

    PARA_TRACE(PARA_INFO, "need_to_notify");
    if (para_profile.conf_update_hook != nullptr)
        para_profile.conf_update_hook(name);
    return result;
}

// Returns 0, or no_memory. A module without values answers with none.
static int answer_all_values(const char *name, bool defaults, answer_sink &sink)
{
    const loaded_conf module(name);
    if (!module)
        return 0;
    configure *const values = defaults ? module->def : module->cur;
    const int result = answer_all(*module, values, answer_form::texts, sink);
    return result == no_memory ? no_memory : 0;
}

// Current values, also when the key asks for defaults (ConfQuery.OnlyAllGivesDefaults).
static void answer_listed_values(const char *name, const cJSON *item, answer_sink &sink)
{
    const loaded_conf module(name);
    if (module)
        answer_listed(*module, module->cur, answer_form::texts, item, sink);
}

int answer_conf(const char *key, const cJSON *item, const char *name, answer_sink &sink)
{
    const trace_site site = PARA_IN(para_get_conf_opt);
    PARA_TRACE_AT(site, PARA_DUMP, "inter");
    int result = 0;
    sink.open(key);
    if (asks_for_all(item)) {
        result = answer_all_values(name, asks_for_defaults(item), sink);
    } else {
        answer_listed_values(name, item, sink);
        PARA_TRACE_AT(site, PARA_DUMP, "leave");
    }
    sink.close();
    return result;
}
DEFINE_GET_OPT(conf)

// --- Saving ---

int para_need_save_conf(const char *name)
{
    if (guard_is_on() && !writes_files())
        return 0; // the change waits until writing is switched on
    return need_save(conf_modules, name);
}

// What a save writes, and how many changes had been counted before.
struct conf_snapshot {
    change_stamp stamp;
    unsigned changes;
    text_ptr lines;
};

// Clears the changed flag before reading the values, so that a later change is saved again.
static conf_snapshot values_to_save(text_module &module)
{
    const change_stamp stamp = stamp_of(module);
    const unsigned changes = counted_changes(stamp);
    clear_change(stamp);
    return {.stamp = stamp, .changes = changes, .lines = conf_lines(module.cur)};
}

static int save_values(const char *name, const conf_snapshot &values)
{
    const write_result written =
        save_conf_lines(name, values.lines, file_lock::exclusive, *values.stamp.saves);
    const int result = end_save(values.stamp, values.changes, written);
    return guard_is_on() ? result : 0;
}

int para_save_conf(const char *name)
{
    if (!writes_files())
        return 0; // writing is switched off: the module stays due
    conf_snapshot values = {};
    {
        const loaded_conf module(name);
        if (!module)
            return -1;
        if (!may_be_saved(module->saves))
            return refuse_save(name);
        values = values_to_save(*module);
    }
    return save_values(name, values);
}

para_module_status conf_status(const char *row)
{
    para_module_status status = status_in(conf_modules, row);
    if (!writes_files())
        status.flags |= PARA_STATUS_NOT_SAVED;
    return status;
}
