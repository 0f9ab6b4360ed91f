// The key/value store behind a configure object.
#pragma once

#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "camparam/platform.h"
#include "platform/conf_text.h"

// An entry as conf_find() hands it out: the key, cut or padded to 256 bytes, then the value text.
// Entries are immutable: a new value replaces the entry, so that loops hold references and need no
// lock.
class entry {
public:
    entry(std::string_view key, std::string_view value);

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

// Any thread. What throws std::bad_alloc changes nothing.
class configure_object : public configure {
public:
    int get(std::string_view key, char *buffer, int size);
    std::vector<named_entry> snapshot();
    int set(std::string_view key, std::string_view value);
    void *find(std::string_view key);
    // Atomic: no other thread sees a half-read file. False when the object would hold too much.
    bool merge(const std::vector<conf_entry> &read);
    int changed_key(const std::vector<std::string> &keys);

private:
    struct slot : named_entry {
        // The entry at the last question about the key, or else at the first read.
        entry_ptr known;
        bool asked = false;
    };
    using slots_by_key = std::map<std::string_view, slot *>; // keys of the slots themselves

    // New entries, to be put into the object without an allocation.
    struct change {
        std::vector<std::pair<slot *, entry_ptr>> replaced;
        std::list<slot> added;
        slots_by_key added_by_key;
        size_t bytes = 0; // of the object with the change
    };

    slot *lookup(std::string_view key) const;
    void prepare(change &planned, std::string_view key, std::string_view value) const;
    bool fits(const change &planned) const;
    void carry_out(change &planned) noexcept;

    std::mutex lock;
    std::list<slot> slots; // in file order; never removed
    slots_by_key slots_of_keys;
    size_t bytes = 0;
    std::set<std::string, std::less<>> asked_early; // absent keys, before the first read
    bool was_read = false;
};
