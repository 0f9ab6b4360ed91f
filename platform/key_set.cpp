#include "platform/key_set.h"

#include <cstdlib>
#include <cstring>

#include "camparam/platform.h"

static const char *text_or_empty(const char *text)
{
    return text != nullptr ? text : "";
}

void *config_keys_format(const char *const *keys, int count)
{
    if (keys == nullptr || count < 0)
        count = 0;
    size_t size = sizeof count;
    for (int i = 0; i < count; i++)
        size += strlen(text_or_empty(keys[i])) + 1;

    char *const block = static_cast<char *>(malloc(size));
    if (block == nullptr)
        return nullptr;
    memcpy(block, &count, sizeof count);
    char *end = block + sizeof count;
    for (int i = 0; i < count; i++)
        end = stpcpy(end, text_or_empty(keys[i])) + 1;
    return block;
}

std::vector<std::string> keys_of(const void *key_set)
{
    std::vector<std::string> keys;
    if (key_set == nullptr)
        return keys;

    int count = 0;
    memcpy(&count, key_set, sizeof count);
    const char *text = static_cast<const char *>(key_set) + sizeof count;
    for (int i = 0; i < count; i++) {
        keys.emplace_back(text);
        text += keys.back().size() + 1;
    }
    return keys;
}
