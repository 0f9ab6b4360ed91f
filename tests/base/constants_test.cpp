// The numbers behind the public constants: hosts and clients have been compiled with them, and
// every other test uses the names.
#include <gtest/gtest.h>

#include "camparam/camparam.h"
#include "camparam/presence.h"

TEST(Constants, OfTheMessageServer)
{
    EXPECT_EQ(PARA_SERVER_PORT, 6800);
    EXPECT_EQ(PARA_MESSAGE_MAX, 4096);
    EXPECT_EQ(PARA_GET, 0);
    EXPECT_EQ(PARA_SET, 1);
}

TEST(Constants, OfPresenceAndKinds)
{
    EXPECT_EQ(PARA_PRESENT, 1);
    EXPECT_EQ(PARA_PRESENT_AS_NUMBER, 0x80);
    EXPECT_EQ(PARA_PRESENT_AS_NAME, 0x100);
    EXPECT_EQ(PARA_KIND_NUMBER, 8);
    EXPECT_EQ(PARA_KIND_ENUM, 16);
}

TEST(Constants, OfTheArrays)
{
    EXPECT_EQ(PARA_MODULES_MAX, 64);
    EXPECT_EQ(PARA_AF_SLOTS, 7);
    EXPECT_EQ(PARA_AUDIO_SLOTS, 15);
    EXPECT_EQ(PARA_VIDEO_STREAM_SLOTS, 11);
    EXPECT_EQ(PARA_VIDEO_STREAMS, 6);
    EXPECT_EQ(PARA_VIDEO_SLOTS, 66);
    EXPECT_EQ(PARA_ISP_SLOTS, 39);
    EXPECT_EQ(PARA_ISP_INSTANCES, 2);
    EXPECT_EQ(PARA_ODM_TEXT_MAX, 256);
    EXPECT_STREQ(PARA_ODM_ROW, "odmInter");
}

TEST(Constants, OfShareModules)
{
    EXPECT_EQ(PARA_SHARE_MODULES, 4);
    EXPECT_STREQ(PARA_SHARE_MAP_NAME, "/camparam_share_%d");
    EXPECT_EQ(sizeof(para_share_map), 12U);
    EXPECT_EQ(PARA_SHARE_NUMBER, 0);
    EXPECT_EQ(PARA_SHARE_TEXT, 1);
}
