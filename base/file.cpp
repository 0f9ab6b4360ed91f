#include "base/file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <utility>

#include "base/backup.h"
#include "base/guard.h"
#include "base/late_file.h"
#include "base/memory.h"
#include "base/trace.h"
#include "camparam/platform.h"

static unsigned written_files; // any thread

file_path::file_path(const char *dir, const char *name)
{
    cat_file_name(text, dir, name);
}

json_file parse_json_text(text_ptr text)
{
    if (!text)
        return {.readable = false, .error = "", .starved = false};

    // cJSON_GetErrorPtr() is a global of the process: another thread that parses would move it.
    const memory_watch memory;
    const char *end = nullptr;
    json_ptr root(cJSON_ParseWithOpts(text.get(), &end, 0));
    const bool starved = !root && memory.ran_out();
    return {.readable = true,
            .root = std::move(root),
            .error = end,
            .text = std::move(text),
            .starved = starved};
}

json_file read_json_file(const char *path)
{
    const memory_watch memory;
    text_ptr text(read_file_to_buf(path));
    const bool starved = !text && memory.ran_out();
    json_file file = parse_json_text(std::move(text));
    file.starved = file.starved || starved;
    return file;
}

bool is_missing(const char *path)
{
    if (access(path, F_OK) == 0)
        return false;
    return !guard_is_on() || errno == ENOENT || errno == ENOTDIR;
}

// --- Locks ---

static void wait_for_lock(int descriptor)
{
    while (flock(descriptor, LOCK_EX) != 0 && errno == EINTR)
        continue; // interrupted by a signal handler of the host
}

// Polls, as nothing else bounds the wait without a signal.
static int try_to_lock(int descriptor)
{
    constexpr timespec pause = {.tv_sec = 0, .tv_nsec = 10000000};
    constexpr int turns = 200; // 2 s
    for (int turn = 0; flock(descriptor, LOCK_EX | LOCK_NB) != 0; turn++) {
        if (errno != EWOULDBLOCK && errno != EINTR)
            return 0; // the file system has no locks
        if (turn == turns)
            return EWOULDBLOCK;
        nanosleep(&pause, nullptr);
    }
    return 0;
}

int lock_file(FILE *file)
{
    if (guard_is_on())
        return try_to_lock(fileno(file));
    wait_for_lock(fileno(file));
    return 0;
}

void unlock_file(FILE *file)
{
    flock(fileno(file), LOCK_UN);
}

// --- Writing ---

// A short write is a failure that fflush may not see: nothing is pending after it.
static int write_all(FILE *file, const char *bytes, size_t length)
{
    const bool complete = fwrite(bytes, 1, length, file) == length;
    const int error = errno;
    const int flushed = fflush(file);
    if (complete)
        return flushed;
    errno = error;
    return EOF;
}

int replace_contents(FILE *file, const char *bytes, size_t length)
{
    if (ftruncate(fileno(file), 0) != 0)
        return EOF;
    rewind(file);
    return write_all(file, bytes, length);
}

static bool is_regular_file(int descriptor)
{
    struct stat about = {};
    if (fstat(descriptor, &about) == 0 && S_ISREG(about.st_mode))
        return true;
    errno = EINVAL;
    return false;
}

// What O_TRUNC does: nothing to what has no length.
static bool truncate(int descriptor)
{
    return ftruncate(descriptor, 0) == 0 || errno == EINVAL;
}

// Truncates only without a lock: its holder may be reading the file. Not while opening it: the old
// text stays when there is no memory for the stream. With the guard on it does not wait for the
// reader of a FIFO.
static FILE *open_to_write(const char *path, file_lock lock)
{
    const int guarded = guard_is_on() ? O_NONBLOCK : 0;
    const int descriptor = open(path, O_WRONLY | O_CREAT | O_CLOEXEC | guarded, 0666);
    if (descriptor < 0)
        return nullptr;
    FILE *file = nullptr;
    if (guarded == 0 || is_regular_file(descriptor))
        file = fdopen(descriptor, "wb");
    if (file != nullptr && (lock != file_lock::none || truncate(descriptor)))
        return file;
    const int error = errno;
    if (file != nullptr)
        fclose(file);
    else
        close(descriptor);
    errno = error;
    return nullptr;
}

static write_result failure(int returned, bool torn)
{
    return {.returned = returned, .error = error_of(false), .torn = torn};
}

static write_result result_of(int flushed)
{
    return flushed == 0 ? write_result{} : failure(flushed, true);
}

static write_result replace_under_lock(FILE *file, const char *bytes, size_t length)
{
    const int error = lock_file(file);
    if (error != 0)
        return {.returned = EOF, .error = error, .torn = false};
    const write_result written = result_of(replace_contents(file, bytes, length));
    unlock_file(file);
    return written;
}

write_result write_in_place(const char *path, const char *bytes, size_t length, file_lock lock)
{
    errno = 0;
    FILE *const file = open_to_write(path, lock);
    if (file == nullptr)
        return failure(0, false);
    __atomic_fetch_add(&written_files, 1U, __ATOMIC_RELAXED);
    write_result written = lock == file_lock::exclusive ? replace_under_lock(file, bytes, length)
                                                        : result_of(write_all(file, bytes, length));
    if (fclose(file) != 0 && written.error == 0)
        written = failure(written.returned, true);
    return written;
}

// A backup of another text no longer shows that the file is torn; that it is empty does.
static int empty_torn_file(const char *path, file_lock lock, const save_state &state)
{
    return is_torn(state) ? write_in_place(path, "", 0, lock).error : 0;
}

// Returns 0, or the error number.
static int prepare_to_write(const char *path, const char *bytes, size_t length, file_lock lock,
                            const save_state &state)
{
    if (bytes == nullptr)
        return ENOMEM;
    const int late = find_late_file(path, state);
    if (late != 0)
        return late;
    const int torn = empty_torn_file(path, lock, state);
    return torn != 0 ? torn : write_backup(path, bytes, length);
}

static write_result write_guarded(const char *path, const char *bytes, size_t length,
                                  file_lock lock, save_state &state)
{
    write_result written = {};
    written.error = prepare_to_write(path, bytes, length, lock, state);
    if (written.error == 0) {
        note_missed(state, {}); // a write that fails leaves a file, too
        written = write_in_place(path, bytes, length, lock);
        note_torn(state, written.torn);
    }
    if (written.error == 0)
        return written;
    PARA_TRACE(PARA_ERROR, "%s is not written, errno:%d", path, written.error);
    written.returned = EOF;
    return written;
}

write_result write_file(const char *path, const char *bytes, size_t length, file_lock lock,
                        save_state &state)
{
    if (guard_is_on())
        return write_guarded(path, bytes, length, lock, state);
    if (bytes == nullptr)
        return {.returned = 0, .error = ENOMEM, .torn = false};
    return write_in_place(path, bytes, length, lock);
}

write_result write_text_file(const char *path, const char *text, save_state &state)
{
    // length + 1: the final zero byte belongs to the format (SavedFile.EndsWithOneZeroByte).
    const size_t length = text != nullptr ? strlen(text) + 1 : 0;
    return write_file(path, text, length, file_lock::none, state);
}

unsigned files_written()
{
    return __atomic_load_n(&written_files, __ATOMIC_RELAXED);
}
