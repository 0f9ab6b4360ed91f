#include "descriptions.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/memory.h"
#include "camparam/control.h"
#include "camparam/platform.h"
#include "json.h"

namespace {

constexpr off_t most_bytes = 1 << 20;

// Reads what is there, up to the end of the buffer. Returns how much, or -1.
ssize_t read_all(int file, char *to, size_t size)
{
    size_t length = 0;
    while (length < size) {
        const ssize_t part = read(file, to + length, size - length);
        if (part < 0)
            return -1;
        if (part == 0)
            break;
        length += static_cast<size_t>(part);
    }
    return static_cast<ssize_t>(length);
}

// Null with the reason, or with none when memory ran out.
text_ptr read_text(int file, const char *&problem)
{
    struct stat about = {};
    if (fstat(file, &about) != 0 || !S_ISREG(about.st_mode)) {
        problem = "descriptions.json is not a regular file";
        return nullptr;
    }
    if (about.st_size > most_bytes) {
        problem = "descriptions.json has more than 1 MiB";
        return nullptr;
    }
    const auto size = static_cast<size_t>(about.st_size);
    text_ptr text(static_cast<char *>(malloc(size + 1)));
    if (text == nullptr)
        return nullptr;
    const ssize_t length = read_all(file, text.get(), size);
    if (length < 0) {
        problem = "descriptions.json cannot be read";
        return nullptr;
    }
    text.get()[length] = '\0';
    return text;
}

constexpr const char *texts[] = {"unit", "label", "help"};

bool add_copy(cJSON *to, const char *key, const cJSON *item)
{
    return add_to_object(to, key, json_ptr(cJSON_Duplicate(item, 1)));
}

// "video*" stands for each module whose name begins so.
bool is_meant(const char *pattern, const char *module)
{
    const size_t length = strlen(pattern);
    return length > 0 && pattern[length - 1] == '*' && strncmp(pattern, module, length - 1) == 0;
}

} // namespace

descriptions::descriptions()
{
    char path[PARA_PATH_SIZE];
    if (snprintf(path, sizeof path, "%s/descriptions.json", para_profile.home_dir) >=
        static_cast<int>(sizeof path))
        return; // no file has that name
    const int file = open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0) {
        if (errno != ENOENT)
            problem = "descriptions.json cannot be opened";
        return;
    }
    const text_ptr text = read_text(file, problem);
    close(file);
    if (text == nullptr) {
        starved = problem == nullptr;
        return;
    }
    const memory_watch memory;
    modules.reset(cJSON_Parse(text.get()));
    starved = modules == nullptr && memory.ran_out();
    if (!starved && !cJSON_IsObject(modules.get()))
        problem = "descriptions.json holds no JSON object";
}

const cJSON *descriptions::find(const char *module, const char *member) const
{
    const cJSON *const own = cJSON_GetObjectItemCaseSensitive(modules.get(), module);
    if (const cJSON *const found = cJSON_GetObjectItemCaseSensitive(own, member))
        return found;
    const cJSON *entry = nullptr;
    cJSON_ArrayForEach(entry, modules.get())
    {
        const cJSON *const found = cJSON_GetObjectItemCaseSensitive(entry, member);
        if (found != nullptr && entry->string != nullptr && is_meant(entry->string, module))
            return found;
    }
    return nullptr;
}

bool descriptions::is_secret(const char *module, const char *member, bool may_hold_text) const
{
    return starved || problem != nullptr ? may_hold_text : is_true(find(module, member), "secret");
}

bool descriptions::complete(const char *module, const char *name, cJSON *member,
                            bool show_secrets) const
{
    const cJSON *const found = find(module, name);
    bool added = !starved;
    for (const char *key : texts) {
        const cJSON *const text = cJSON_GetObjectItemCaseSensitive(found, key);
        if (cJSON_IsString(text))
            added = added && add_copy(member, key, text);
    }
    const cJSON *const names = cJSON_GetObjectItemCaseSensitive(found, "names");
    if (cJSON_IsObject(names) && is_kind(member, "number"))
        added = added && add_copy(member, "names", names);
    if (is_secret(module, name, is_kind(member, "text") || is_kind(member, "json"))) {
        if (!show_secrets)
            drop_values(member);
        added = added && cJSON_AddTrueToObject(member, "secret") != nullptr;
    }
    return added;
}

bool is_kind(const cJSON *member, const char *kind)
{
    const char *const found =
        cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(member, "kind"));
    return found != nullptr && strcmp(found, kind) == 0;
}

bool is_read_only(const cJSON *member)
{
    return is_true(member, "read_only");
}

static constexpr const char *values[] = {"default", "start", "current"};

bool is_value(const char *key)
{
    for (const char *value : values) {
        if (strcmp(key, value) == 0)
            return true;
    }
    return false;
}

void drop_values(cJSON *member)
{
    for (const char *value : values)
        cJSON_DeleteItemFromObjectCaseSensitive(member, value);
}

void drop_texts(cJSON *member)
{
    for (const char *text : texts)
        cJSON_DeleteItemFromObjectCaseSensitive(member, text);
}

void drop_names(cJSON *member)
{
    cJSON_DeleteItemFromObjectCaseSensitive(member, "names");
}
