#include "base/backup.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "base/bad_file.h"
#include "base/guard.h"
#include "base/late_file.h"
#include "base/lock.h"
#include "base/memory.h"
#include "base/trace.h"

file_beside::file_beside(const char *path, const char *suffix)
{
    snprintf(text, sizeof text, "%s%s", path, suffix);
}

folder_of::folder_of(const char *path)
{
    const char *const slash = strrchr(path, '/');
    const int length = slash != nullptr ? static_cast<int>(slash + 1 - path) : 1;
    snprintf(text, sizeof text, "%.*s", length, slash != nullptr ? path : ".");
}

// --- Writing ---

// Two saves of one file would share the temporary file.
static pthread_mutex_t temporary_mutex = PTHREAD_MUTEX_INITIALIZER;

static bool write_whole(int descriptor, const char *bytes, size_t length)
{
    while (length > 0) {
        const ssize_t written = write(descriptor, bytes, length);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes += written;
        length -= static_cast<size_t>(written);
    }
    return true;
}

// Makes a new file with the mode of another one, if that is there. Returns its descriptor.
static int create_like(const char *model, const char *path)
{
    struct stat about = {};
    const bool found = stat(model, &about) == 0 && S_ISREG(about.st_mode);
    const mode_t mode = found ? about.st_mode & 0777 : 0666;
    const int descriptor = open(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (descriptor >= 0 && found)
        fchmod(descriptor, mode); // the umask has no say; nor has a file system without modes
    return descriptor;
}

// Writes a file that is to take the place of another one. Returns 0, or the error number.
static int write_to_disk(const char *path, const char *replaced, const char *bytes, size_t length)
{
    unlink(path); // what an interrupted save left
    const int descriptor = create_like(replaced, path);
    if (descriptor < 0)
        return error_of(false);
    const int written = error_of(write_whole(descriptor, bytes, length) && fsync(descriptor) == 0);
    const int closed = error_of(close(descriptor) == 0);
    return written != 0 ? written : closed;
}

// Makes the renaming of a file in it last, where the file system can: some sync no folders
// (EINVAL), and a folder that may be written but not read cannot be opened for it.
static int sync_folder_of(const char *path)
{
    const int descriptor = open(folder_of(path).text, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return errno == EACCES ? 0 : error_of(false);
    const int synced = error_of(fsync(descriptor) == 0 || errno == EINVAL);
    close(descriptor);
    return synced;
}

// What the platform does not read, as for its size, would be of no use at the next start. Returns
// 0, or the error number.
static int read_back(const char *path)
{
    errno = 0;
    return error_of(text_ptr(read_file_to_buf(path)) != nullptr);
}

int write_backup(const char *path, const char *bytes, size_t length)
{
    if (path[0] == '\0' || strlen(path) >= PATH_MAX)
        return ENAMETOOLONG;
    const file_beside backup(path, ".bak");
    const file_beside temporary(path, ".bak.tmp");
    const lock_guard guard(temporary_mutex);
    errno = 0;
    int error = write_to_disk(temporary.text, path, bytes, length);
    if (error == 0)
        error = read_back(temporary.text);
    if (error == 0)
        error = error_of(rename(temporary.text, backup.text) == 0);
    if (error == 0)
        return sync_folder_of(path);
    unlink(temporary.text);
    return error;
}

// --- Recovery ---

// These two tell whether memory ran out; a file is not bad because of that.
static text_ptr read_text(const char *path, bool &starved)
{
    const memory_watch memory;
    text_ptr text(read_file_to_buf(path));
    starved = starved || (!text && memory.ran_out());
    return text;
}

static bool is_usable(file_form form, const char *text, bool &starved)
{
    if (text == nullptr || form == file_form::conf)
        return text != nullptr;
    const memory_watch memory;
    const json_ptr root(cJSON_Parse(text));
    starved = starved || (root == nullptr && memory.ran_out());
    return form == file_form::json_object ? cJSON_IsObject(root.get()) != 0 : root != nullptr;
}

// Empty, or the beginning of its backup: what an interrupted write leaves.
static bool is_beginning(const char *text, const char *backup)
{
    if (text == nullptr)
        return false;
    const size_t length = strlen(text);
    return length < strlen(backup) && memcmp(text, backup, length) == 0;
}

// A current file, held under its lock so that nobody rewrites it meanwhile.
class held_file {
public:
    explicit held_file(const char *path);
    ~held_file();
    held_file(const held_file &) = delete;
    held_file &operator=(const held_file &) = delete;

    // Null when it cannot be rewritten; error() tells why.
    FILE *stream() const { return reason == 0 ? file : nullptr; }
    int error() const { return reason; }
    // Whether other programs keep it locked, and whether one may be writing it.
    bool is_busy() const { return file != nullptr && reason != 0; }
    bool is_written() const { return written; }

private:
    FILE *file = nullptr;
    int reason = 0;
    bool written = false;
};

held_file::held_file(const char *path)
{
    const int descriptor = open(path, O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (descriptor >= 0)
        file = fdopen(descriptor, "r+");
    if (file == nullptr) {
        reason = error_of(false);
        if (descriptor >= 0)
            close(descriptor);
        return;
    }
    reason = lock_file(file);
    written = reason != 0 && flock(descriptor, LOCK_SH | LOCK_NB) != 0;
}

held_file::~held_file()
{
    if (file == nullptr)
        return;
    unlock_file(file);
    fclose(file);
}

// These two make way for the backup of a file. They return whether there is one now.

static bool make_way_in_torn_file(const char *path, const held_file &held, save_state &state)
{
    if (held.error() == 0)
        return true;
    PARA_TRACE(PARA_ERROR, "%s is torn and stays as it is, errno:%d", path, held.error());
    if (held.is_written())
        add_flags(state, PARA_STATUS_NOT_SAVED); // it may hold something else when the lock is free
    return false;
}

static bool keep_bad_file(const char *path, const held_file &held, save_state &state)
{
    file_beside bad(path, ".bad");
    const int error = held.is_busy() ? held.error() : set_aside(path, bad);
    if (error != 0) {
        PARA_TRACE(PARA_ERROR, "%s cannot be used and stays as it is, errno:%d", path, error);
        add_flags(state, PARA_STATUS_NOT_SAVED);
        return false;
    }
    PARA_TRACE(PARA_ERROR, "%s cannot be used and is kept as %s", path, bad.text);
    add_flags(state, PARA_STATUS_KEPT_BAD);
    return true;
}

static write_result write_in_free_place(const char *path, const char *bytes, size_t length)
{
    const int made = create_like(file_beside(path, ".bak").text, path);
    if (made >= 0)
        close(made);
    return write_in_place(path, bytes, length, file_lock::exclusive);
}

// Writes into the torn file, or into a new one in the place of a bad one.
static bool restore(bool torn, const held_file &held, const char *path, const char *backup,
                    file_form form)
{
    // JSON files end with a zero byte.
    const size_t length = strlen(backup) + (form != file_form::conf ? 1 : 0);
    const int error = torn ? error_of(replace_contents(held.stream(), backup, length) == 0)
                           : write_in_free_place(path, backup, length).error;
    if (error != 0)
        PARA_TRACE(PARA_ERROR, "%s cannot be restored, errno:%d", path, error);
    else
        PARA_TRACE(PARA_ERROR, "%s is restored from its backup", path);
    return error == 0;
}

// A start that can read the backup restores it, so both files are left for that.
static recovered_file leave_both(const char *path, const char *backup, int error, save_state &state)
{
    PARA_TRACE(PARA_ERROR, "%s cannot be read, errno:%d, and %s is not saved", backup, error, path);
    add_flags(state, PARA_STATUS_LOAD_FAILED | PARA_STATUS_NOT_SAVED);
    recovered_file nothing(path);
    nothing.unknown = true;
    return nothing;
}

recovered_file recover_file(const char *path, file_form form, save_state &state)
{
    recovered_file current(path);
    if (!guard_is_on())
        return current;
    current.missing = is_missing_at_load(path, state);
    if (current.missing)
        return current;
    const held_file held(path);
    current.written = held.is_written();
    current.text = read_text(path, current.starved);

    recovered_file backup(path, ".bak");
    backup.text = read_text(backup.path.text, current.starved);
    const int unread = error_of(backup.text != nullptr);
    const bool unknown = !backup.text && !is_missing(backup.path.text);
    const bool restorable = is_usable(form, backup.text.get(), current.starved);
    const bool torn = restorable && is_beginning(current.text.get(), backup.text.get());
    const bool emptied = unknown && current.text && current.text.get()[0] == '\0';
    const bool fit = !torn && !emptied && is_usable(form, current.text.get(), current.starved);
    if (fit || current.starved)
        return current;
    if (unknown)
        return leave_both(path, backup.path.text, unread, state);
    const bool replaceable =
        torn ? make_way_in_torn_file(path, held, state) : keep_bad_file(path, held, state);
    if (!restorable) {
        if (!replaceable)
            add_flags(state, PARA_STATUS_LOAD_FAILED);
        return recovered_file(path);
    }

    add_flags(state, PARA_STATUS_RESTORED);
    note_torn(state, torn);
    if (replaceable && restore(torn, held, path, backup.text.get(), form)) {
        note_torn(state, false);
        backup.path = current.path;
    }
    return backup;
}

json_file read_current_json(const char *path, file_form form, save_state &state)
{
    recovered_file recovered = recover_file(path, form, state);
    if (!guard_is_on())
        return read_json_file(path);
    const bool unread = !recovered.text && recovered.starved;
    json_file file = parse_json_text(std::move(recovered.text));
    file.starved = file.starved || unread;
    return file;
}
