#include "change_log.h"

#include <arpa/inet.h>
#include <pthread.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "base/json.h"
#include "base/lock.h"
#include "camparam/commands.h"
#include "moment.h"

namespace {

// A value that is kept: its text, if it has one, is a part of the change's texts.
struct kept_value {
    int exists, number;
    size_t text; // where it begins; 0: there is none
};

struct kept_change {
    unsigned number;
    long long time;
    size_t member;
    kept_value before, after;
    char sender[INET_ADDRSTRLEN];
    text_ptr texts; // of module and member, and of values; null: there is no change
};

constexpr unsigned most_kept = 256;

pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER; // guards what follows
kept_change kept[most_kept];
unsigned counted;

// Texts one behind the other, each with its zero. First they are measured, then written.
class text_row {
public:
    size_t add(const char *text)
    {
        const size_t begin = size, bytes = strlen(text) + 1;
        if (to != nullptr)
            memcpy(to + begin, text, bytes);
        size += bytes;
        return begin;
    }
    kept_value add(const para_value &value)
    {
        return {value.exists, value.number, value.text != nullptr ? add(value.text) : 0};
    }

    char *to = nullptr;
    size_t size = 0;
};

// The row "isp0" holds all instances, which have names of their own in requests.
void add_module(const para_setting_change &change, text_row &texts)
{
    char name[64];
    snprintf(name, sizeof name, "%s", change.module);
    const size_t length = strlen(name);
    if (change.instance > 0 && length > 0)
        name[length - 1] = static_cast<char>('0' + change.instance);
    texts.add(change.instance > 0 ? name : change.module);
}

void add_texts(const para_setting_change &change, text_row &texts, kept_change &into)
{
    add_module(change, texts);
    into.member = texts.add(change.member);
    into.before = texts.add(change.old_value);
    into.after = texts.add(change.new_value);
}

// Without texts when there is no memory.
kept_change keep(const para_setting_change &change)
{
    kept_change made = {};
    text_row row;
    add_texts(change, row, made);
    made.texts.reset(static_cast<char *>(malloc(row.size)));
    if (made.texts == nullptr)
        return made;
    row = {};
    row.to = made.texts.get();
    add_texts(change, row, made);
    made.time = real_ms();
    snprintf(made.sender, sizeof made.sender, "host");
    if (change.sender != nullptr)
        inet_ntop(AF_INET, &change.sender->sin_addr, made.sender, sizeof made.sender);
    return made;
}

para_value shown(const kept_value &value, const char *texts)
{
    return {value.exists, value.text != 0 ? texts + value.text : nullptr, value.number};
}

logged_change shown(const kept_change &change)
{
    const char *const texts = change.texts.get();
    return {change.number,
            change.time,
            texts,
            texts + change.member,
            shown(change.before, texts),
            shown(change.after, texts),
            change.sender};
}

} // namespace

void para_commands_note(const para_setting_change *change)
{
    kept_change made = keep(*change); // what it takes the place of is freed behind the lock
    const lock_guard guard(mutex);
    made.number = ++counted;
    std::swap(kept[counted % most_kept], made);
}

void read_log(unsigned after, log_reader &reader)
{
    const lock_guard guard(mutex);
    const unsigned first = counted > most_kept ? counted - most_kept : 0;
    for (unsigned number = (after > first ? after : first); number < counted; number++) {
        const kept_change &change = kept[(number + 1) % most_kept];
        if (change.texts != nullptr && !reader.take(shown(change)))
            return;
    }
}
