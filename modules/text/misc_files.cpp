// The two file sets of "misc".
#include <cerrno>
#include <utility>

#include "base/backup.h"
#include "base/file.h"
#include "base/json_writer.h"
#include "base/memory.h"
#include "camparam/control.h"
#include "camparam/json_util.h"
#include "modules/text/pattern_module.h"

// Told by the version in the range file; fixed after start-up.
enum class misc_set { none, legacy, current };
static misc_set loaded_set = misc_set::none; // none: "misc" is not loaded, and not saved

// --- Loading ---

// Traces in the name of the interface's function.
static int fix_old_misc_def_cur_conf(const json_file &file, configure *conf)
{
    if (file.readable && !file.root)
        PARA_TRACE(PARA_ERROR, "Error before: [%s]", file.error);
    if (!file.root || conf == nullptr)
        return file.starved ? no_memory : -1;
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, file.root.get())
    {
        char number[PARA_NUMBER_SIZE];
        if (member->string == nullptr)
            continue;
        const char *const text =
            cJSON_IsString(member) ? member->valuestring : lib_itoa(member->valueint, number);
        if (!store_text(conf, member->string, text))
            return no_memory;
    }
    return 0;
}

int fix_old_misc_def_cur_conf(const char *path, configure *conf)
{
    return fix_old_misc_def_cur_conf(read_json_file(path), conf);
}

int para_init_misc_legacy_test()
{
    return 0;
}

// The range tree of either set; null when there is none.
static json_ptr load_range(const trace_site &site)
{
    json_file file = read_json_file(file_path(para_profile.home_dir, "misc_range.json").text);
    if (!file.readable)
        PARA_TRACE_AT(site, PARA_ERROR, "Error range def buf");
    else if (!file.root)
        PARA_TRACE_AT(site, PARA_ERROR, "Error before: [%s]", file.error);
    if (!file.root)
        return nullptr;

    const cJSON *const version = find_item(file.root.get(), "version");
    const bool current_set = version != nullptr && version->valueint != 0;
    json_ptr range =
        current_set ? std::move(file.root) : json_ptr(fix_old_misc_range_conf(file.root.get()));
    if (!range) {
        PARA_TRACE_AT(site, PARA_ERROR, "no memory for the range");
        return nullptr;
    }
    loaded_set = current_set ? misc_set::current : misc_set::legacy;
    cJSON_Print_safe(range.get());
    return range;
}

// A file that is missing or no JSON is skipped. Returns what load_conf_files() does.
static bool load_legacy_set(configure *&def, configure *&cur, save_state &starting)
{
    const file_path defaults(para_profile.home_dir, "misc_def.json");
    const file_path saved(para_profile.data_dir, "misc_cur.json");
    const int into_def = fix_old_misc_def_cur_conf(defaults.text, def);
    const int into_cur = fix_old_misc_def_cur_conf(defaults.text, cur);
    if (into_def != 0 || into_cur != 0)
        note_load_failure(starting, "misc");
    const bool starved =
        def == nullptr || cur == nullptr || into_def == no_memory || into_cur == no_memory ||
        fix_old_misc_def_cur_conf(read_current_json(saved.text, file_form::json, starting), cur) ==
            no_memory;
    if (starved)
        free_objects(def, cur);
    return !starved;
}

// Of the module's record; of none when a host calls para_init_misc_legacy() for objects of its own.
static save_state &state_of_misc()
{
    static save_state no_state;
    text_module *const module = find_module(patterns, "misc");
    return module != nullptr ? module->saves : no_state;
}

int para_init_misc_legacy(const char *, configure **cur, configure **def, cJSON **range)
{
    *cur = configure_init();
    *def = configure_init();
    PARA_TRACE(PARA_INFO, "enter");
    json_ptr loaded = load_range(PARA_HERE);
    if (!loaded)
        return -1;
    *range = loaded.release();

    PARA_TRACE(PARA_INFO, "enter misc version:%d", find_item(*range, "version")->valueint);
    save_state &starting = state_of_misc();
    const bool has_values = loaded_set == misc_set::current
                                ? load_conf_files("misc", *def, *cur, starting)
                                : load_legacy_set(*def, *cur, starting);
    if (*cur == nullptr)
        loaded_set = misc_set::none; // out of memory: no values that could be saved
    if (!has_values)
        return -1;
    return para_init_misc_legacy_test();
}

bool load_misc(text_module &module, const char *name, const trace_site &)
{
    return para_init_misc_legacy(name, &module.cur, &module.def, &module.range) == 0;
}

// --- Saving ---

static write_result save_legacy_set(const char *name)
{
    json_writer text;
    text.open(nullptr);
    const text_module *const module = find_module(patterns, name);
    const bool complete = module == nullptr || answer_all(*module, module->cur,
                                                          answer_form::by_range, text) != no_memory;
    text.close();
    const file_path path(para_profile.data_dir, "misc_cur.json");
    return write_text_file(path.text, complete ? text.written() : nullptr, state_of_misc());
}

static write_result save_files(const char *name, configure *cur)
{
    if (loaded_set == misc_set::none)
        return {.returned = 0, .error = ENODATA, .torn = false}; // neither set is loaded
    if (loaded_set == misc_set::legacy)
        return save_legacy_set(name);
    // Without the lock that other modules' files are written under.
    return save_conf_lines("misc", conf_lines(cur), file_lock::none, state_of_misc());
}

int para_save_misc_legacy(const char *name, configure *cur)
{
    return save_files(name, cur).returned;
}

write_result save_misc(text_module &module)
{
    return save_files(module.name, module.cur);
}
