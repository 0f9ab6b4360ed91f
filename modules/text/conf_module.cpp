// Modules whose settings are kept in ".conf" files of other programs.
#include "modules/text/conf_module.h"

#include "base/lock.h"
#include "base/query.h"
#include "camparam/conf.h"
#include "camparam/control.h"

static text_module records[64];
text_registry conf_modules = {.records = records, .capacity = sizeof records / sizeof records[0]};

static pthread_rwlock_t locks[sizeof records / sizeof records[0]];

pthread_rwlock_t &objects_lock(const text_module &module)
{
    return locks[&module - records];
}

// --- Loading ---

int para_init_single_conf(const char *name)
{
    text_module *const module = find_module(conf_modules, name);
    if (module == nullptr)
        return -1;

    const write_guard guard(objects_lock(*module));
    if (module->cur == nullptr) { // a reload keeps the objects, for key-change detection
        module->def = configure_init();
        module->cur = configure_init();
    }
    if (load_conf_files(name, module->def, module->cur))
        return 0;
    free_values(*module);
    return -1;
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

int para_set_conf_opt(const char *, const cJSON *item, const char *name)
{
    bool changed = false;
    const cJSON *child = nullptr;
    cJSON_ArrayForEach(child, item)
    {
        if (cJSON_IsString(child))
            changed |= _para_conf_set_member(name, child->string, child->valuestring) == 1;
    }
    if (!changed)
        return 0;

    PARA_TRACE(PARA_INFO, "need_to_notify");
    if (para_profile.conf_update_hook != nullptr)
        para_profile.conf_update_hook(name);
    return 0;
}

static void add_all_values(const char *name, bool defaults, cJSON *answer)
{
    const loaded_conf module(name);
    if (module)
        add_all(*module, defaults ? module->def : module->cur, answer_form::texts, answer);
}

// Current values, also when the key asks for defaults (ConfQuery.OnlyAllGivesDefaults).
static void add_listed_values(const char *name, const cJSON *item, cJSON *answer)
{
    const loaded_conf module(name);
    if (module)
        add_listed(*module, module->cur, answer_form::texts, item, answer);
}

int para_get_conf_opt(const char *, const cJSON *item, cJSON **answer, const char *name)
{
    PARA_TRACE(PARA_DUMP, "inter");
    *answer = cJSON_CreateObject();
    if (asks_for_all(item)) {
        add_all_values(name, asks_for_defaults(item), *answer);
        return 0;
    }
    add_listed_values(name, item, *answer);
    PARA_TRACE(PARA_DUMP, "leave");
    return 0;
}

// --- Saving ---

int para_need_save_conf(const char *name)
{
    return need_save(conf_modules, name);
}

// Clears the changed flag before reading the values, so that a later change is saved again.
static text_ptr lines_to_save(text_module &module)
{
    clear_change(stamp_of(module));
    return conf_lines(module.cur);
}

int para_save_conf(const char *name)
{
    if (para_profile.conf_save_hook == nullptr)
        return 0; // writing is switched off: the module stays due
    text_ptr lines;
    {
        const loaded_conf module(name);
        if (!module)
            return -1;
        lines = lines_to_save(*module);
    }
    save_conf_lines(name, lines, file_lock::exclusive);
    return 0;
}
