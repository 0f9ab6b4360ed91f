#include <cerrno>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "camparam/platform.h"
#include "platform/conf_text.h"
#include "platform/file.h"
#include "platform/guard.h"
#include "platform/key_set.h"

namespace {

// An entry as conf_find() hands it out: the key, cut or padded to 256 bytes, then the value text.
// Entries are immutable: a new value replaces the entry, so that loops hold references and need no
// lock.
class entry {
public:
    entry(std::string_view key, std::string_view value) : bytes(key.substr(0, value_offset - 1))
    {
        bytes.resize(value_offset);
        bytes += value;
    }

    std::string_view value() const { return std::string_view(bytes).substr(value_offset); }
    const char *value_text() const { return bytes.c_str() + value_offset; }
    void *address() const { return const_cast<char *>(bytes.data()); }

private:
    static constexpr size_t value_offset = PARA_CONF_VALUE_OFFSET;
    std::string bytes;
};
using entry_ptr = std::shared_ptr<const entry>; // null: absent

struct named_entry {
    std::string key;
    entry_ptr current;
};

class configure_object : public configure {
public:
    configure_object();

    int get(std::string_view key, char *buffer, int size);
    std::vector<named_entry> snapshot();
    int set(std::string_view key, std::string_view value);
    void *find(std::string_view key);
    void merge(const std::vector<conf_entry> &read);
    int changed_key(const std::vector<std::string> &keys);

private:
    entry_ptr lookup(std::string_view key) const;
    bool store(std::string_view key, std::string_view value);

    std::mutex lock;
    std::vector<named_entry> entries; // in file order; never removed
    std::map<std::string, size_t, std::less<>> positions;

    // The entry of each key at the last question about it, or else at the first read.
    std::map<std::string, entry_ptr, std::less<>> known;
    bool was_read = false;
};

configure_object &object_of(configure *conf)
{
    return *static_cast<configure_object *>(conf);
}

bool same(const entry_ptr &one, const entry_ptr &other)
{
    if (one == other)
        return true;
    return one != nullptr && other != nullptr && one->value() == other->value();
}

entry_ptr configure_object::lookup(std::string_view key) const
{
    const auto found = positions.find(key);
    return found != positions.end() ? entries[found->second].current : nullptr;
}

bool configure_object::store(std::string_view key, std::string_view value)
{
    const auto found = positions.find(key);
    if (found == positions.end()) {
        entries.push_back({std::string(key), std::make_shared<const entry>(key, value)});
        positions.emplace(key, entries.size() - 1);
        return true;
    }
    entry_ptr &current = entries[found->second].current;
    if (current->value() == value)
        return false;
    current = std::make_shared<const entry>(key, value);
    return true;
}

int configure_object::get(std::string_view key, char *buffer, int size)
{
    const std::lock_guard<std::mutex> guard(lock);
    const entry_ptr found = lookup(key);
    if (found == nullptr || size <= 0 || found->value().size() >= static_cast<size_t>(size))
        return -1;
    memcpy(buffer, found->value_text(), found->value().size() + 1);
    return 0;
}

std::vector<named_entry> configure_object::snapshot()
{
    const std::lock_guard<std::mutex> guard(lock);
    return entries;
}

int configure_object::set(std::string_view key, std::string_view value)
{
    if (!conf_writable(key, value))
        return 0;
    const std::lock_guard<std::mutex> guard(lock);
    return store(key, value) ? 1 : 0;
}

void *configure_object::find(std::string_view key)
{
    const std::lock_guard<std::mutex> guard(lock);
    const entry_ptr found = lookup(key);
    return found != nullptr ? found->address() : nullptr;
}

// Atomic: no other thread sees a half-read file.
void configure_object::merge(const std::vector<conf_entry> &read)
{
    const std::lock_guard<std::mutex> guard(lock);
    for (const conf_entry &line : read)
        store(line.key, line.value);
    if (was_read)
        return;

    was_read = true;
    for (const named_entry &each : entries)
        known.emplace(each.key, each.current); // no effect on keys already asked about
}

int configure_object::changed_key(const std::vector<std::string> &keys)
{
    const std::lock_guard<std::mutex> guard(lock);
    int first = -1;
    for (size_t i = 0; i < keys.size(); i++) {
        const entry_ptr current = lookup(keys[i]);
        entry_ptr &before = known[keys[i]];
        if (first < 0 && !same(before, current))
            first = static_cast<int>(i);
        before = current;
    }
    return first;
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

configure_object::configure_object()
{
    conf_get = get_operation;
    conf_loop = loop_operation;
    conf_set = set_operation;
    conf_find = find_operation;
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
    return new (std::nothrow) configure_object;
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
        object_of(conf).merge(parse_conf_text(*text));
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
