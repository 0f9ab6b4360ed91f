// Telling the host of each reply.
#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

#include "camparam/guard.h"
#include "support/store.h"

namespace {

struct observed_reply {
    sockaddr_in to;
    int length;
};

struct {
    std::mutex lock;
    std::vector<observed_reply> all;
} observed;

void observe_reply(const sockaddr_in *to, int length)
{
    const std::lock_guard<std::mutex> guard(observed.lock);
    observed.all.push_back({*to, length});
}

std::vector<observed_reply> observed_replies()
{
    const std::lock_guard<std::mutex> guard(observed.lock);
    return observed.all;
}

} // namespace

class ReplyObserver : public Store {
protected:
    ReplyObserver()
    {
        start_store();
        register_reply_observer(observe_reply);
    }
    ~ReplyObserver() override { register_reply_observer(nullptr); }

    Client client;
};

TEST_F(ReplyObserver, IsToldOfEachReplyAndItsClient)
{
    const std::string reply = client.request("{'msg_type':'get','msg_id':7}").value_or("");
    client.request("{'msg_type':'api_get','msg_name':'nosuch'}");

    EXPECT_TRUE(wait_until([] { return observed_replies().size() == 2; }));
    const std::vector<observed_reply> all = observed_replies();
    EXPECT_EQ(all[0].length, static_cast<int>(reply.size()));
    EXPECT_EQ(all[1].length, 29) << "an error text";
    EXPECT_EQ(all[0].to.sin_addr.s_addr, htonl(INADDR_LOOPBACK));
    EXPECT_NE(all[0].to.sin_port, 0);
    EXPECT_EQ(all[0].to.sin_port, all[1].to.sin_port);
}

TEST_F(ReplyObserver, IsNotToldOfRequestsWithoutAReply)
{
    client.send("rubbish");
    client.send("{}");
    EXPECT_TRUE(client.stays_silent());

    EXPECT_TRUE(wait_until([] { return !observed_replies().empty(); }));
    EXPECT_EQ(observed_replies().size(), 1U) << "that of the request of stays_silent()";
}

TEST_F(ReplyObserver, IsNotToldOfAReplyThatTheSystemDoesNotTake)
{
    sockaddr_in nobody = {};
    nobody.sin_family = AF_INET; // port 0
    EXPECT_EQ(SendBuf2Client(-1, nobody, "text", 4), 0);
    EXPECT_TRUE(observed_replies().empty());
}

TEST_F(ReplyObserver, NoneIsAskedAfterItIsTakenAway)
{
    register_reply_observer(nullptr);
    EXPECT_NE(client.request("{'msg_type':'get','msg_id':7}"), std::nullopt);
    EXPECT_TRUE(client.stays_silent());

    EXPECT_TRUE(observed_replies().empty());
}
