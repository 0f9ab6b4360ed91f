#include "hooks.h"

#include <cjson/cJSON.h>
#include <dlfcn.h>

#include "camparam/control.h"
#include "change_log.h"

namespace {

// The setter's exported name, which contains module and member.
template <typename function> const char *name_of(function *setter)
{
    Dl_info found;
    if (dladdr(reinterpret_cast<void *>(setter), &found) == 0 || found.dli_sname == nullptr)
        return "setter";
    return found.dli_sname;
}

void log_request(const char *hook, const char *module, const cJSON *item)
{
    char *const text = cJSON_PrintUnformatted(item);
    log_change("%s: %s %s", hook, module, text != nullptr ? text : "");
    cJSON_free(text);
}

// The item's key: the module's name as the client wrote it.
const char *key_of(const cJSON *item)
{
    return item != nullptr && item->string != nullptr ? item->string : "";
}

void conflict(const char *name, int old_value, int new_value)
{
    log_change("conflict: %s %d -> %d", name, old_value, new_value);
}

void isp_set_notify(int (*setter)(int, int), int instance, int value)
{
    log_change("isp_set_notify: %s(%d, %d)", name_of(setter), instance, value);
}

void video_set_notify(int (*setter)(int, int), int stream, int value)
{
    log_change("video_set_notify: %s(%d, %d)", name_of(setter), stream, value);
}

void audio_set_notify(int (*setter)(int), int value)
{
    log_change("audio_set_notify: %s(%d)", name_of(setter), value);
}

void af_set_notify(int (*setter)(int), int value)
{
    log_change("af_set_notify: %s(%d)", name_of(setter), value);
}

void misc_set_notify(const char *module, para_entry_point setter, const char *member, int value)
{
    log_change("misc_set_notify: %s(%s, %s, %d)", name_of(setter), module, member, value);
}

void odm_set_notify(const char *key)
{
    log_change("odm_set_notify: %s", key);
}

void conf_member_notify(const char *module, const char *key)
{
    log_change("conf_member_notify: %s %s", module, key);
}

void isp_set_request(const cJSON *item)
{
    log_request("isp_set_request", key_of(item), item);
}

void video_set_request(const cJSON *item)
{
    log_request("video_set_request", key_of(item), item);
}

void audio_set_request(const cJSON *item)
{
    log_request("audio_set_request", key_of(item), item);
}

void misc_set_request(const char *module, const cJSON *item)
{
    log_request("misc_set_request", module, item);
}

int conf_update(const char *module)
{
    log_change("conf_update: %s", module);
    return 0;
}

// Never called. The store writes conf files only while this hook is set.
void conf_save() {}

} // namespace

void install_hooks()
{
    para_profile.conflict_hook = conflict;
    para_profile.isp_set_notify_hook = isp_set_notify;
    para_profile.video_set_notify_hook = video_set_notify;
    para_profile.audio_set_notify_hook = audio_set_notify;
    para_profile.af_set_notify_hook = af_set_notify;
    para_profile.misc_set_notify_hook = misc_set_notify;
    para_profile.odm_set_notify_hook = odm_set_notify;
    para_profile.conf_member_notify_hook = conf_member_notify;
    para_profile.isp_set_request_hook = isp_set_request;
    para_profile.video_set_request_hook = video_set_request;
    para_profile.audio_set_request_hook = audio_set_request;
    para_profile.misc_set_request_hook = misc_set_request;
    para_profile.conf_update_hook = conf_update;
}

void let_conf_files_be_written()
{
    para_profile.conf_save_hook = conf_save;
}
