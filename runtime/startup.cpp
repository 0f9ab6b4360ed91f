// Start-up: from the host's profile to a running store.
#include "base/file.h"
#include "base/trace.h"
#include "camparam/command.h"
#include "camparam/control.h"
#include "runtime/direct_answers.h"
#include "runtime/module_table.h"
#include "runtime/thread.h"
#include "server/protocol.h"
#include "server/web_names.h"

int para_client_init()
{
    return 0;
}

static void load_web_names(const trace_site &site)
{
    const char *const name = para_profile.www2json_name;
    const file_path path(para_profile.home_dir, name != nullptr ? name : "www2json.json");
    json_file file = read_json_file(path.text);
    if (!file.root)
        PARA_TRACE_AT(site, PARA_ERROR, "Error before: [%s]", file.error);
    para_config = file.root.release();
}

static void append_modules()
{
    register_para_handle_json_pattern();
    register_para_handle_conf_pattern();
    register_para_handle_extern_pattern();
}

static void init_modules(const trace_site &site)
{
    for_each_module([&site](const para_module &row) {
        if (row.init != nullptr && row.init(row.name) != 0)
            PARA_TRACE_AT(site, PARA_ERROR, "%s init err", row.name);
    });
    for_each_module([](const para_module &row) {
        if (row.init_stage2 != nullptr)
            row.init_stage2(row.name);
    });
}

// Only the first protocol is started, whatever their number.
static void init_first_protocol(const trace_site &site)
{
    const para_protocol &first = module_para_protocol_handle[0];
    if (first.init() != 0)
        PARA_TRACE_AT(site, PARA_ERROR, "%s init err", first.name);
}

int platformparam_init()
{
    // The version that the interface was made for, not the one that is loaded.
    PARA_TRACE(PARA_INFO, "cJson version:%d %d %d", 1, 7, 14);
    if (para_profile.role != 0)
        return para_client_init();

    load_web_names(PARA_HERE);
    module_para_handle_num = count_static_modules();
    append_modules();
    PARA_TRACE(PARA_INFO, "module_para_handle_num:%d", module_para_handle_num);

    offer_direct_answers();
    init_modules(PARA_HERE);
    init_first_protocol(PARA_HERE);
    return start_thread(para_server_init());
}
