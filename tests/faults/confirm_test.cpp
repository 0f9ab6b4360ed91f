// The command "confirm" while memory runs out.
#include <gtest/gtest.h>
#include <semaphore.h>

#include <atomic>
#include <ctime>
#include <string>

#include "camparam/commands.h"
#include "faults/faulted_store.h"

class StarvedConfirm : public FaultedStore {
protected:
    StarvedConfirm() { EXPECT_EQ(para_commands_register(), 0); }

    void SetUp() override
    {
        FaultedStore::SetUp();
        set_for(3600); // starts the kit's thread
        confirm();
    }

    // A request whose answer has this end.
    struct asked {
        std::string request, answer;
    };
    asked to_set(int seconds)
    {
        restore();
        const std::string id = std::to_string(next_id++);
        return {"{'msg_type':'api_set','msg_name':'confirm','msg_id':" + id +
                    ",'data':{'seconds':" + std::to_string(seconds) +
                    ",'set':{'af':{'zoom_value':21},'netport':{'http_port':'81'}}}}",
                head(id) + "\t\"accepted\":\t[\"af.zoom_value\", \"netport.http_port\"],\n"
                           "\t\"refused\":\t{\n\t}\n}"};
    }
    asked to_confirm()
    {
        const std::string id = std::to_string(next_id++);
        return {"{'msg_type':'api_set','msg_name':'confirm','msg_id':" + id + "}",
                head(id) + "\t\"confirmed\":\t[\"af.zoom_value\", \"netport.http_port\"]\n}"};
    }

    void set_for(int seconds)
    {
        const asked set = to_set(seconds);
        EXPECT_EQ(client.ask(set.request).text, set.answer);
    }
    void confirm()
    {
        const asked confirmation = to_confirm();
        EXPECT_EQ(client.ask(confirmation.request).text, confirmation.answer);
    }

    // Asks while memory fails, and again when it is back.
    void is_answered_in_the_end(const asked &what, long failing, shortage lasting)
    {
        const std::string got = client.ask(what.request, failing, lasting).text;
        EXPECT_TRUE(got.empty() || got == what.answer) << got;
        EXPECT_EQ(client.ask(what.request).text, what.answer) << "memory is back";
    }

    static std::string port()
    {
        char text[64] = "none";
        para_conf_get_member_safe("netport", "http_port", text, sizeof text);
        return text;
    }
    static bool is_set() { return port() == "81" && para_get_af_zoom_value_cur() == 21; }
    static bool is_taken_back() { return port() == "8080" && para_get_af_zoom_value_cur() == 20; }

private:
    static std::string head(const std::string &id)
    {
        return "{\n\t\"msg_name\":\t\"confirm\",\n\t\"msg_id\":\t" + id + ",\n";
    }
    static void restore()
    {
        para_set_af_zoom_value_cur(20);
        para_conf_set_member("netport", "http_port", "8080");
    }

    int next_id = 100000;
};

TEST_F(StarvedConfirm, SetsAndAnswersWhenItIsAskedAgain)
{
    const DirectClient::answer right = client.ask(to_set(3600).request);
    confirm();
    for_each_failure(right.tried, [&](long failing, shortage lasting) {
        is_answered_in_the_end(to_set(3600), failing, lasting);
        EXPECT_TRUE(is_set()) << port();
        confirm();
    });
}

TEST_F(StarvedConfirm, ConfirmsAndAnswersWhenItIsAskedAgain)
{
    set_for(3600);
    const DirectClient::answer right = client.ask(to_confirm().request);
    for_each_failure(right.tried, [&](long failing, shortage lasting) {
        set_for(3600);
        is_answered_in_the_end(to_confirm(), failing, lasting);
    });
}

// Of the kit's thread: it has taken back the lens when memory fails.
static std::atomic<long> failing_behind_the_lens{0};
static sem_t told;

static void fail_behind_the_lens(const para_setting_change *)
{
    const long failing = failing_behind_the_lens.exchange(0);
    if (failing != 0)
        static const Allocations none(failing);
    sem_post(&told);
}

// Waits for a change, 20 s at the most.
static bool is_told_of_a_change()
{
    const timespec until = {.tv_sec = time(nullptr) + 20, .tv_nsec = 0};
    return sem_timedwait(&told, &until) == 0;
}

TEST_F(StarvedConfirm, TakesAllBackInTheEnd)
{
    set_for(1);
    sem_init(&told, 0, 0);
    failing_behind_the_lens = 5;
    platformparam_set_setting_observer(fail_behind_the_lens);
    EXPECT_TRUE(is_told_of_a_change());
    EXPECT_TRUE(is_told_of_a_change()) << "of the one behind the lens";
    EXPECT_TRUE(is_taken_back()) << port();
}
