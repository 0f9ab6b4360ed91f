// The ".conf" files of the modules whose values are texts.
#include <cstdio>
#include <cstring>

#include "base/backup.h"
#include "base/guard.h"
#include "base/text_buffer.h"
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

// The platform reads the file anew, and may fail where recovering did not.
static void load_saved(const char *path, configure *cur, save_state &state)
{
    const recovered_file saved = recover_file(path, file_form::conf, state);
    const bool loaded = configure_parse(cur, 0, saved.path.text) == 0 || !saved.text ||
                        configure_parse(cur, 0, saved.path.text) == 0;
    if (!loaded)
        note_load_failure(state, path);
}

bool load_conf_files(const char *name, configure *def, configure *cur, save_state *starting)
{
    if (def == nullptr || cur == nullptr)
        return false;
    const file_path home = module_path(para_profile.home_dir, name, ".conf");
    if (configure_parse(def, 0, home.text) != 0)
        return false;
    if (configure_parse(cur, 0, home.text) != 0 && guard_is_on())
        return false;
    const file_path saved = module_path(para_profile.data_dir, name, ".conf");
    if (starting == nullptr)
        configure_parse(cur, 0, saved.text);
    else
        load_saved(saved.text, cur, *starting);
    return true;
}

text_ptr conf_lines(configure *cur)
{
    text_buffer lines;
    if (lines.stream() == nullptr || cur == nullptr)
        return nullptr;
    cur->conf_loop(cur, loop_2_conf, lines.stream());
    return text_ptr(lines.release());
}

write_result save_conf_lines(const char *name, const text_ptr &lines, file_lock lock)
{
    const file_path path = module_path(para_profile.data_dir, name, ".conf");
    const size_t length = lines ? strlen(lines.get()) : 0;
    return write_file(path.text, lines.get(), length, lock);
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
