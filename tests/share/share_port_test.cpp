// Share maps and datagrams of a store on another port.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "camparam/guard.h"
#include "camparam/share.h"
#include "share/share_fixture.h"

namespace {

constexpr int second_port = 16802;

bool shared_object_exists(const std::string &name)
{
    return access(("/dev/shm" + name).c_str(), F_OK) == 0;
}

} // namespace

class SharePort : public testing::Test, public OwnSharedMemory {};

TEST_F(SharePort, AnotherOneIsInTheNamesOfTheMaps)
{
    platformparam_set_server_port(second_port);
    for (int module = 0; module < PARA_SHARE_MODULES; module++) {
        EXPECT_EQ(para_share_register(module), -1);
        ASSERT_NE(para_share_publish(module, 1, 8), nullptr);
        const std::string name = "/camparam_share_" + std::to_string(module) + "_16802";
        EXPECT_TRUE(shared_object_exists(name)) << name;
        EXPECT_FALSE(object_exists(module)) << module;
        EXPECT_EQ(para_share_register(module), 0) << module;

        char announced[64];
        snprintf(announced, sizeof announced, PARA_SHARE_MAP_NAME_WITH_PORT, module, second_port);
        EXPECT_EQ(announced, name);
    }
}

TEST_F(SharePort, MapsOfStoresOnOtherPortsAreOthers)
{
    auto *const usual = static_cast<para_share_map *>(para_share_publish(1, 1, 4));
    platformparam_set_server_port(second_port);
    EXPECT_EQ(para_share_register(1), -1);
    auto *const second = static_cast<para_share_map *>(para_share_publish(1, 1, 4));
    ASSERT_NE(usual, nullptr);
    ASSERT_NE(second, nullptr);
    *reinterpret_cast<int *>(usual + 1) = 1;
    *reinterpret_cast<int *>(second + 1) = 2;

    EXPECT_EQ(para_share_register(1), 0);
    EXPECT_EQ(*static_cast<const int *>(para_get_share_map(1, 1)), 2);
    platformparam_set_server_port(PARA_SERVER_PORT);
    EXPECT_EQ(para_share_register(1), 0);
    EXPECT_EQ(*static_cast<const int *>(para_get_share_map(1, 1)), 1);
}

TEST_F(SharePort, AStoreWithoutAServerPublishesMapsOfPortZero)
{
    platformparam_set_server_port(0);
    ASSERT_NE(para_share_publish(2, 1, 8), nullptr);
    EXPECT_TRUE(shared_object_exists("/camparam_share_2_0"));
    EXPECT_EQ(para_share_register(2), 0);
}

TEST_F(SharePort, SettersSendToTheMainProgramsPort)
{
    const DatagramReceiver usual;
    const DatagramReceiver second(second_port);
    platformparam_set_server_port(second_port);
    EXPECT_GE(Send_Initial(), 0);
    para_set_share_isp_hue_number(1, 7);
    EXPECT_EQ(second.receive(), number_datagram("isp", "hue", 1, 7));
    platformparam_set_server_port(PARA_SERVER_PORT);
    EXPECT_GE(Send_Initial(), 0);
    para_set_share_isp_hue_number(1, 8);
    EXPECT_EQ(usual.receive(), number_datagram("isp", "hue", 1, 8)) << "and nothing before it";
}
