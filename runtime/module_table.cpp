#include "runtime/module_table.h"

#include <cstring>

#include "base/file.h"
#include "base/trace.h"
#include "camparam/af.h"
#include "camparam/audio.h"
#include "camparam/conf.h"
#include "camparam/isp.h"
#include "camparam/misc.h"
#include "camparam/module.h"
#include "camparam/odm.h"
#include "camparam/platform.h"
#include "camparam/video.h"
#include "camparam/www.h"

static constexpr para_module video_row(const char *name)
{
    return {name,
            para_init_video,
            nullptr,
            para_set_video_opt,
            para_get_video_opt,
            para_need_save_video,
            para_save_video};
}

// Row order is start-up order, save order and request-matching order.
para_module module_para_handle[64] = {
    {"odmInter", para_init_odm, para_init_stage2_odm, nullptr, nullptr, para_need_save_odm,
     para_save_odm},
    {"isp0", para_init_isp, nullptr, para_set_isp_opt, para_get_isp_opt, para_need_save_isp,
     para_save_isp},
    {"af", para_init_af, nullptr, nullptr, para_get_af_opt, para_need_save_af, para_save_af},
    video_row("video0"),
    video_row("video1"),
    {"audio", para_init_audio, nullptr, para_set_audio_opt, para_get_audio_opt,
     para_need_save_audio, para_save_audio},
    {"json", para_init_misc, nullptr, nullptr, nullptr, nullptr, nullptr},
    {"conf", para_init_conf, nullptr, nullptr, nullptr, nullptr, nullptr},
    {"msg_type", nullptr, nullptr, nullptr, nullptr, nullptr, nullptr},
    {"msg_name", nullptr, nullptr, nullptr, para_get_msg_name_opt, nullptr, nullptr},
    {"msg_id", nullptr, nullptr, nullptr, para_get_msg_id_opt, nullptr, nullptr},
    video_row("video2"),
    video_row("video3"),
    video_row("video4"),
    video_row("video5"),
    video_row("video6"),
    // Counted like the others: the rows that start-up appends stand behind it.
    {"end", nullptr, nullptr, nullptr, nullptr, nullptr, nullptr},
};

int module_para_handle_num = 0;

constexpr int module_capacity = sizeof module_para_handle / sizeof module_para_handle[0];

const para_protocol module_para_protocol_handle[] = {
    {"www", para_init_www, para_convert_www_opt, para_reverse_convert_www_opt},
};
const int module_para_protocol_handle_num = 1;

// What the module names of a web-name file's list, or of the built-in one, become.
struct module_pattern {
    const char *list;         // the list's key in the web-name file
    const char *default_list; // the text to use when the file has none
    const char *kind;         // of the row, in traces
    para_module row;          // copied, and given its name
};

static const module_pattern json_pattern = {
    "json_pattern_list",
    R"({"json_pattern_list":["misc"]})",
    "json_pattern",
    {"json_pattern", para_init_misc, nullptr, para_set_misc_opt, para_get_misc_opt,
     para_need_save_misc, para_save_misc},
};

static const module_pattern conf_pattern = {
    "conf_pattern_list",
    R"({"conf_pattern_list":["netport","overlay","ndi_config"]})",
    "conf_pattern",
    {"conf_pattern", para_init_conf, nullptr, para_set_conf_opt, para_get_conf_opt,
     para_need_save_conf, para_save_conf},
};

constexpr int staged_capacity = 32;
static para_module module_para_handle_extern_temp[staged_capacity];
static int module_para_handle_num_extern_temp = 0;

int count_static_modules()
{
    for (int i = 0; i < module_capacity; i++) {
        const char *const name = module_para_handle[i].name;
        if (name != nullptr && strcmp(name, "end") == 0)
            return i + 1;
    }
    return 0;
}

static bool table_is_full(const char *function)
{
    if (module_para_handle_num < module_capacity)
        return false;
    PARA_TRACE_AS(function, PARA_ERROR, "err not enough module_para_handle");
    return true;
}

static void append_module(const char *function, const char *kind, const para_module &row)
{
    module_para_handle[module_para_handle_num] = row;
    PARA_TRACE_AS(function, PARA_INFO, "add %s:%s", kind, row.name);
    module_para_handle_num++;
}

static int append_listed_modules(const char *function, const module_pattern &pattern,
                                 const cJSON *list)
{
    const cJSON *name = nullptr;
    cJSON_ArrayForEach(name, list)
    {
        if (table_is_full(function))
            return -1;
        para_module row = pattern.row;
        row.name = lib_strdup(name->valuestring);
        if (row.name != nullptr) // what is no text cannot be addressed
            append_module(function, pattern.kind, row);
    }
    return 0;
}

static int append_pattern_modules(const char *function, const module_pattern &pattern)
{
    const cJSON *const list = cJSON_GetObjectItem(para_config, pattern.list);
    if (list != nullptr)
        return append_listed_modules(function, pattern, list);

    const json_ptr built_in(cJSON_Parse(pattern.default_list));
    if (!built_in)
        PARA_TRACE_AS(function, PARA_ERROR, "%s error", pattern.list);
    return append_listed_modules(function, pattern,
                                 cJSON_GetObjectItem(built_in.get(), pattern.list));
}

int register_para_handle_json_pattern()
{
    return append_pattern_modules(__func__, json_pattern);
}

int register_para_handle_conf_pattern()
{
    return append_pattern_modules(__func__, conf_pattern);
}

int register_para_handle_extern_pattern()
{
    for (int i = 0; i < module_para_handle_num_extern_temp; i++) {
        if (table_is_full(__func__))
            return -1;
        append_module(__func__, "extern_pattern", module_para_handle_extern_temp[i]);
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
    module_para_handle_extern_temp[module_para_handle_num_extern_temp++] = {
        row->name, nullptr, nullptr, row->set_opt, row->get_opt, nullptr, nullptr};
    return 0;
}
