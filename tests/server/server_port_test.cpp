// The server on another port, and a store without a server.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <string>

#include "camparam/guard.h"
#include "support/store.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr int other_port = 16801;

// The UDP sockets of the machine, as far as this process sees them.
std::string udp_sockets()
{
    return read_file("/proc/net/udp").value_or("none");
}

std::string bound_everywhere(int port)
{
    char address[32];
    snprintf(address, sizeof address, " 00000000:%04X ", static_cast<unsigned>(port));
    return address;
}

int answer_nothing(int, para_message *, cJSON **reply)
{
    *reply = cJSON_CreateObject();
    return 0;
}

const param_command nothing[] = {{"nothing", answer_nothing, nullptr}};

} // namespace

class ServerPort : public Store {
protected:
    ServerPort()
    {
        write_home("af_range.json", "{'focus_mode':[0,3]}");
        write_home("af_def.json", "{'focus_mode':1}");
    }
};

TEST_F(ServerPort, IsTheUsualOneUntilSet)
{
    EXPECT_EQ(platformparam_set_server_port(other_port), PARA_SERVER_PORT);
    EXPECT_EQ(platformparam_set_server_port(65535), other_port);
    EXPECT_EQ(platformparam_set_server_port(0), 65535);
    EXPECT_EQ(platformparam_set_server_port(1), 0);
}

TEST_F(ServerPort, ANumberThatIsNoPortChangesNothing)
{
    for (const int wrong : {-1, 65536, INT_MIN, INT_MAX})
        EXPECT_EQ(platformparam_set_server_port(wrong), -1) << wrong;
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'get','msg_id':1}"), "{'msg_id':1}");
}

TEST_F(ServerPort, AnotherOneIsServedInItsPlace)
{
    platformparam_set_server_port(other_port);
    start_store();
    EXPECT_THAT(udp_sockets(), HasSubstr(bound_everywhere(other_port)));
    EXPECT_THAT(udp_sockets(), Not(HasSubstr(bound_everywhere(PARA_SERVER_PORT))));
    Client client(other_port);
    EXPECT_EQ(client.ask("{'msg_type':'get','af':['focus_mode']}"), "{'af':{'focus_mode':1}}");
}

TEST_F(ServerPort, WithoutOneNoSocketIsOpened)
{
    const std::string before = udp_sockets();
    platformparam_set_server_port(0);
    start_store();
    EXPECT_EQ(udp_sockets(), before);
    EXPECT_THAT(traces_of("para_server_init"), IsEmpty());
    EXPECT_THAT(traces_of("param_base_register_init"), ElementsAre("enter\n", "leave\n"));
    EXPECT_EQ(register_param_command("test", nothing, 1), 0);
}

TEST_F(ServerPort, WithoutOneTheStoreSavesWhatIsDue)
{
    stop_clock();
    platformparam_set_server_port(0);
    start_store();
    para_set_af_focus_mode_cur(3);
    move_clock(2000);
    EXPECT_TRUE(wait_until(
        [this] { return read_data("af_cur.json").value_or("").find("3") != std::string::npos; }));
    stop_store();
    EXPECT_EQ(count_traces("platformparam_stop ok", "platformparam_stop"), 1);
}
