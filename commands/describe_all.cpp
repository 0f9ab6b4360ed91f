// The modules that can be described.
#include "camparam/camparam.h"
#include "description.h"

// How to describe the modules that share a get_opt function.
struct module_kind {
    decltype(para_module::get_opt) get_opt;
    void (*describe)(const char *module, member_sink &sink);
    const char *command = nullptr;                   // that sets members; null: a set request does
    bool (*is_in_use)(const char *module) = nullptr; // null: always
};

static const module_kind kinds[] = {
    {.get_opt = para_get_isp_opt, .describe = describe_isp},
    {.get_opt = para_get_af_opt, .describe = describe_af, .command = "lens"},
    {.get_opt = para_get_video_opt, .describe = describe_video, .is_in_use = is_stream_in_use},
    {.get_opt = para_get_audio_opt, .describe = describe_audio},
    {.get_opt = para_get_misc_opt, .describe = describe_json_module},
    {.get_opt = para_get_conf_opt, .describe = describe_conf_module},
};

static const module_kind *kind_of(const para_module &row)
{
    for (const module_kind &kind : kinds) {
        if (row.get_opt == kind.get_opt)
            return &kind;
    }
    return nullptr;
}

void describe_all(member_sink &sink)
{
    for (int i = 0; i < module_para_handle_num; i++) {
        const para_module &row = module_para_handle[i];
        const module_kind *const kind = kind_of(row);
        if (row.name == nullptr || kind == nullptr ||
            (kind->is_in_use != nullptr && !kind->is_in_use(row.name)))
            continue;
        sink.begin_module(i, row, kind->command);
        kind->describe(row.name, sink);
    }
}
