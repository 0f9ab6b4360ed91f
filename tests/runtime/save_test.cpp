// The thread Para_Process, save passes and stopping.
#include <dirent.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "runtime/module_row.h"
#include "support/store.h"
#include "support/thread_state.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A module under test stands in the row "end" or another that has no functions of its own.
std::atomic<int> asked{0}, saved{0}, save_result{0};
std::atomic<bool> due{false};
std::string order;

int need_save(const char *name)
{
    EXPECT_STREQ(name, "end");
    asked++;
    return due ? 5 : 0;
}

int save(const char *name)
{
    order += std::string(name) + " ";
    due = false;
    saved++;
    return save_result;
}

std::atomic<bool> save_may_end{false};
std::atomic<int> saves_under_way{0}, most_at_once{0};

int slow_save(const char *)
{
    most_at_once = std::max(most_at_once.load(), ++saves_under_way);
    saved++;
    wait_until([] { return save_may_end.load(); });
    saves_under_way--;
    due = false;
    return 0;
}

// The kernel's id of Para_Process; -1 when it does not run.
pid_t thread_id()
{
    pid_t found = -1;
    DIR *const tasks = opendir("/proc/self/task");
    for (const dirent *task = readdir(tasks); task != nullptr; task = readdir(tasks)) {
        const auto name = read_file(std::string("/proc/self/task/") + task->d_name + "/comm");
        if (name == "Para_Process\n")
            found = static_cast<pid_t>(strtol(task->d_name, nullptr, 10));
    }
    closedir(tasks);
    return found;
}

bool thread_runs()
{
    return thread_id() >= 0;
}

} // namespace

class SaveThread : public Store {
protected:
    SaveThread()
    {
        row.need_save = need_save;
        row.save = save;
    }

    para_module &row = row_named("end");
};

TEST_F(SaveThread, HasItsName)
{
    start_store();
    EXPECT_TRUE(wait_until(thread_runs));
    stop_store();
    EXPECT_FALSE(thread_runs());
}

TEST_F(SaveThread, AsksEveryTurnAndSavesWhatIsDue)
{
    start_store();
    ASSERT_TRUE(wait_until([] { return asked >= 3; }));
    EXPECT_EQ(saved, 0);
    EXPECT_THAT(shell_commands(), IsEmpty());

    due = true;
    ASSERT_TRUE(wait_until([] { return !shell_commands().empty(); }));
    EXPECT_EQ(saved, 1);
    EXPECT_THAT(shell_commands(), ElementsAre("sync"));
    EXPECT_EQ(count_traces("end save...", "save_param"), 1);
    EXPECT_EQ(count_traces("end save err"), 0);
}

TEST_F(SaveThread, RunsItsPassesWithoutAServer)
{
    const int taken = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(PARA_SERVER_PORT);
    ASSERT_EQ(bind(taken, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);

    start_store();
    EXPECT_EQ(count_traces("bind error ret = -1", "para_server_init"), 1);
    due = true;
    EXPECT_TRUE(wait_until([] { return saved == 1 && asked >= 3; }));
    close(taken);
}

TEST_F(SaveThread, AFailedSaveIsTracedAndStillFollowedBySync)
{
    save_result = -1;
    due = true;
    start_store();
    ASSERT_TRUE(wait_until([] { return !shell_commands().empty(); }));
    EXPECT_THAT(shell_commands(), ElementsAre("sync"));
    EXPECT_EQ(count_traces("end save err", "save_param"), 1);
    const std::vector<trace_line> all = traces();
    const auto error = std::find_if(all.begin(), all.end(), [](const trace_line &line) {
        return line.text == "end save err\n";
    });
    ASSERT_NE(error, all.end());
    EXPECT_EQ(error->level, 3);
}

TEST_F(SaveThread, AFailedSyncIsTracedWithTheGuardOnAlone)
{
    write_home("af_range.json", "{'zoom_value':[0,100]}");
    write_home("af_def.json", "{'zoom_value':1}");
    set_shell_status(1);
    platformparam_set_guard(1);
    start_store();
    platformparam_save();
    EXPECT_THAT(shell_commands(), ElementsAre("sync"));
    EXPECT_EQ(count_traces("sync err, errno:5", "save_param"), 1);

    stop_store();
    forget_traces();
    platformparam_set_guard(0);
    platformparam_save();
    EXPECT_EQ(count_traces("sync err, errno:5"), 0);
}

TEST_F(SaveThread, AForcedPassSavesEveryModuleUnasked)
{
    row.need_save = nullptr;
    row_named("msg_type").save = save;
    start_store();
    EXPECT_EQ(platformparam_save(), 0);
    // Every module is saved in table order; those of the library have no row in the test's record.
    EXPECT_EQ(order, "msg_type end ");
    EXPECT_EQ(count_traces("msg_type save...", "save_param"), 1);
    EXPECT_EQ(count_traces("end save...", "save_param"), 1);
    EXPECT_EQ(count_traces("af save...", "save_param"), 1);
    EXPECT_THAT(shell_commands(), ElementsAre("sync"));
}

TEST_F(SaveThread, AForcedPassTracesFailures)
{
    start_store();
    for (const int result : {-1, 7}) {
        forget_traces();
        save_result = result;
        EXPECT_EQ(platformparam_save(), 0);
        EXPECT_EQ(count_traces("end save err", "save_param"), 1) << result;
    }
    EXPECT_THAT(shell_commands(), ElementsAre("sync", "sync"));
}

TEST_F(SaveThread, StopZeroLeavesTheThreadRunning)
{
    start_store();
    ASSERT_TRUE(wait_until([] { return asked >= 1; }));
    EXPECT_EQ(platformparam_stop(0), 0);
    const int before = asked;
    EXPECT_TRUE(wait_until([before] { return asked >= before + 2; }));
    EXPECT_EQ(saved, 0);
}

TEST_F(SaveThread, StopZeroClearsAStopThatHasNotBeenCarriedOut)
{
    EXPECT_EQ(platformparam_stop(1), 0);
    EXPECT_EQ(platformparam_stop(0), 0);
    start_store();
    EXPECT_TRUE(wait_until([] { return asked >= 3; }));
}

TEST_F(SaveThread, AnyNumberButZeroStops)
{
    start_store();
    EXPECT_EQ(platformparam_stop(-2), 0);
    EXPECT_FALSE(thread_runs());
    EXPECT_EQ(saved, 1);
}

TEST_F(SaveThread, StopSavesEveryModuleOnceMore)
{
    start_store();
    EXPECT_EQ(platformparam_stop(1), 0);
    EXPECT_EQ(saved, 1);
    EXPECT_FALSE(thread_runs());
    EXPECT_EQ(count_traces("platformparam_stop ok", "platformparam_stop"), 1);
    EXPECT_EQ(traces().back().text, "platformparam_stop ok\n");

    EXPECT_EQ(platformparam_stop(1), 0) << "nothing runs any more";
    EXPECT_EQ(saved, 1);
}

TEST_F(SaveThread, StopSavesOnceTheThreadHasEnded)
{
    static bool ran_at_save;
    row.save = [](const char *) {
        ran_at_save = thread_runs();
        return 0;
    };
    start_store();
    ASSERT_TRUE(wait_until(thread_runs));
    ran_at_save = true;
    stop_store();
    EXPECT_FALSE(ran_at_save) << "a request served meanwhile would be lost";
}

TEST_F(SaveThread, AForcedPassWaitsForADuePass)
{
    row.save = slow_save;
    due = true;
    start_store();
    ASSERT_TRUE(wait_until([] { return saves_under_way == 1; }));

    std::atomic<pid_t> forcing{0};
    std::atomic<bool> forced_ended{false};
    std::thread host([&] {
        forcing = gettid();
        platformparam_save();
        forced_ended = true;
    });
    EXPECT_TRUE(wait_until([&] { return saved == 2 || (forcing != 0 && stays_asleep(forcing)); }))
        << "neither waits nor goes on";
    EXPECT_FALSE(forced_ended);
    EXPECT_EQ(saved, 1);
    save_may_end = true;
    host.join();
    EXPECT_EQ(saved, 2);
    EXPECT_EQ(most_at_once, 1);
}

TEST_F(SaveThread, AnswersAfterASaveWhatCameInDuringIt)
{
    row.save = slow_save;
    due = true;
    start_store();
    ASSERT_TRUE(wait_until([] { return saves_under_way == 1; }));
    Client first, second;
    first.send("{\"msg_type\":\"get\",\"msg_id\":1}");
    second.send("{\"msg_type\":\"get\",\"msg_id\":2}");
    EXPECT_FALSE(first.receive(0)) << "the thread that answers is the one that saves";
    save_may_end = true;
    EXPECT_EQ(first.receive(), "{\n\t\"msg_id\":\t1\n}");
    EXPECT_EQ(second.receive(), "{\n\t\"msg_id\":\t2\n}");
}
