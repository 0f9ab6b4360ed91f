#include "rate_limit.h"

#include <gtest/gtest.h>

namespace {

constexpr rate ten_requests = {.requests_per_second = 10, .reply_bytes_per_second = 1000};
constexpr uint32_t someone = 7, another = 8;

// How many requests in a row are admitted, 1000 at the most.
int admitted(rate_limit &limit, uint32_t address, long long now_ms)
{
    int count = 0;
    while (count < 1000 && limit.admit(address, now_ms))
        count++;
    return count;
}

TEST(RateLimit, AdmitsWhatASecondBrings)
{
    rate_limit limit(ten_requests);
    EXPECT_EQ(admitted(limit, someone, 5000), 10);
    EXPECT_EQ(admitted(limit, someone, 5099), 0);
    EXPECT_EQ(admitted(limit, someone, 5100), 1);
    EXPECT_EQ(admitted(limit, someone, 5400), 3);
    EXPECT_EQ(admitted(limit, someone, 5950), 5) << "the rest of a token is kept";
    EXPECT_EQ(admitted(limit, someone, 6000), 1);
}

TEST(RateLimit, SavesUpNoMoreThanASecond)
{
    rate_limit limit(ten_requests);
    EXPECT_EQ(admitted(limit, someone, 0), 10);
    EXPECT_EQ(admitted(limit, someone, 9223372036854775807LL), 10);
}

TEST(RateLimit, ManyAskersInAMillisecondLoseNoTime)
{
    rate_limit limit(ten_requests);
    admitted(limit, someone, 0);
    int count = 0;
    for (long long now = 1; now <= 1000; now++)
        count += limit.admit(someone, now) ? 1 : 0;
    EXPECT_EQ(count, 10);
}

TEST(RateLimit, KeepsEachSourceToItself)
{
    rate_limit limit(ten_requests);
    EXPECT_EQ(admitted(limit, someone, 0), 10);
    EXPECT_EQ(admitted(limit, another, 0), 10);
}

TEST(RateLimit, RepliesAreChargedAfterTheyAreSent)
{
    rate_limit limit(ten_requests);
    EXPECT_TRUE(limit.admit(someone, 0));
    limit.charge(someone, 999, 0);
    EXPECT_TRUE(limit.admit(someone, 0)) << "one byte is left";
    limit.charge(someone, 1500, 0);
    EXPECT_FALSE(limit.admit(someone, 0));
    EXPECT_FALSE(limit.admit(someone, 1499)) << "it still owes";
    EXPECT_TRUE(limit.admit(someone, 1500));
    EXPECT_TRUE(limit.admit(another, 0));
}

TEST(RateLimit, AClockThatStandsOrGoesBackBringsNothing)
{
    rate_limit limit(ten_requests);
    EXPECT_EQ(admitted(limit, someone, 5000), 10);
    EXPECT_EQ(admitted(limit, someone, 5000), 0);
    EXPECT_EQ(admitted(limit, someone, 1000), 0);
    EXPECT_EQ(admitted(limit, someone, 1100), 1) << "it counts from there";
}

TEST(RateLimit, AnotherSourceTakesTheBucketsOfTheOneSilentTheLongest)
{
    rate_limit limit(ten_requests);
    for (uint32_t source = 0; source < rate_limit::sources; source++)
        EXPECT_EQ(admitted(limit, source, 0), 10) << source;
    EXPECT_EQ(admitted(limit, 0, 100), 1);

    EXPECT_EQ(admitted(limit, 1000, 100), 1) << "not a full bucket: changing addresses is no gain";
    EXPECT_EQ(admitted(limit, 0, 100), 0) << "the place was not that of source 0";
    EXPECT_EQ(admitted(limit, 1000, 100), 0);
}

TEST(RateLimit, FullBucketsAreThoseOfAllSettableRates)
{
    rate_limit limit({.requests_per_second = 1, .reply_bytes_per_second = 1000000000});
    EXPECT_EQ(admitted(limit, someone, 0), 1);
    limit.charge(someone, 65507, 0);
    EXPECT_EQ(admitted(limit, someone, 999), 0);
    EXPECT_EQ(admitted(limit, someone, 1000), 1);
}

} // namespace
