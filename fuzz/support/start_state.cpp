#include "fuzz/support/start_state.h"

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "base/file.h"
#include "camparam/camparam.h"
#include "fuzz/support/device.h"
#include "fuzz/support/target.h"
#include "modules/text/conf_module.h"
#include "modules/text/pattern_module.h"

namespace {

struct table {
    void *values;
    size_t size;
    std::string kept;
};

template <typename values> table table_at(values &array)
{
    return {&array, sizeof array,
            std::string(reinterpret_cast<const char *>(&array), sizeof array)};
}

struct kept_state {
    std::vector<table> tables;
    int default_style;
    unsigned written_files;
};
kept_state kept;

const char odm_file[] = "{\"version\":1}";

// With a file, so that the store has a document to go back to.
void load_odm_store()
{
    const std::string folder = folders().data + "/persist";
    std::filesystem::create_directory(folder);
    write_file(folder + "/odm.json", odm_file);
    require(para_init_odm("odmInter") == 0, "the ODM store is not loaded");
}

bool odm_changed()
{
    static unsigned seen = 0;
    para_module_status status = {};
    platformparam_get_status("odmInter", &status);
    const bool changed = status.changes != seen;
    seen = status.changes;
    return changed;
}

bool changed_since(text_module &module, unsigned &seen)
{
    const bool changed = module.saves.changes != seen;
    seen = module.saves.changes;
    return changed;
}

template <typename action> void for_each_changed(text_registry &registry, const action &restore)
{
    static std::vector<unsigned> seen;
    seen.resize(static_cast<size_t>(registry.capacity));
    for (int i = 0; i + 1 < registry.next; i++) {
        if (changed_since(registry.records[i], seen[static_cast<size_t>(i)]))
            restore(registry.records[i]);
    }
}

int copy_value(void *to, const char *key, const char *value)
{
    auto *const values = static_cast<configure *>(to);
    values->conf_set(values, key, value);
    return 0;
}

void restore_texts()
{
    for_each_changed(patterns, [](text_module &module) {
        module.def->conf_loop(module.def, copy_value, module.cur);
    });
    for_each_changed(conf_modules, [](text_module &module) { // requests may have added keys
        free_values(module);
        para_init_single_conf(module.name);
    });
}

} // namespace

void keep_start_state()
{
    load_odm_store();
    kept.tables = {table_at(para_af_cur),  table_at(para_audio_cur), table_at(para_video_cur),
                   table_at(para_isp_cur), table_at(para_isp_def),   table_at(para_isp_exist)};
    kept.default_style = para_get_isp_style_def_index(0);
    kept.written_files = files_written();
    odm_changed();
}

void restore_start_state()
{
    for (const table &each : kept.tables)
        memcpy(each.values, each.kept.data(), each.size);
    para_set_isp_style_def_index(0, kept.default_style);
    const bool wrote = files_written() != kept.written_files;
    if (wrote)
        empty_folder(folders().data);
    if (odm_changed() || wrote)
        load_odm_store();
    kept.written_files = files_written();
    restore_texts();
}
