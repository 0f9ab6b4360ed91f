#include "modules/fixed/module_file.h"

#include <cstdio>
#include <cstring>

#include "camparam/control.h"

static file_path module_file(const char *dir, const fixed_module &module, const char *suffix)
{
    char name[64];
    snprintf(name, sizeof name, "%s%s", module.name, suffix);
    return {dir, name};
}

file_path home_file(const fixed_module &module, const char *suffix)
{
    return module_file(para_profile.home_dir, module, suffix);
}

file_path current_file(const fixed_module &module)
{
    return module_file(para_profile.data_dir, module, "_cur.json");
}

row_name::row_name(const fixed_module &module, int slot)
{
    if (module.instances == nullptr) {
        snprintf(text, sizeof text, "%s", module.name);
        return;
    }
    const int instance = module.instances->share_a_row ? 0 : slot / module.instances->stride;
    snprintf(text, sizeof text, "%s%d", module.name, instance);
}

instance_key::instance_key(const fixed_module &module, int instance)
{
    const size_t length = strlen(module.name);
    memcpy(text, module.name, length);
    text[length] = static_cast<char>('0' + instance);
    text[length + 1] = '\0';
}
