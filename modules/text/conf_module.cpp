// Modules whose settings stand in ".conf" files that other programs own.
#include "camparam/conf.h"

#include <pthread.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "base/change.h"
#include "base/lock.h"
#include "base/query.h"
#include "base/trace.h"
#include "camparam/control.h"
#include "modules/text/text_module.h"

struct conf_module {
    // Null while the defaults file cannot be read; see objects_lock.
    configure *def;
    configure *cur;
    // Fixed after start-up.
    char name[module_name_size];
    // Any thread.
    timespec change_time;
    int changed;
};

constexpr int capacity = 64;
static conf_module modules[capacity];
static int conf_module_num; // 0: not started; else one more than the records in use

// A reload that fails frees a module's objects: held for writing while they are exchanged, and for
// reading while one is used. Never held while a hook runs. The values need no lock of ours.
static pthread_rwlock_t objects_lock = PTHREAD_RWLOCK_INITIALIZER;

// One reload at a time.
static pthread_mutex_t reload_mutex = PTHREAD_MUTEX_INITIALIZER;

class objects_in_use {
public:
    objects_in_use() { pthread_rwlock_rdlock(&objects_lock); }
    ~objects_in_use() { pthread_rwlock_unlock(&objects_lock); }
    objects_in_use(const objects_in_use &) = delete;
    objects_in_use &operator=(const objects_in_use &) = delete;
};

static change_stamp stamp_of(conf_module &module)
{
    return {&module.change_time, &module.changed};
}

static conf_module *find_module(const char *name)
{
    if (name == nullptr || name[0] == '\0')
        return nullptr;
    for (conf_module &module : modules) {
        if (strcmp(module.name, name) == 0)
            return &module;
    }
    return nullptr;
}

// The module, if it has values; the caller holds objects_in_use.
static conf_module *find_loaded(const char *name)
{
    conf_module *const module = find_module(name);
    return module != nullptr && module->cur != nullptr ? module : nullptr;
}

// --- Loading ---

struct conf_objects {
    configure *def, *cur;
};

static void free_objects(const conf_objects &objects)
{
    configure_free(objects.def);
    configure_free(objects.cur);
}

// Reads the files into new objects. Returns whether there is a defaults file.
static bool parse_files(const char *name, const conf_objects &objects)
{
    if (objects.def == nullptr || objects.cur == nullptr)
        return false;
    const file_path home = module_path(para_profile.home_dir, name, ".conf");
    if (configure_parse(objects.def, 0, home.text) != 0)
        return false;
    configure_parse(objects.cur, 0, home.text);
    configure_parse(objects.cur, 0, module_path(para_profile.data_dir, name, ".conf").text);
    return true;
}

// Makes the objects the module's, and frees those that it had.
static void give_objects(conf_module &module, conf_objects objects)
{
    pthread_rwlock_wrlock(&objects_lock);
    std::swap(module.def, objects.def);
    std::swap(module.cur, objects.cur);
    pthread_rwlock_unlock(&objects_lock);
    free_objects(objects);
}

static int copy_entry(void *to, const char *key, const char *value)
{
    auto *const conf = static_cast<configure *>(to);
    return conf->conf_set(conf, key, value);
}

// A reload keeps the module's objects. They take over what was read entry by entry, so that nobody
// meets a default in place of a saved value on the way, and a value that stays keeps its text.
static void copy_entries(const conf_objects &from, const conf_objects &to)
{
    from.def->conf_loop(from.def, copy_entry, to.def);
    from.cur->conf_loop(from.cur, copy_entry, to.cur);
}

int para_init_single_conf(const char *name)
{
    conf_module *const module = find_module(name);
    if (module == nullptr)
        return -1;

    const lock_guard guard(reload_mutex);
    const conf_objects read = {configure_init(), configure_init()};
    if (!parse_files(name, read)) {
        free_objects(read);
        give_objects(*module, {nullptr, nullptr});
        return -1;
    }
    if (module->cur == nullptr) {
        give_objects(*module, read);
        return 0;
    }
    copy_entries(read, {module->def, module->cur});
    free_objects(read);
    return 0;
}

void para_conf_need_update(const char *module)
{
    PARA_TRACE(PARA_INFO, "enter");
    para_init_single_conf(module);
    if (para_profile.conf_update_hook != nullptr)
        para_profile.conf_update_hook(module);
    PARA_TRACE(PARA_INFO, "leave");
}

static char netport[] = "netport";

static int reload_netport(void *name)
{
    para_conf_need_update(static_cast<const char *>(name));
    return 0;
}

static void start_store()
{
    static const fifo_work reload = {netport, nullptr, reload_netport, netport};
    add_fifo_work(&reload, 1);
    conf_module_num = 1;
}

int para_init_conf(const char *name)
{
    if (conf_module_num == 0) { // the row "conf": it stands for no module
        start_store();
        return 0;
    }
    if (conf_module_num > capacity) {
        PARA_TRACE(PARA_ERROR, "err not enough conf module:%s", name);
        return 0;
    }
    conf_module &module = modules[conf_module_num - 1];
    snprintf(module.name, sizeof module.name, "%s", name);
    para_init_single_conf(name);
    conf_module_num++; // a module that failed keeps its record, for a reload
    return 0;
}

// --- Values ---

const char *para_conf_get_member(const char *module, const char *key)
{
    const objects_in_use guard;
    const conf_module *const found = find_loaded(module);
    if (found == nullptr || key == nullptr)
        return nullptr;
    constexpr int value_in_entry = 256;
    const void *const entry = found->cur->conf_find(found->cur, key);
    return entry != nullptr ? static_cast<const char *>(entry) + value_in_entry : nullptr;
}

int para_conf_get_member_safe(const char *module, const char *key, char *buffer, int size)
{
    const objects_in_use guard;
    const conf_module *const found = find_loaded(module);
    if (found == nullptr || key == nullptr)
        return -1;
    return found->cur->conf_get(found->cur, key, buffer, size);
}

int para_conf_get_def_member_safe(const char *module, const char *key, char *buffer, int size)
{
    const objects_in_use guard;
    const conf_module *const found = find_loaded(module);
    if (found == nullptr || key == nullptr)
        return -1;
    return found->def->conf_get(found->def, key, buffer, size);
}

int _para_conf_set_member(const char *module, const char *key, const char *value)
{
    const objects_in_use guard;
    conf_module *const found = find_loaded(module);
    if (found == nullptr || key == nullptr || value == nullptr)
        return -1;
    const int result = found->cur->conf_set(found->cur, key, value);
    if (result != 0)
        stamp_change(stamp_of(*found));
    return result;
}

int para_conf_set_member(const char *module, const char *key, const char *value)
{
    const int result = _para_conf_set_member(module, key, value);
    if (result == 1 && para_profile.conf_member_notify_hook != nullptr)
        para_profile.conf_member_notify_hook(module, key);
    return result;
}

int para_conf_key_IsChanged(const char *module, const char *const *keys, unsigned char count)
{
    const objects_in_use guard;
    const conf_module *const found = find_loaded(module);
    if (found == nullptr || keys == nullptr)
        return -1;
    void *const key_set = config_keys_format(keys, count);
    const int position = configure_key_IsChanged(found->cur, key_set);
    free(key_set);
    if (position < 0)
        return 0;
    PARA_TRACE(PARA_INFO, "key id %d changed", position);
    return 1;
}

// --- The modules that most devices have, by name ---

const char *para_get_overlay_member(const char *key)
{
    return para_conf_get_member("overlay", key);
}
const char *para_get_netport_member(const char *key)
{
    return para_conf_get_member(netport, key);
}
const char *para_get_ndi_config_member(const char *key)
{
    return para_conf_get_member("ndi_config", key);
}

void para_need_update_netport()
{
    para_conf_need_update(netport);
}

int para_key_IsChanged_netport(const char *const *keys, int count)
{
    return para_conf_key_IsChanged(netport, keys, static_cast<unsigned char>(count));
}

int para_key_IsChanged_ndi(const char *const *keys, int count)
{
    return para_conf_key_IsChanged("ndi_config", keys, static_cast<unsigned char>(count));
}

int para_key_IsChanged_devinfo(const char *const *keys, int count)
{
    return para_conf_key_IsChanged("devinfo", keys, static_cast<unsigned char>(count));
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

static int add_entry(void *object, const char *key, const char *value)
{
    cJSON_AddStringToObject(static_cast<cJSON *>(object), key, value);
    return 0;
}

static void add_all(const char *name, bool defaults, cJSON *object)
{
    const objects_in_use guard;
    const conf_module *const module = find_loaded(name);
    if (module == nullptr)
        return;
    configure *const values = defaults && module->def != nullptr ? module->def : module->cur;
    values->conf_loop(values, add_entry, object);
}

// Current values, also when the key asks for defaults (ConfQuery.OnlyAllGivesDefaults).
static void add_listed(const char *name, const cJSON *item, cJSON *object)
{
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, item)
    {
        const char *const key = element->valuestring;
        char value[value_size];
        if (para_conf_get_member_safe(name, key, value, value_size) == 0)
            cJSON_AddStringToObject(object, key, value);
    }
}

int para_get_conf_opt(const char *, const cJSON *item, cJSON **answer, const char *name)
{
    PARA_TRACE(PARA_DUMP, "inter");
    *answer = cJSON_CreateObject();
    if (asks_for_all(item)) {
        add_all(name, asks_for_defaults(item), *answer);
        return 0;
    }
    add_listed(name, item, *answer);
    PARA_TRACE(PARA_DUMP, "leave");
    return 0;
}

// --- Saving ---

int para_need_save_conf(const char *name)
{
    conf_module *const module = find_module(name);
    if (module == nullptr)
        return -1;
    return change_due(stamp_of(*module), save_delay_ms) ? 1 : 0;
}

int para_save_conf(const char *name)
{
    if (para_profile.conf_save_hook == nullptr)
        return 0; // the host has not switched writing on: the module stays due
    const objects_in_use guard;
    conf_module *const module = find_loaded(name);
    if (module == nullptr)
        return -1;
    clear_change(stamp_of(*module));
    write_conf_locked(module_path(para_profile.data_dir, name, ".conf").text, module->cur);
    return 0;
}

int para_save_conf_2_buf(const char *module, char *buffer, int size)
{
    const objects_in_use guard;
    const conf_module *const found = find_loaded(module);
    if (found == nullptr)
        return -1;
    return write_conf_to_buffer(__func__, module, found->cur, buffer, size);
}
