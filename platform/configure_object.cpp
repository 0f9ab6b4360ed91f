#include "platform/configure_object.h"

#include <cstring>

entry::entry(std::string_view key, std::string_view value)
{
    bytes.reserve(value_offset + value.size());
    bytes = key.substr(0, value_offset - 1);
    bytes.resize(value_offset);
    bytes += value;
}

static bool same(const entry_ptr &one, const entry_ptr &other)
{
    if (one == other)
        return true;
    return one != nullptr && other != nullptr && one->value() == other->value();
}

configure_object::slot *configure_object::lookup(std::string_view key) const
{
    const auto found = slots_of_keys.find(key);
    return found != slots_of_keys.end() ? found->second : nullptr;
}

void configure_object::prepare(change &planned, std::string_view key, std::string_view value) const
{
    slot *const present = lookup(key);
    if (present != nullptr && present->current->value() == value)
        return;

    entry_ptr current = std::make_shared<const entry>(key, value);
    if (present != nullptr) {
        planned.bytes = planned.bytes + value.size() - present->current->value().size();
        planned.replaced.emplace_back(present, std::move(current));
        return;
    }
    planned.bytes += key.size() + value.size();
    slot &added = planned.added.emplace_back();
    added.key = key;
    added.current = std::move(current);
    added.asked = asked_early.count(key) != 0;
    planned.added_by_key.emplace(added.key, &added);
}

bool configure_object::fits(const change &planned) const
{
    return slots.size() + planned.added.size() <= conf_most_keys &&
           planned.bytes <= conf_most_bytes;
}

void configure_object::carry_out(change &planned) noexcept
{
    for (auto &[present, current] : planned.replaced)
        present->current = std::move(current);
    slots.splice(slots.end(), planned.added);
    slots_of_keys.merge(planned.added_by_key);
    bytes = planned.bytes;
}

int configure_object::get(std::string_view key, char *buffer, int size)
{
    const std::lock_guard<std::mutex> guard(lock);
    const slot *const found = lookup(key);
    if (found == nullptr || size <= 0)
        return -1;
    const std::string_view value = found->current->value();
    if (value.size() >= static_cast<size_t>(size))
        return -1;
    memcpy(buffer, found->current->value_text(), value.size() + 1);
    return 0;
}

std::vector<named_entry> configure_object::snapshot()
{
    const std::lock_guard<std::mutex> guard(lock);
    return {slots.begin(), slots.end()};
}

int configure_object::set(std::string_view key, std::string_view value)
{
    if (!conf_writable(key, value))
        return 0;
    const std::lock_guard<std::mutex> guard(lock);
    change planned;
    planned.bytes = bytes;
    prepare(planned, key, value);
    if (!fits(planned) || (planned.replaced.empty() && planned.added.empty()))
        return 0;
    carry_out(planned);
    return 1;
}

void *configure_object::find(std::string_view key)
{
    const std::lock_guard<std::mutex> guard(lock);
    const slot *const found = lookup(key);
    return found != nullptr ? found->current->address() : nullptr;
}

bool configure_object::merge(const std::vector<conf_entry> &read)
{
    const std::lock_guard<std::mutex> guard(lock);
    change planned;
    planned.bytes = bytes;
    for (const conf_entry &line : read)
        prepare(planned, line.key, line.value);
    if (!fits(planned))
        return false;
    carry_out(planned);
    if (was_read)
        return true;

    was_read = true;
    asked_early.clear();
    for (slot &each : slots) {
        if (!each.asked)
            each.known = each.current;
    }
    return true;
}

int configure_object::changed_key(const std::vector<std::string> &keys)
{
    const std::lock_guard<std::mutex> guard(lock);
    for (const std::string &key : keys) {
        if (!was_read && lookup(key) == nullptr)
            asked_early.insert(key);
    }
    int first = -1;
    for (size_t i = 0; i < keys.size(); i++) {
        slot *const asked = lookup(keys[i]);
        if (asked == nullptr)
            continue;
        if (first < 0 && !same(asked->known, asked->current))
            first = static_cast<int>(i);
        asked->known = asked->current;
        asked->asked = true;
    }
    return first;
}
