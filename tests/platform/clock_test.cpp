#include <gtest/gtest.h>

#include "camparam/platform.h"

static long long milliseconds(timespec from, timespec to)
{
    return lib_common_diff_msec_timespec(&from, &to);
}

TEST(TimeDifference, CountsWholeMilliseconds)
{
    EXPECT_EQ(milliseconds({5, 0}, {7, 0}), 2000);
    EXPECT_EQ(milliseconds({5, 0}, {5, 999999}), 0);
    EXPECT_EQ(milliseconds({5, 0}, {5, 1000000}), 1);
    EXPECT_EQ(milliseconds({0, 0}, {0, 0}), 0);
}

TEST(TimeDifference, CarriesNanosecondsOverTheSecond)
{
    EXPECT_EQ(milliseconds({1, 999999999}, {3, 999999998}), 1999);
    EXPECT_EQ(milliseconds({0, 999999900}, {2, 0}), 1000);
    EXPECT_EQ(milliseconds({1, 900000000}, {2, 100000000}), 200);
}

TEST(TimeDifference, IsNegativeWhenTheSecondTimeIsEarlier)
{
    EXPECT_EQ(milliseconds({7, 0}, {5, 0}), -2000);
    EXPECT_EQ(milliseconds({2, 100000000}, {1, 900000000}), -200);
}

TEST(TimeDifference, HoldsMoreThan32Bits)
{
    EXPECT_EQ(milliseconds({0, 0}, {5000000000, 0}), 5000000000000);
}
