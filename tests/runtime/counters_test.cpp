// What the store counts.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "camparam/camparam.h"
#include "support/every_kind.h"

namespace {

para_counters counted()
{
    para_counters counters = {};
    platformparam_get_counters(&counters);
    return counters;
}

int admit_all_but_this(const sockaddr_in *, const char *datagram, int)
{
    return strcmp(datagram, "this") != 0 ? 1 : 0;
}

} // namespace

class Counters : public EveryKind {};

TEST_F(Counters, AreZeroAtFirst)
{
    const para_counters counters = counted();
    EXPECT_EQ(counters.received + counters.dropped + counters.replies + counters.saves +
                  counters.failed_saves,
              0U);
    platformparam_get_counters(nullptr);
}

TEST_F(Counters, TellOfDatagramsAndReplies)
{
    register_request_filter(admit_all_but_this);
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'get','af':['zoom_value']}"), "{'af':{'zoom_value':40}}");
    client.send("this");
    client.send("no request");
    client.send("");
    EXPECT_EQ(client.ask("{'msg_type':'get','netport':['port']}"), "{'netport':{'port':'40'}}");
    EXPECT_TRUE(wait_until([] { return counted().replies == 2; })); // after it was received
    EXPECT_EQ(counted().received, 5U);
    EXPECT_EQ(counted().dropped, 1U);
}

TEST_F(Counters, TellOfFilesThatAreSavedOrNot)
{
    start_store();
    kind_named("Af").set(9);
    kind_named("Odm").set(9);
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_EQ(counted().saves, 1U);
    EXPECT_EQ(para_save_odm(PARA_ODM_ROW), 0);
    EXPECT_EQ(counted().saves, 2U);

    std::filesystem::remove_all(data);
    para_save_af("af");
    EXPECT_EQ(counted().saves, 2U);
    EXPECT_EQ(counted().failed_saves, 1U);
}

TEST_F(Counters, TellOfAFlushThatFails)
{
    platformparam_set_guard(1);
    start_store();
    set_shell_status(-1);
    platformparam_save();
    EXPECT_EQ(counted().failed_saves, 1U);
}
