#include "modules/text/conf_answers.h"

#include <dlfcn.h>

#include <atomic>

#include "camparam/platform.h"

namespace {

std::atomic<int> change_answer{1};
using setter = int (*)(configure *, const char *, const char *);
std::atomic<setter> platform_set{nullptr};

int answering_set(configure *conf, const char *key, const char *value)
{
    return platform_set.load()(conf, key, value) == 0 ? 0 : change_answer.load();
}

} // namespace

// The store's objects are the platform's but for that.
extern "C" PARA_API configure *configure_init()
{
    using maker = configure *();
    auto *const make = reinterpret_cast<maker *>(dlsym(RTLD_NEXT, "configure_init"));
    configure *const conf = make();
    if (conf != nullptr) {
        platform_set = conf->conf_set;
        conf->conf_set = answering_set;
    }
    return conf;
}

void let_changes_answer(int answer)
{
    change_answer = answer;
}
