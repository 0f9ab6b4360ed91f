#include "platform/file.h"

#include <array>
#include <cstdlib>
#include <cstring>

#include "camparam/platform.h"
#include "platform/guard.h"

file_ptr open_to_read(const char *path)
{
    return file_ptr(path != nullptr ? fopen(path, "rbe") : nullptr);
}

std::optional<std::string> read_rest(FILE *file)
{
    std::string bytes;
    std::array<char, 16384> block;
    size_t length;
    while ((length = fread(block.data(), 1, block.size(), file)) > 0)
        bytes.append(block.data(), length);
    if (ferror(file) != 0)
        return std::nullopt;
    return bytes;
}

static char *heap_text(const std::string &bytes)
{
    char *const text = static_cast<char *>(malloc(bytes.size() + 1));
    if (text != nullptr)
        memcpy(text, bytes.c_str(), bytes.size() + 1);
    return text;
}

char *read_file_to_buf(const char *path)
{
    return guarded<char *>(nullptr, [path]() -> char * {
        const file_ptr file = open_to_read(path);
        if (!file)
            return nullptr;
        const std::optional<std::string> bytes = read_rest(file.get());
        return bytes ? heap_text(*bytes) : nullptr;
    });
}

char *cat_file_name(char *path, const char *dir, const char *name)
{
    const size_t dir_length = dir != nullptr ? strlen(dir) : 0;
    const size_t name_length = strlen(name);
    const bool bare = dir == nullptr || (dir_length > 0 && dir[dir_length - 1] == '/');
    const size_t separator_length = bare ? 0 : 1;

    path[0] = '\0';
    if (dir_length + separator_length + name_length >= PARA_PATH_SIZE)
        return path;

    if (dir_length > 0)
        memcpy(path, dir, dir_length);
    if (!bare)
        path[dir_length] = '/';
    memcpy(path + dir_length + separator_length, name, name_length + 1);
    return path;
}
