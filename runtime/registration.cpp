// Rows that start-up appends to the module table: those of the patterns, and the host's own.
#include <cstring>

#include "base/json.h"
#include "base/trace.h"
#include "camparam/conf.h"
#include "camparam/misc.h"
#include "camparam/module.h"
#include "camparam/platform.h"
#include "server/web_names.h"

// A list of module names in the web-name file, and the row that each name gets.
struct module_pattern {
    const char *list;         // the list's key in the web-name file
    const char *default_list; // the text to use when the file has none
    para_module row;          // named after the pattern; a copy gets the module's name
};

static const module_pattern json_pattern = {
    .list = "json_pattern_list",
    .default_list = R"({"json_pattern_list":["misc"]})",
    .row = {.name = "json_pattern",
            .init = para_init_misc,
            .set_opt = para_set_misc_opt,
            .get_opt = para_get_misc_opt,
            .need_save = para_need_save_misc,
            .save = para_save_misc},
};

static const module_pattern conf_pattern = {
    .list = "conf_pattern_list",
    .default_list = R"({"conf_pattern_list":["netport","overlay","ndi_config"]})",
    .row = {.name = "conf_pattern",
            .init = para_init_conf,
            .set_opt = para_set_conf_opt,
            .get_opt = para_get_conf_opt,
            .need_save = para_need_save_conf,
            .save = para_save_conf},
};

constexpr int staged_capacity = 32;
static para_module module_para_handle_extern_temp[staged_capacity];
static int module_para_handle_num_extern_temp = 0;

static bool table_is_full(const trace_site &site)
{
    if (module_para_handle_num < PARA_MODULES_MAX)
        return false;
    PARA_TRACE_AT(site, PARA_ERROR, "err not enough module_para_handle");
    return true;
}

static void append_module(const char *kind, const para_module &row, const trace_site &site)
{
    module_para_handle[module_para_handle_num] = row;
    PARA_TRACE_AT(site, PARA_INFO, "add %s:%s", kind, row.name);
    module_para_handle_num++;
}

static int append_listed_modules(const module_pattern &pattern, const cJSON *list,
                                 const trace_site &site)
{
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, list)
    {
        if (table_is_full(site))
            return -1;
        para_module row = pattern.row;
        if (name->valuestring == nullptr)
            continue; // non-string entries are skipped
        row.name = lib_strdup(name->valuestring);
        if (row.name != nullptr)
            append_module(pattern.row.name, row, site);
        else
            PARA_TRACE_AT(site, PARA_ERROR, "no memory for %s", name->valuestring);
    }
    return 0;
}

static int append_pattern_modules(const module_pattern &pattern, const trace_site &site)
{
    const cJSON *const list = find_item(para_config, pattern.list);
    if (list != nullptr)
        return append_listed_modules(pattern, list, site);

    const json_ptr built_in(cJSON_Parse(pattern.default_list));
    if (!built_in)
        PARA_TRACE_AT(site, PARA_ERROR, "%s error", pattern.list);
    return append_listed_modules(pattern, find_item(built_in.get(), pattern.list), site);
}

int register_para_handle_json_pattern()
{
    return append_pattern_modules(json_pattern, PARA_HERE);
}

int register_para_handle_conf_pattern()
{
    return append_pattern_modules(conf_pattern, PARA_HERE);
}

int register_para_handle_extern_pattern()
{
    for (int i = 0; i < module_para_handle_num_extern_temp; i++) {
        if (table_is_full(PARA_HERE))
            return -1;
        append_module("extern_pattern", module_para_handle_extern_temp[i], PARA_HERE);
    }
    return 0;
}

static para_module *staged_module(const char *name)
{
    for (int i = 0; i < module_para_handle_num_extern_temp; i++) {
        if (strcmp(module_para_handle_extern_temp[i].name, name) == 0)
            return &module_para_handle_extern_temp[i];
    }
    return nullptr;
}

int register_para_handle_extern(const para_module *row)
{
    if (row == nullptr)
        return -1;
    if (module_para_handle_num != 0) {
        PARA_TRACE(PARA_ERROR, "err:call register_para_handle_extern before platformparam_init");
        return -1;
    }
    if (row->name == nullptr)
        return -1;

    para_module *const staged = staged_module(row->name);
    if (staged != nullptr) {
        staged->set_opt = row->set_opt;
        staged->get_opt = row->get_opt;
        PARA_TRACE(PARA_INFO, "%s ok,%p %p", row->name, reinterpret_cast<void *>(row->set_opt),
                   reinterpret_cast<void *>(row->get_opt));
        return 0;
    }

    if (module_para_handle_num_extern_temp >= staged_capacity) {
        PARA_TRACE(PARA_ERROR, "err not enough module_para_handle_extern_temp");
        return -1;
    }
    module_para_handle_extern_temp[module_para_handle_num_extern_temp++] = {.name = row->name,
                                                                            .init = nullptr,
                                                                            .set_opt = row->set_opt,
                                                                            .get_opt = row->get_opt,
                                                                            .need_save = nullptr,
                                                                            .save = nullptr};
    return 0;
}
