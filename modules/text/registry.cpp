// The records of the modules whose values are texts.
#include <cstdio>

#include "base/text.h"
#include "modules/text/text_module.h"

void free_objects(configure *&def, configure *&cur)
{
    if (def != nullptr)
        configure_free(def);
    if (cur != nullptr)
        configure_free(cur);
    def = nullptr;
    cur = nullptr;
}

void free_values(text_module &module)
{
    free_objects(module.def, module.cur);
}

text_module *take_record(text_registry &registry, const char *name)
{
    if (registry.next > registry.capacity)
        return nullptr;

    text_module &module = registry.records[registry.next - 1];
    free_values(module); // of a module that failed to load
    cJSON_Delete(module.range);
    module = {};
    snprintf(module.name, sizeof module.name, "%s", name);
    module.listed = true;
    return &module;
}

text_module *find_module(const text_registry &registry, const char *name)
{
    for (int i = 0; name != nullptr && i < registry.capacity; i++) {
        text_module &module = registry.records[i];
        if (module.listed && is_same(module.name, name))
            return &module;
    }
    return nullptr;
}

change_stamp stamp_of(text_module &module)
{
    return {.time = &module.change_time, .changed = &module.changed, .saves = &module.saves};
}

para_module_status status_in(const text_registry &registry, const char *name)
{
    const text_module *const module = find_module(registry, name);
    if (module != nullptr)
        return status_of(module->saves);
    para_module_status unloaded = {};
    unloaded.flags = PARA_STATUS_LOAD_FAILED | PARA_STATUS_NOT_SAVED;
    return unloaded;
}

int need_save(const text_registry &registry, const char *name)
{
    text_module *const module = find_module(registry, name);
    if (module == nullptr)
        return -1;
    return change_due(stamp_of(*module), default_save_delay_ms) ? 1 : 0;
}
