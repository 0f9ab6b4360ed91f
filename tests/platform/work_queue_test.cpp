#include <unistd.h>

#include <atomic>
#include <csignal>
#include <future>
#include <thread>

#include "camparam/platform_queue.h"
#include "tests/platform/folder.h"

namespace {

int count_up(void *argument)
{
    ++*static_cast<std::atomic<int> *>(argument);
    return 0;
}

int add(const char *name, const char *type, int (*handler)(void *), void *argument)
{
    const fifo_work work = {name, type, handler, argument};
    return add_fifo_work(&work, 1);
}

// Waits until all work posted before has run.
bool queue_is_empty()
{
    static std::atomic<int> reached{0};
    static const int added = add("mark", nullptr, count_up, &reached);
    EXPECT_EQ(added, 0);
    const int before = reached;
    EXPECT_EQ(post_fifo_work("mark", nullptr), 1);
    return eventually([before] { return reached > before; });
}

} // namespace

TEST(WorkQueue, RunsPostedWorkOnItsOwnThread)
{
    std::promise<std::thread::id> ran;
    const auto tell = [](void *argument) {
        static_cast<decltype(ran) *>(argument)->set_value(std::this_thread::get_id());
        return 0;
    };
    ASSERT_EQ(add("netport", nullptr, tell, &ran), 0);
    EXPECT_EQ(post_fifo_work("netport", nullptr), 1);
    std::future<std::thread::id> thread = ran.get_future();
    ASSERT_EQ(thread.wait_for(std::chrono::seconds(20)), std::future_status::ready);
    EXPECT_NE(thread.get(), std::this_thread::get_id());
}

TEST(WorkQueue, RunsNothingThatWasNotPosted)
{
    std::atomic<int> netport{0};
    std::atomic<int> overlay{0};
    ASSERT_EQ(add("netport", nullptr, count_up, &netport), 0);
    ASSERT_EQ(add("overlay", nullptr, count_up, &overlay), 0);
    EXPECT_EQ(post_fifo_work("overlay", nullptr), 1);
    ASSERT_TRUE(queue_is_empty());
    EXPECT_EQ(netport, 0);
    EXPECT_EQ(overlay, 1);
}

TEST(WorkQueue, TellsWorkApartByNameAndType)
{
    std::atomic<int> plain{0};
    std::atomic<int> typed{0};
    const fifo_work works[] = {{"para_video", nullptr, count_up, &plain},
                               {"para_video", "enum", count_up, &typed}};
    ASSERT_EQ(add_fifo_work(works, 2), 0);
    EXPECT_EQ(post_fifo_work("para_video", "enum"), 1);
    ASSERT_TRUE(queue_is_empty());
    EXPECT_EQ(typed, 1);
    EXPECT_EQ(plain, 0);
    EXPECT_EQ(post_fifo_work("para_video", nullptr), 1);
    ASSERT_TRUE(queue_is_empty());
    EXPECT_EQ(typed, 1);
    EXPECT_EQ(plain, 1);
}

TEST(WorkQueue, RefusesUnknownWork)
{
    std::atomic<int> runs{0};
    ASSERT_EQ(add("netport", nullptr, count_up, &runs), 0);
    EXPECT_EQ(post_fifo_work("net", nullptr), -1);
    EXPECT_EQ(post_fifo_work("netport", "enum"), -1);
    EXPECT_EQ(post_fifo_work("netport", ""), -1);
    EXPECT_EQ(post_fifo_work(nullptr, nullptr), -1);
    ASSERT_TRUE(queue_is_empty());
    EXPECT_EQ(runs, 0);
}

TEST(WorkQueue, RunsEveryItemOfTheName)
{
    std::atomic<int> one{0};
    std::atomic<int> other{0};
    ASSERT_EQ(add("netport", nullptr, count_up, &one), 0);
    ASSERT_EQ(add("netport", nullptr, count_up, &other), 0);
    EXPECT_EQ(post_fifo_work("netport", nullptr), 2);
    ASSERT_TRUE(queue_is_empty());
    EXPECT_EQ(one, 1);
    EXPECT_EQ(other, 1);
}

TEST(WorkQueue, RunsInTheOrderOfPosting)
{
    static std::string order;
    const auto note = [](void *argument) {
        order += static_cast<const char *>(argument);
        return 0;
    };
    char a[] = "a";
    char b[] = "b";
    const fifo_work works[] = {{"a", nullptr, note, a}, {"b", nullptr, note, b}};
    ASSERT_EQ(add_fifo_work(works, 2), 0);
    for (const char *name : {"a", "b", "b", "a", "a", "b"})
        EXPECT_EQ(post_fifo_work(name, nullptr), 1);
    ASSERT_TRUE(queue_is_empty());
    EXPECT_EQ(order, "abbaab");
}

TEST(WorkQueue, GoesOnAfterWorkThatFails)
{
    std::atomic<int> runs{0};
    const auto fail = [](void *) { return -1; };
    ASSERT_EQ(add("bad", nullptr, fail, nullptr), 0);
    ASSERT_EQ(add("good", nullptr, count_up, &runs), 0);
    post_fifo_work("bad", nullptr);
    post_fifo_work("good", nullptr);
    ASSERT_TRUE(queue_is_empty());
    EXPECT_EQ(runs, 1);
}

TEST(WorkQueue, LetsItsHandlersPostAndAdd)
{
    std::atomic<int> runs{0};
    const auto add_and_post = [](void *argument) {
        EXPECT_EQ(add("second", "kind", count_up, argument), 0);
        EXPECT_EQ(post_fifo_work("second", "kind"), 1);
        return 0;
    };
    ASSERT_EQ(add("first", nullptr, add_and_post, &runs), 0);
    EXPECT_EQ(post_fifo_work("first", nullptr), 1);
    EXPECT_TRUE(eventually([&] { return runs == 1; }));
}

TEST(WorkQueue, CopiesTheItems)
{
    std::atomic<int> runs{0};
    fifo_work work = {"netport", nullptr, count_up, &runs};
    ASSERT_EQ(add_fifo_work(&work, 1), 0);
    work = {"gone", nullptr, nullptr, nullptr};
    EXPECT_EQ(post_fifo_work("netport", nullptr), 1);
    ASSERT_TRUE(queue_is_empty());
    EXPECT_EQ(runs, 1);
}

TEST(WorkQueue, RefusesACallWithAnItemThatLacksNameOrHandler)
{
    std::atomic<int> runs{0};
    const fifo_work good = {"good", nullptr, count_up, &runs};
    const fifo_work nameless[] = {good, {nullptr, nullptr, count_up, &runs}};
    const fifo_work idle[] = {good, {"idle", nullptr, nullptr, &runs}};
    EXPECT_EQ(add_fifo_work(nameless, 2), -1);
    EXPECT_EQ(add_fifo_work(idle, 2), -1);
    EXPECT_EQ(add_fifo_work(nullptr, 1), -1);
    EXPECT_EQ(add_fifo_work(&good, -1), -1);
    EXPECT_EQ(post_fifo_work("good", nullptr), -1) << "registered by a refused call";
    EXPECT_EQ(add_fifo_work(&good, 0), 0);
    EXPECT_EQ(post_fifo_work("good", nullptr), -1) << "not counted";
}

TEST(WorkQueue, TakesPostsOfSeveralThreads)
{
    std::atomic<int> runs{0};
    ASSERT_EQ(add("netport", nullptr, count_up, &runs), 0);
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; i++) {
        threads.emplace_back([] {
            for (int post = 0; post < 100; post++)
                EXPECT_EQ(post_fifo_work("netport", nullptr), 1);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    ASSERT_TRUE(queue_is_empty());
    EXPECT_EQ(runs, 400);
}

TEST(WorkQueue, LeavesSignalsToTheHost)
{
    static sigset_t workers;
    const auto look = [](void *) { return pthread_sigmask(SIG_SETMASK, nullptr, &workers); };
    ASSERT_EQ(add("look", nullptr, look, nullptr), 0);
    post_fifo_work("look", nullptr);
    ASSERT_TRUE(queue_is_empty());
    EXPECT_EQ(sigismember(&workers, SIGTERM), 1);
    EXPECT_EQ(sigismember(&workers, SIGINT), 1);

    sigset_t own;
    pthread_sigmask(SIG_SETMASK, nullptr, &own);
    EXPECT_EQ(sigismember(&own, SIGTERM), 0);
}

namespace {

std::atomic<bool> ending{false};

// Finishes once the main thread sleeps, as it does when the exiting process waits for this handler.
int finish_late(void *started)
{
    static_cast<std::promise<void> *>(started)->set_value();
    eventually([] { return ending.load(); });
    eventually([] { return thread_sleeps(getpid()); });
    fputs("finished", stderr);
    return 0;
}

void end_with_running_and_waiting_work()
{
    std::promise<void> started;
    const auto complain = [](void *) { return fputs("dropped work ran", stderr); };
    add("late", nullptr, finish_late, &started);
    add("behind", nullptr, complain, nullptr);
    post_fifo_work("late", nullptr);
    post_fifo_work("behind", nullptr);
    started.get_future().wait();
    std::atexit([] { ending = true; });
    exit(3);
}

void post_while_the_process_ends()
{
    const auto nothing = [](void *) { return 0; };
    std::atexit([] { _exit(post_fifo_work("work", nullptr) == -1 ? 4 : 1); });
    add("work", nullptr, nothing, nullptr);
    post_fifo_work("work", nullptr);
    exit(1);
}

void end_in_a_handler()
{
    const auto leave = [](void *) -> int { exit(5); };
    add("leave", nullptr, leave, nullptr);
    post_fifo_work("leave", nullptr);
    std::promise<void>().get_future().wait();
}

// The child ends without the worker, which is the parent's.
void end_in_a_child()
{
    const auto nothing = [](void *) { return 0; };
    add("work", nullptr, nothing, nullptr);
    post_fifo_work("work", nullptr);
    const pid_t child = fork();
    if (child == 0)
        exit(8);
    int status = 0;
    const bool ended = eventually([&] { return waitpid(child, &status, WNOHANG) == child; });
    if (!ended)
        kill(child, SIGKILL);
    exit(ended ? WEXITSTATUS(status) : 1);
}

// A thread asks for work that there is not, so that many forks meet the queue's lock held; not an
// allocator's, of which not every one bears a fork.
void end_in_children_of_a_busy_queue()
{
    const auto nothing = [](void *) { return 0; };
    add("work", nullptr, nothing, nullptr);
    post_fifo_work("work", nullptr);
    const std::thread asking([] {
        while (post_fifo_work("none", nullptr) == -1) {
        }
    });
    for (int i = 0; i < 300; i++) {
        const pid_t child = fork();
        if (child == 0)
            exit(8);
        int status = 0;
        if (!eventually([&] { return waitpid(child, &status, WNOHANG) == child; })) {
            kill(child, SIGKILL);
            _exit(1);
        }
    }
    _exit(8);
}

} // namespace

class WorkQueueDeathTest : public testing::Test {
protected:
    WorkQueueDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(WorkQueueDeathTest, ProcessEndWaitsForTheRunningHandlerOnly)
{
    EXPECT_EXIT(end_with_running_and_waiting_work(), testing::ExitedWithCode(3), "^finished$");
}

TEST_F(WorkQueueDeathTest, RefusesPostsWhileTheProcessEnds)
{
    EXPECT_EXIT(post_while_the_process_ends(), testing::ExitedWithCode(4), "");
}

TEST_F(WorkQueueDeathTest, HandlerMayEndTheProcess)
{
    EXPECT_EXIT(end_in_a_handler(), testing::ExitedWithCode(5), "");
}

TEST_F(WorkQueueDeathTest, AChildThatIsForkedAtAnyMomentEnds)
{
    EXPECT_EXIT(end_in_children_of_a_busy_queue(), testing::ExitedWithCode(8), "");
}

TEST_F(WorkQueueDeathTest, AChildEndsWithoutTheWorkerOfItsParent)
{
    EXPECT_EXIT(end_in_a_child(), testing::ExitedWithCode(8), "");
}
