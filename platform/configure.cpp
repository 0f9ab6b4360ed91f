#include <cerrno>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "camparam/platform.h"
#include "platform/configure_object.h"
#include "platform/file.h"
#include "platform/guard.h"
#include "platform/key_set.h"

namespace {

configure_object &object_of(configure *conf)
{
    return *static_cast<configure_object *>(conf);
}

int get_operation(configure *conf, const char *key, char *buffer, int size)
{
    return key != nullptr ? object_of(conf).get(key, buffer, size) : -1;
}

int loop_operation(configure *conf, conf_loop_callback callback, void *argument)
{
    const std::vector<named_entry> entries =
        guarded(std::vector<named_entry>(), [conf] { return object_of(conf).snapshot(); });
    for (const named_entry &each : entries)
        callback(argument, each.key.c_str(), each.current->value_text());
    return 0;
}

int set_operation(configure *conf, const char *key, const char *value)
{
    if (key == nullptr || value == nullptr)
        return 0;
    return guarded(0, [=] { return object_of(conf).set(key, value); });
}

void *find_operation(configure *conf, const char *key)
{
    return key != nullptr ? object_of(conf).find(key) : nullptr;
}

// Writers truncate and rewrite a file under an exclusive lock.
std::optional<std::string> read_between_writes(const char *path)
{
    const descriptor file = open_to_read(path);
    if (!file || !lock_to_read(file))
        return std::nullopt;
    return read_rest(file);
}

} // namespace

configure *configure_init(void)
{
    configure_object *const made = new (std::nothrow) configure_object;
    if (made == nullptr)
        return nullptr;
    made->conf_get = get_operation;
    made->conf_loop = loop_operation;
    made->conf_set = set_operation;
    made->conf_find = find_operation;
    return made;
}

int configure_parse(configure *conf, int flags, const char *path)
{
    (void)flags;
    if (conf == nullptr) {
        errno = EINVAL;
        return -1;
    }
    return guarded(-1, [=] {
        const std::optional<std::string> text = read_between_writes(path);
        if (!text)
            return -1;
        const std::optional<std::vector<conf_entry>> entries = parse_conf_text(*text);
        if (!entries || !object_of(conf).merge(*entries)) {
            errno = EFBIG;
            return -1;
        }
        return 0;
    });
}

void configure_free(configure *conf)
{
    if (conf != nullptr)
        delete &object_of(conf);
}

int configure_key_IsChanged(configure *conf, const void *key_set)
{
    if (conf == nullptr)
        return -1;
    return guarded(-1, [=] { return object_of(conf).changed_key(keys_of(key_set)); });
}
