// How the store treats the host's configure objects. The functions that make and free them stand
// before those of the platform here, count, and hand on.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <functional>
#include <memory>
#include <thread>
#include <utility>

#include "modules/text/conf_fixture.h"
#include "modules/text/pattern_fixture.h"
#include "support/thread_state.h"

namespace {

std::atomic<int> made{0}, freed{0}, freed_null{0};
std::atomic<bool> out_of_memory{false};

// Called once, when the store next uses an object.
std::atomic<void (*)()> next_use{nullptr};

void note_use()
{
    if (void (*const call)() = next_use.exchange(nullptr))
        call();
}

// The operations of the platform's objects.
configure platform = {};

int noting_get(configure *conf, const char *key, char *buffer, int size)
{
    note_use();
    return platform.conf_get(conf, key, buffer, size);
}

int noting_set(configure *conf, const char *key, const char *value)
{
    note_use();
    return platform.conf_set(conf, key, value);
}

void *noting_find(configure *conf, const char *key)
{
    note_use();
    return platform.conf_find(conf, key);
}

std::atomic<bool> loops_starve{false};
std::atomic<int> told_to_go_on{0}, told_to_stop{0};

struct callback {
    conf_loop_callback function;
    void *argument;
};

int note_answer(void *argument, const char *key, const char *value)
{
    const auto *const called = static_cast<const callback *>(argument);
    const int answer = called->function(called->argument, key, value);
    (answer == 0 ? told_to_go_on : told_to_stop)++;
    return answer;
}

int noting_loop(configure *conf, conf_loop_callback function, void *argument)
{
    note_use();
    callback called = {function, argument};
    const int result = platform.conf_loop(conf, note_answer, &called);
    if (loops_starve)
        errno = ENOMEM;
    return result;
}

template <typename function> function next(const char *name)
{
    return reinterpret_cast<function>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

PARA_API configure *configure_init(void)
{
    made++;
    configure *const conf = out_of_memory ? nullptr : next<configure *(*)()>("configure_init")();
    if (conf != nullptr) {
        if (platform.conf_get == nullptr)
            platform = *conf;
        conf->conf_get = noting_get;
        conf->conf_loop = noting_loop;
        conf->conf_set = noting_set;
        conf->conf_find = noting_find;
    }
    return conf;
}

PARA_API int configure_key_IsChanged(configure *conf, const void *key_set)
{
    note_use();
    return next<int (*)(configure *, const void *)>("configure_key_IsChanged")(conf, key_set);
}

PARA_API void configure_free(configure *conf)
{
    (conf != nullptr ? freed : freed_null)++;
    next<void (*)(configure *)>("configure_free")(conf);
}

} // extern "C"

class HostObjects : public ConfModule {
protected:
    void expect_counts(int made_now, int freed_now)
    {
        EXPECT_EQ(made, made_now);
        EXPECT_EQ(freed, freed_now);
        EXPECT_EQ(freed_null, 0) << "a platform may not bear it";
    }
};

TEST_F(HostObjects, AReloadKeepsThemAndMakesNone)
{
    init();
    expect_counts(2, 0);
    for (const char *port : {"8080", "8081"}) {
        write_data("netport.conf", std::string("port = '") + port + "'\n");
        EXPECT_EQ(para_init_single_conf("netport"), 0);
        EXPECT_EQ(value("port"), port);
    }
    expect_counts(2, 0);
}

TEST_F(HostObjects, AFailedReloadFreesBothAndTheNextMakesThemAnew)
{
    init();
    unlink((home + "/netport.conf").c_str());
    EXPECT_EQ(para_init_single_conf("netport"), -1);
    expect_counts(2, 2);
    EXPECT_EQ(para_init_single_conf("netport"), -1);
    expect_counts(4, 4);
    write_home("netport.conf", port_defaults);
    EXPECT_EQ(para_init_single_conf("netport"), 0);
    expect_counts(6, 4);
}

// Reloads the module from a folder without files, and tells whether its objects were freed.
class failing_reload {
public:
    failing_reload()
        : thread([this] {
              id = gettid();
              para_init_single_conf("netport");
          })
    {
    }
    ~failing_reload() { thread.join(); }
    failing_reload(const failing_reload &) = delete;
    failing_reload &operator=(const failing_reload &) = delete;

    bool frees() const
    {
        wait_until([this] { return freed != before || (id != 0 && stays_asleep(id)); });
        return freed != before;
    }

private:
    const int before = freed;
    std::atomic<pid_t> id{0};
    std::thread thread;
};

TEST_F(HostObjects, AreNotFreedWhileTheyAreUsed)
{
    static std::unique_ptr<failing_reload> reload;
    static const char *const keys[] = {"port"};
    static char buffer[400];
    const std::pair<const char *, std::function<void()>> uses[] = {
        {"member", [] { para_conf_get_member("netport", "port"); }},
        {"copy", [] { para_conf_get_member_safe("netport", "port", buffer, sizeof buffer); }},
        {"default",
         [] { para_conf_get_def_member_safe("netport", "port", buffer, sizeof buffer); }},
        {"set", [] { _para_conf_set_member("netport", "port", "8080"); }},
        {"changed keys", [] { para_conf_key_IsChanged("netport", keys, 1); }},
        {"dump", [] { para_save_conf_2_buf("netport", buffer, sizeof buffer); }},
        {"query", [this] { query("['port']"); }},
        {"query of all", [this] { query("['all']"); }},
        {"save", [] { para_save_conf("netport"); }},
    };
    init();
    for (const auto &[name, use] : uses) {
        SCOPED_TRACE(name);
        write_home("netport.conf", port_defaults);
        ASSERT_EQ(para_init_single_conf("netport"), 0);
        unlink((home + "/netport.conf").c_str());
        next_use = [] {
            reload = std::make_unique<failing_reload>();
            ASSERT_FALSE(reload->frees());
        };
        use();
        EXPECT_NE(reload, nullptr) << "used no object";
        reload.reset();
        EXPECT_EQ(value("port"), "none") << "freed after the use";
    }
}

TEST_F(HostObjects, AModuleForWhichThereIsNoMemoryHasNoneToFree)
{
    out_of_memory = true;
    init();
    expect_nothing("netport");
    expect_counts(2, 0);
    out_of_memory = false;
    EXPECT_EQ(para_init_single_conf("netport"), 0);
    EXPECT_EQ(value("port"), "80");
}

TEST_F(HostObjects, APatternModuleThatTakesAFailedOnesRecordFreesWhatItHad)
{
    para_init_misc("json");
    para_init_misc("first"); // without files
    expect_counts(2, 0);
    para_init_misc("second");
    expect_counts(4, 2);
    out_of_memory = true;
    para_init_misc("third");
    para_init_misc("fourth"); // finds nothing to free
    expect_counts(8, 4);
    EXPECT_EQ(para_save_misc("fourth"), 0);
    EXPECT_EQ(para_get_json_cur("fourth", "member"), -1);
}

TEST_F(HostObjects, AChangeWhileTheyAreSavedStaysMarked)
{
    init();
    para_conf_set_member("netport", "port", "8080");
    next_use = [] { para_conf_set_member("netport", "rtsp", "555"); };
    saved();
    EXPECT_EQ(value("rtsp"), "555");
    EXPECT_TRUE(change_pending());
}

// The store's own callbacks: loop_2_conf and loop_2_buf are the platform's.
TEST_F(HostObjects, ALoopIsToldToGoOnByEveryCallback)
{
    init("a = '1'\nb = '2'\n");
    EXPECT_EQ(query("['all']"), "{'a':'1','b':'2'}");
    EXPECT_EQ(query("['all']", "netport_def"), "{'a':'1','b':'2'}");
    EXPECT_EQ(told_to_go_on, 4) << "a platform may end the loop at any other answer";

    write_home("panel_range.json", "{'number':[0,9],'mode':['off','on']}");
    write_home("panel.conf", "number = '1'\nmode = 'on'\n");
    para_init_misc("json");
    para_init_misc("panel");
    EXPECT_EQ(told_to_go_on, 6) << "the dump";
    const json answer(cJSON_CreateObject());
    EXPECT_EQ(Create_Json_Misc_Object("panel", answer.get(), 0), 0);
    EXPECT_EQ(compact(answer.get()), "{'number':1,'mode':'on'}");
    EXPECT_EQ(told_to_go_on, 8);
    EXPECT_EQ(told_to_stop, 0);
}

// As a platform tells that memory ran out within its loop.
TEST_F(HostObjects, ALoopWithoutMemoryGivesNoAnswer)
{
    init();
    loops_starve = true;
    const json item = parse("{'netport':['all']}");
    cJSON *answer = nullptr;
    EXPECT_EQ(para_get_conf_opt("netport", item.get()->child, &answer, "netport"), -ENOMEM);
    EXPECT_EQ(answer, nullptr);
}
