// The switch of the guard.
#include "camparam/guard.h"

#include <gtest/gtest.h>

TEST(GuardSwitch, IsOffUntilSetAndTellsWhatItWas)
{
    EXPECT_EQ(platformparam_set_guard(7), 0);
    EXPECT_EQ(platformparam_set_guard(1), 1);
    EXPECT_EQ(platformparam_set_guard(0), 1);
    EXPECT_EQ(platformparam_set_guard(0), 0);
}
