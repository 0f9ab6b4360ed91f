#include "base/file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "camparam/platform.h"

file_path::file_path(const char *dir, const char *name)
{
    cat_file_name(text, dir, name);
}

json_file read_json_file(const char *path)
{
    text_ptr text(read_file_to_buf(path));
    if (!text)
        return {.readable = false, .root = nullptr, .error = "", .text = nullptr};

    // cJSON_GetErrorPtr() is a global of the process: another thread that parses would move it.
    const char *end = nullptr;
    json_ptr root(cJSON_ParseWithOpts(text.get(), &end, 0));
    return {.readable = true, .root = std::move(root), .error = end, .text = std::move(text)};
}

void lock_file(FILE *file)
{
    while (flock(fileno(file), LOCK_EX) != 0 && errno == EINTR) {
        // Interrupted by a signal handler of the host: wait again.
    }
}

void unlock_file(FILE *file)
{
    flock(fileno(file), LOCK_UN);
}

// A short write is a failure that fflush may not see: nothing is pending after it.
static int write_all(FILE *file, const char *bytes, size_t length)
{
    const bool complete = fwrite(bytes, 1, length, file) == length;
    const int flushed = fflush(file);
    return complete ? flushed : EOF;
}

int replace_contents(FILE *file, const char *bytes, size_t length)
{
    if (ftruncate(fileno(file), 0) != 0)
        return EOF;
    rewind(file);
    return write_all(file, bytes, length);
}

// Opens without truncating: the current lock holder may be reading the file.
static FILE *open_to_lock(const char *path)
{
    const int descriptor = open(path, O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (descriptor < 0)
        return nullptr;
    FILE *const file = fdopen(descriptor, "wb");
    if (file == nullptr)
        close(descriptor);
    return file;
}

static int write_locked(const char *path, const char *bytes, size_t length)
{
    FILE *const file = open_to_lock(path);
    if (file == nullptr)
        return 0;
    lock_file(file);
    const int flushed = replace_contents(file, bytes, length);
    unlock_file(file);
    fclose(file);
    return flushed;
}

int write_file(const char *path, const char *bytes, size_t length, file_lock lock)
{
    if (lock == file_lock::exclusive)
        return write_locked(path, bytes, length);

    FILE *const file = fopen(path, "wb");
    if (file == nullptr)
        return 0;
    const int flushed = write_all(file, bytes, length);
    fclose(file);
    return flushed;
}

int write_text_file(const char *path, const char *text)
{
    if (text == nullptr)
        return 0;
    // length + 1: the final zero byte belongs to the format (SavedFile.EndsWithOneZeroByte).
    return write_file(path, text, strlen(text) + 1, file_lock::none);
}
