// Everything that may run at the same time, for a while. Meant for the thread sanitizer; what must
// hold afterwards holds in every build.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "camparam/camparam.h"
#include "camparam/commands.h"
#include "load/duration.h"
#include "support/every_kind.h"

using testing::HasSubstr;

namespace {

std::atomic<unsigned> observed{0};

void count_change(const char *row, const sockaddr_in *)
{
    para_module_status status = {};
    if (platformparam_get_status(row, &status) == 0)
        observed++;
}

// Without "misc" in its legacy set.
std::vector<module_kind> kinds_of_device()
{
    std::vector<module_kind> kinds;
    for (const module_kind &kind : all_kinds) {
        if (kind.name != "LegacyMisc")
            kinds.push_back(kind);
    }
    return kinds;
}

// Threads that repeat a step until the time is over.
class crowd {
public:
    explicit crowd(std::chrono::seconds duration) : end(std::chrono::steady_clock::now() + duration)
    {
    }

    void add(std::function<void(int)> step, std::chrono::milliseconds pause = {})
    {
        members.emplace_back([this, step = std::move(step), pause] {
            for (int turn = 0; std::chrono::steady_clock::now() < end; turn++) {
                step(turn);
                std::unique_lock<std::mutex> guard(lock);
                never.wait_for(guard, pause);
            }
        });
    }

    void wait()
    {
        for (std::thread &member : members)
            member.join();
    }

private:
    const std::chrono::steady_clock::time_point end;
    std::mutex lock;
    std::condition_variable never;
    std::vector<std::thread> members;
};

} // namespace

class AllAtOnce : public EveryKind {
protected:
    AllAtOnce() { set_trace_level(0); }

    void add_setters(crowd &all)
    {
        for (const module_kind &kind : kinds_of_device())
            all.add([kind](int turn) { kind.set(turn % 90 + 1); });
    }

    void add_readers(crowd &all)
    {
        for (int reader = 0; reader < 4; reader++) {
            all.add([](int) {
                for (const module_kind &kind : kinds_of_device())
                    EXPECT_GE(kind.get(), -1);
                char text[64];
                para_conf_get_member_safe("netport", "port", text, sizeof text);
                para_get_odm_string("mine", std::string(PARA_ODM_TEXT_MAX, '\0').data());
            });
        }
    }

    void add_clients(crowd &all)
    {
        for (int client = 0; client < 4; client++) {
            all.add([connection = std::make_shared<Client>()](int turn) {
                const std::string number = std::to_string(turn % 90 + 1);
                EXPECT_EQ(connection->ask("{'msg_type':'set','audio':{'audioInputVol':" + number +
                                          "},'netport':{'port':'" + number +
                                          "'},'panel':{'brightness':" + number + "}}"),
                          "{}");
                EXPECT_THAT(connection->ask("{'msg_type':'get','af':['all'],'misc':['all']}"),
                            HasSubstr("vi_framerate"));
            });
        }
    }

    void add_client_of_the_kit(crowd &all)
    {
        all.add([connection = std::make_shared<Client>()](int turn) {
            const std::string number = std::to_string(turn % 90 + 1);
            EXPECT_THAT(connection->ask("{'msg_type':'api_get','msg_name':'describe'}"),
                        HasSubstr("'netport':"));
            EXPECT_THAT(connection->ask("{'msg_type':'api_get','msg_name':'style'}"),
                        HasSubstr("'current':"));
            EXPECT_THAT(connection->ask("{'msg_type':'api_set','msg_name':'lens','data':{"
                                        "'zoom_value':" +
                                        number + "}}"),
                        HasSubstr("'msg_name':'lens'"));
            EXPECT_THAT(connection->ask("{'msg_type':'api_set','msg_name':'reload'}"),
                        HasSubstr("'msg_name':'reload'"));
            if (turn % 10 == 0) {
                EXPECT_THAT(connection->ask("{'msg_type':'api_set','msg_name':'save'}"),
                            HasSubstr("'msg_name':'save'"));
            }
        });
    }

    void add_host(crowd &all)
    {
        using std::chrono::milliseconds;
        all.add([](int) { platformparam_save(); }, milliseconds(5));
        all.add([](int) { para_conf_need_update("netport"); }, milliseconds(3));
        all.add(
            [](int turn) { platformparam_set_change_observer(turn % 2 ? count_change : nullptr); },
            milliseconds(1));
        all.add([](int turn) { para_set_isp_style_def(0, turn % 2); }, milliseconds(2));
    }

    void run(bool guarded)
    {
        platformparam_set_guard(guarded ? 1 : 0);
        EXPECT_EQ(para_commands_register(), 0);
        start_store();
        crowd all(proof_duration());
        add_setters(all);
        add_readers(all);
        add_clients(all);
        add_client_of_the_kit(all);
        add_host(all);
        all.wait();
        stop_store();
        EXPECT_GT(observed, 0U);
    }

    // Each module's file holds the number that is in force.
    void expect_all_saved()
    {
        for (const module_kind &kind : kinds_of_device()) {
            para_module_status status = {};
            ASSERT_EQ(platformparam_get_status(kind.row, &status), 0);
            EXPECT_EQ(status.saved, status.changes) << kind;
            EXPECT_EQ(status.error, 0) << kind;
            EXPECT_THAT(read_data(kind.file).value_or(""), HasSubstr(std::to_string(kind.get())))
                << kind;
        }
    }
};

TEST_F(AllAtOnce, EndsWithAllSavedWithTheGuard)
{
    run(true);
    expect_all_saved();
}

TEST_F(AllAtOnce, EndsWithAllSavedWithoutTheGuard)
{
    run(false);
    expect_all_saved();
}
