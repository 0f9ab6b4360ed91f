#include "modules/text/text_module.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "base/trace.h"

file_path module_path(const char *dir, const char *module, const char *suffix)
{
    char name[path_size];
    const int length = snprintf(name, sizeof name, "%s%s", module, suffix);
    if (length >= path_size)
        return file_path();
    return {dir, name};
}

bool read_conf_value(configure *conf, const char *key, char (&value)[value_size])
{
    return conf != nullptr && key != nullptr && conf->conf_get(conf, key, value, value_size) == 0;
}

void lock_file(int descriptor)
{
    while (flock(descriptor, LOCK_EX) != 0 && errno == EINTR) {
        // A signal of the host's does not make the file ours.
    }
}

int write_conf_locked(const char *path, configure *conf)
{
    // Opened without truncating: until the lock is ours, the file is its holder's.
    const int descriptor = open(path, O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (descriptor < 0)
        return 0;
    FILE *const file = fdopen(descriptor, "wb");
    if (file == nullptr) {
        close(descriptor);
        return 0;
    }

    lock_file(descriptor);
    if (ftruncate(descriptor, 0) != 0)
        PARA_TRACE(PARA_ERROR, "%s cannot be emptied", path);
    rewind(file);
    conf->conf_loop(conf, loop_2_conf, file);
    const int flushed = fflush(file);
    flock(descriptor, LOCK_UN);
    fclose(file);
    return flushed;
}

int write_conf_to_buffer(const char *function, const char *module, configure *conf, char *buffer,
                         int size)
{
    conf_buffer_state state = {buffer, size, 0, 0};
    if (size > 0) {
        memset(buffer, 0, static_cast<size_t>(size));
        conf->conf_loop(conf, loop_2_buf, &state);
    }
    if (size <= 0 || state.overflow != 0) {
        PARA_TRACE_AS(function, PARA_ERROR, "%s buf is not enough", module);
        return 0;
    }
    return state.used + 1;
}
