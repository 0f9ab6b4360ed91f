#include <gtest/gtest.h>

#include <climits>
#include <limits>

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

TEST(TimeDifference, IsAsLargeAsItCanBeWhereItDoesNotFit)
{
    constexpr time_t latest = std::numeric_limits<time_t>::max();
    constexpr time_t earliest = std::numeric_limits<time_t>::min();
    constexpr long long seconds = latest;
    constexpr bool fits = seconds <= LLONG_MAX / 2000;
    EXPECT_EQ(milliseconds({0, 0}, {latest, 999999999}), fits ? seconds * 1000 + 999 : LLONG_MAX);
    EXPECT_EQ(milliseconds({earliest, 0}, {latest, 0}), fits ? seconds * 2000 + 1000 : LLONG_MAX);
    EXPECT_EQ(milliseconds({latest, 0}, {earliest, 0}), fits ? -seconds * 2000 - 1000 : LLONG_MIN);
    EXPECT_EQ(milliseconds({latest, 0}, {latest, 5000000}), 5);
}

// 292 years in nanoseconds are more than 64 bits hold.
TEST(TimeDifference, HoldsTenThousandYears)
{
    if (sizeof(time_t) > 4) {
        EXPECT_EQ(milliseconds({0, 900000000}, {static_cast<time_t>(315360000000), 0}),
                  315359999999100);
    }
}

TEST(TimeDifference, HoldsMoreThan32Bits)
{
    EXPECT_EQ(milliseconds({0, 0}, {5000000000, 0}), 5000000000000);
}
