// The modules that can be described.
#include <utility>

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

// Rows that hold no settings, but answer.
static bool echoes_requests(const para_module &row)
{
    return row.get_opt == para_get_msg_name_opt || row.get_opt == para_get_msg_id_opt;
}

bool is_described(const para_module &row)
{
    if (row.name == nullptr || row.get_opt == nullptr || echoes_requests(row))
        return false;
    const module_kind *const kind = kind_of(row);
    return kind == nullptr || kind->is_in_use == nullptr || kind->is_in_use(row.name);
}

namespace {

// Adds to the members what the device tells of them.
class completion : public member_sink {
public:
    completion(const para_module &of, const describing &to, member_sink &into)
        : module(of), how(to), sink(into)
    {
    }

    void take(const char *name, json_ptr member) override
    {
        if (member != nullptr &&
            !how.texts.complete(module.name, name, member.get(), how.show_secrets))
            member.reset();
        sink.take(name, std::move(member));
    }

private:
    const para_module &module;
    const describing &how;
    member_sink &sink;
};

} // namespace

void describe_row(int row, const describing &how, member_sink &sink)
{
    const para_module &module = module_para_handle[row];
    const module_kind *const kind = kind_of(module);
    sink.begin_module(row, module, kind != nullptr ? kind->command : nullptr);
    completion complete(module, how, sink);
    if (kind != nullptr)
        kind->describe(module.name, complete);
    else
        describe_host_module(module, complete);
}

void describe_all(const describing &how, member_sink &sink)
{
    for (int i = 0; i < module_para_handle_num; i++) {
        if (is_described(module_para_handle[i]))
            describe_row(i, how, sink);
    }
}
