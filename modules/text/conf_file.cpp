// The ".conf" files of the modules whose values are texts.
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/backup.h"
#include "base/file.h"
#include "base/guard.h"
#include "base/late_file.h"
#include "base/memory.h"
#include "base/text_buffer.h"
#include "base/trace.h"
#include "camparam/control.h"
#include "modules/text/text_module.h"

file_path module_path(const char *dir, const char *module, const char *suffix)
{
    char name[PARA_PATH_SIZE];
    const int length = snprintf(name, sizeof name, "%s%s", module, suffix);
    if (length >= PARA_PATH_SIZE)
        return file_path();
    return {dir, name};
}

bool read_value(configure *conf, const char *key, char (&value)[value_size])
{
    return conf != nullptr && key != nullptr && conf->conf_get(conf, key, value, value_size) == 0;
}

bool store_text(configure *conf, const char *key, const char *text)
{
    const memory_watch memory;
    return conf->conf_set(conf, key, text) != 0 || !memory.ran_out();
}

enum class reading { done, failed, starved };

enum class loading { start, again };

static reading read_conf_file(configure *conf, const char *path)
{
    const memory_watch memory;
    if (configure_parse(conf, 0, path) == 0)
        return reading::done;
    return memory.ran_out() ? reading::starved : reading::failed;
}

// The platform reads the file anew, and may fail where recovering did not.
static reading read_recovered(configure *cur, const recovered_file &saved)
{
    if (saved.written || saved.unknown) {
        errno = EWOULDBLOCK; // the platform would wait for the writer's lock as well
        return reading::failed;
    }
    const reading result = read_conf_file(cur, saved.path.text);
    return result != reading::done && saved.text ? read_conf_file(cur, saved.path.text) : result;
}

// The file stays, as it is the platform that refuses it.
static reading load_backup(configure *cur, const char *path, int error, save_state &state)
{
    PARA_TRACE(PARA_ERROR, "%s is refused, errno:%d", path, error);
    note_load_failure(state, path);
    const file_beside backup(path, ".bak");
    const reading result = read_conf_file(cur, backup.text);
    if (result == reading::starved)
        return result;
    if (result == reading::done) {
        PARA_TRACE(PARA_ERROR, "%s is used in its place", backup.text);
        add_flags(state, PARA_STATUS_RESTORED);
    }
    return reading::done;
}

// A file that is missing has been read. Start-up goes on without one that cannot be.
static reading load_saved(configure *cur, const char *path, loading when, save_state &state)
{
    const recovered_file saved = recover_file(path, file_form::conf, state);
    const reading result = read_recovered(cur, saved);
    const int error = error_of(false);
    if (result != reading::failed || saved.missing)
        return result == reading::starved ? result : reading::done;
    if (when == loading::again)
        return result;
    return saved.text ? load_backup(cur, path, error, state) : reading::done;
}

static reading load_both(const char *name, configure *def, configure *cur, loading when,
                         save_state &state)
{
    const file_path home = module_path(para_profile.home_dir, name, ".conf");
    const reading defaults = read_conf_file(def, home.text);
    if (defaults != reading::done)
        return defaults;
    const reading current = read_conf_file(cur, home.text);
    if (current == reading::starved || (current == reading::failed && guard_is_on()))
        return current;
    const file_path saved = module_path(para_profile.data_dir, name, ".conf");
    return load_saved(cur, saved.text, when, state);
}

bool load_conf_files(const char *name, configure *&def, configure *&cur, save_state &state)
{
    const bool starved = def == nullptr || cur == nullptr;
    const reading result =
        starved ? reading::starved : load_both(name, def, cur, loading::start, state);
    if (result == reading::starved)
        free_objects(def, cur); // some values are missing, and defaults would pass for saved ones
    return result == reading::done;
}

// --- Reading again ---

// Copies an object's entries into another one.
struct entry_copy {
    configure *to;
    bool starved;
};

static int copy_entry(void *argument, const char *key, const char *value)
{
    auto &copy = *static_cast<entry_copy *>(argument);
    copy.starved = copy.starved || errno == ENOMEM; // of the loop
    copy.starved = !store_text(copy.to, key, value) || copy.starved;
    return 0;
}

// Returns whether memory sufficed.
static bool copy_entries(configure *from, configure *to)
{
    if (to == nullptr)
        return false;
    entry_copy copy = {.to = to, .starved = false};
    const memory_watch memory;
    from->conf_loop(from, copy_entry, &copy);
    return !copy.starved && !memory.ran_out();
}

bool reload_conf_files(const char *name, configure *&def, configure *&cur, save_state &state)
{
    configure *const before = configure_init();
    const bool kept = copy_entries(cur, before);
    const bool done = kept && load_both(name, def, cur, loading::again, state) == reading::done;
    if (kept && !done && !copy_entries(before, cur))
        free_objects(def, cur); // defaults would pass for saved values
    if (before != nullptr)
        configure_free(before);
    return done;
}

text_ptr conf_lines(configure *cur)
{
    text_buffer lines;
    if (lines.stream() == nullptr || cur == nullptr)
        return nullptr;
    const memory_watch memory; // a host's object may need some to loop
    cur->conf_loop(cur, loop_2_conf, lines.stream());
    return text_ptr(memory.ran_out() ? nullptr : lines.release());
}

write_result save_conf_lines(const char *name, const text_ptr &lines, file_lock lock,
                             save_state &state)
{
    const file_path path = module_path(para_profile.data_dir, name, ".conf");
    const size_t length = lines ? strlen(lines.get()) : 0;
    return write_file(path.text, lines.get(), length, lock, state);
}

int write_conf_to_buffer(const char *module, configure *conf, char *buffer, int size,
                         const trace_site &site)
{
    conf_buffer_state state = {.buffer = buffer, .size = size};
    if (size > 0) {
        memset(buffer, 0, static_cast<size_t>(size));
        conf->conf_loop(conf, loop_2_buf, &state);
    }
    if (size <= 0 || state.overflow != 0) {
        PARA_TRACE_AT(site, PARA_ERROR, "%s buf is not enough", module);
        return 0;
    }
    return state.used + 1;
}
