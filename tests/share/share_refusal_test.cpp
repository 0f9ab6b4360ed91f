// Client processes at the edges: standard input closed, and registrations that are refused.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>

#include "camparam/share.h"
#include "share/share_fixture.h"

TEST(ShareSocket, SendsOnDescriptorZeroLikeOnAnyOther)
{
    const DatagramReceiver main_program;
    close(0);
    ASSERT_EQ(Send_Initial(), 0);
    EXPECT_EQ(para_set_share_isp_hue_number(1, 7), 0);
    EXPECT_EQ(main_program.receive(), number_datagram("isp", "hue", 1, 7));
}

class ShareRefusal : public testing::Test, public OwnSharedMemory {};

TEST_F(ShareRefusal, LeavesNoEntriesAndTheMemoryMapped)
{
    constexpr int module = 2;
    auto *const published = static_cast<para_share_map *>(para_share_publish(module, 2, 8));
    ASSERT_NE(published, nullptr);
    ASSERT_EQ(para_share_register(module), 0);
    auto *const entry = static_cast<char *>(para_get_share_map(module, 1));
    ASSERT_NE(entry, nullptr);

    published->registered = 0;
    EXPECT_EQ(para_share_register(module), -1);
    EXPECT_EQ(para_get_share_map(module, 1), nullptr);
    memcpy(reinterpret_cast<char *>(published + 1), "changed", 8);
    EXPECT_STREQ(entry, "changed") << "a host may still hold the address";

    published->registered = 1;
    EXPECT_EQ(para_share_register(module), 0);
    EXPECT_EQ(para_get_share_map(module, 1), entry) << "not mapped a second time";

    unlink(object_path(module).c_str());
    EXPECT_EQ(para_share_register(module), -1);
    EXPECT_EQ(para_get_share_map(module, 1), nullptr);
    EXPECT_STREQ(entry, "changed");
}
