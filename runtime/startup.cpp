// Start-up: from the host's profile to a running store.
#include <pthread.h>

#include "base/file.h"
#include "base/trace.h"
#include "camparam/command.h"
#include "camparam/control.h"
#include "camparam/module.h"
#include "runtime/module_table.h"
#include "runtime/thread.h"

cJSON *para_config = nullptr;

int para_client_init()
{
    return 0;
}

static void load_web_names(const char *function)
{
    const char *const name = para_profile.www2json_name;
    const file_path path(para_profile.home_dir, name != nullptr ? name : "www2json.json");
    json_file file = read_json_file(path.text, function, PARA_ERROR, "");
    if (!file.readable)
        PARA_TRACE_AS(function, PARA_ERROR, "Error before: [%s]", "");
    para_config = file.root.release();
}

static void append_modules()
{
    register_para_handle_json_pattern();
    register_para_handle_conf_pattern();
    register_para_handle_extern_pattern();
}

static void init_modules(const char *function)
{
    for (int i = 0; i < module_para_handle_num; i++) {
        const para_module &row = module_para_handle[i];
        if (row.init != nullptr && row.init(row.name) != 0)
            PARA_TRACE_AS(function, PARA_ERROR, "%s init err", row.name);
    }
    for (int i = 0; i < module_para_handle_num; i++) {
        const para_module &row = module_para_handle[i];
        if (row.init_stage2 != nullptr)
            row.init_stage2(row.name);
    }
}

static void init_first_protocol(const char *function)
{
    const para_protocol &first = module_para_protocol_handle[0];
    if (first.init() != 0)
        PARA_TRACE_AS(function, PARA_ERROR, "%s init err", first.name);
}

int platformparam_init()
{
    // The version that the interface was made for, whatever compatible one is loaded.
    PARA_TRACE(PARA_INFO, "cJson version:%d %d %d", 1, 7, 14);
    if (para_profile.role != 0)
        return para_client_init();

    load_web_names(__func__);
    module_para_handle_num = count_static_modules();
    append_modules();
    PARA_TRACE(PARA_INFO, "module_para_handle_num:%d", module_para_handle_num);

    init_modules(__func__);
    init_first_protocol(__func__);
    return start_save_thread(para_server_init());
}
