// The values of conf-file modules, for hosts.
#include <cstdlib>

#include "base/observer.h"
#include "camparam/conf.h"
#include "camparam/control.h"
#include "modules/text/conf_module.h"

const char *para_conf_get_member(const char *module, const char *key)
{
    const loaded_conf found(module);
    if (!found || key == nullptr)
        return nullptr;
    const void *const entry = found->cur->conf_find(found->cur, key);
    return entry != nullptr ? static_cast<const char *>(entry) + PARA_CONF_VALUE_OFFSET : nullptr;
}

int para_conf_get_member_safe(const char *module, const char *key, char *buffer, int size)
{
    const loaded_conf found(module);
    if (!found || key == nullptr)
        return -1;
    return found->cur->conf_get(found->cur, key, buffer, size);
}

int para_conf_get_def_member_safe(const char *module, const char *key, char *buffer, int size)
{
    const loaded_conf found(module);
    if (!found || key == nullptr)
        return -1;
    return found->def->conf_get(found->def, key, buffer, size);
}

namespace {

// A value before it is changed, for the observers: none is kept while there are none.
class kept_value {
public:
    void keep(configure *conf, const char *key)
    {
        kept = has_observers() && read_value(conf, key, text);
    }
    para_value told() const
    {
        return {.exists = kept ? 1 : 0, .text = kept ? text : nullptr, .number = 0};
    }

private:
    bool kept = false;
    char text[value_size];
};

} // namespace

// What conf_set returns, or -1. Keeps the old value where somebody is told of it.
static int store_value(const char *module, const char *key, const char *value, kept_value &old)
{
    const loaded_conf found(module);
    if (!found || key == nullptr || value == nullptr)
        return -1;
    old.keep(found->cur, key);
    const int result = found->cur->conf_set(found->cur, key, value);
    if (result != 0)
        accept_change(stamp_of(*found));
    return result;
}

int _para_conf_set_member(const char *module, const char *key, const char *value)
{
    kept_value old;
    const int result = store_value(module, key, value, old);
    if (result > 0)
        tell_change({.module = module,
                     .instance = 0,
                     .member = key,
                     .old_value = old.told(),
                     .new_value = {.exists = 1, .text = value, .number = 0},
                     .sender = nullptr});
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
    const loaded_conf found(module);
    if (!found)
        return -1;
    if (keys == nullptr)
        return 0;
    void *const key_set = config_keys_format(keys, count);
    const int position = configure_key_IsChanged(found->cur, key_set);
    free(key_set);
    if (position < 0)
        return 0;
    PARA_TRACE(PARA_INFO, "key id %d changed", position);
    return 1;
}

int para_save_conf_2_buf(const char *module, char *buffer, int size)
{
    const loaded_conf found(module);
    if (!found)
        return -1;
    return write_conf_to_buffer(module, found->cur, buffer, size, PARA_HERE);
}

// --- The modules that most devices have ---

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
