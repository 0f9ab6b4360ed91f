#include "home_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "base/memory.h"
#include "camparam/control.h"
#include "camparam/platform.h"

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
        problem = "is not a regular file";
        return nullptr;
    }
    if (about.st_size > most_bytes) {
        problem = "has more than 1 MiB";
        return nullptr;
    }
    const auto size = static_cast<size_t>(about.st_size);
    text_ptr text(static_cast<char *>(malloc(size + 1)));
    if (text == nullptr)
        return nullptr;
    const ssize_t length = read_all(file, text.get(), size);
    if (length < 0) {
        problem = "cannot be read";
        return nullptr;
    }
    text.get()[length] = '\0';
    return text;
}

} // namespace

home_file read_home_file(const char *name)
{
    char path[PARA_PATH_SIZE];
    if (snprintf(path, sizeof path, "%s/%s", para_profile.home_dir, name) >=
        static_cast<int>(sizeof path))
        return {nullptr, nullptr, false}; // no file has that name
    const int file = open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0)
        return {nullptr, errno == ENOENT ? nullptr : "cannot be opened", false};
    const char *problem = nullptr;
    const text_ptr text = read_text(file, problem);
    close(file);
    if (text == nullptr)
        return {nullptr, problem, problem == nullptr};
    const memory_watch memory;
    json_ptr root(cJSON_Parse(text.get()));
    if (root != nullptr)
        return {std::move(root), nullptr, false};
    const bool starved = memory.ran_out();
    return {nullptr, starved ? nullptr : "is no JSON", starved};
}
