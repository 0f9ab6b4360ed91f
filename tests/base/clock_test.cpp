// Clocks that stand, jump and run beyond what words hold.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <climits>
#include <cstdint>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "camparam/camparam.h"
#include "support/every_kind.h"

using testing::Combine;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr int day_ms = 86400000;

// Any number of seconds that time_t can hold.
std::vector<long long> limits()
{
    std::vector<long long> found = {INT32_MAX / 1000, INT32_MAX - 10};
    if (sizeof(time_t) > 4) {
        for (const long long limit : {LLONG_MAX / 1000000000, LLONG_MAX / 1000, LLONG_MAX - 10})
            found.push_back(limit);
        found.insert(found.begin() + 2, {INT32_MAX, UINT32_MAX});
    }
    return found;
}

} // namespace

// Of each kind of module, with the guard and without.
class Clock : public EveryKind, public testing::WithParamInterface<std::tuple<module_kind, bool>> {
protected:
    Clock()
    {
        platformparam_set_guard(guarded ? 1 : 0);
        if (kind.name == "LegacyMisc")
            use_legacy_misc();
        stop_clock();
    }

    para_module_status status() const { return status_of(kind.row); }
    bool is_saved(int number)
    {
        return read_data(kind.file).value_or("").find(std::to_string(number)) != std::string::npos;
    }
    bool becomes_saved(int number)
    {
        return wait_until([&] { return is_saved(number) && status().saved == status().changes; });
    }

    // Each request is a turn of its own, and each turn ends with a pass.
    static void wait_for_passes()
    {
        Client client;
        for (int turn = 0; turn < 4; turn++)
            EXPECT_EQ(client.ask("{'msg_type':'get','msg_id':1}"), "{'msg_id':1}");
    }

    const module_kind &kind = std::get<0>(GetParam());
    const bool guarded = std::get<1>(GetParam());
};
INSTANTIATE_TEST_SUITE_P(, Clock, Combine(testing::ValuesIn(all_kinds), testing::Bool()),
                         [](const auto &tested) {
                             return std::get<0>(tested.param).name +
                                    (std::get<1>(tested.param) ? "WithTheGuard" : "");
                         });

TEST_P(Clock, ThatStandsHoldsUpOnlyWhatIsNotForced)
{
    start_store();
    kind.set(9);
    wait_for_passes();
    EXPECT_FALSE(read_data(kind.file));
    platformparam_save();
    EXPECT_TRUE(is_saved(9));

    kind.set(8);
    move_clock(2000);
    EXPECT_TRUE(becomes_saved(8)) << "when it goes on";
}

TEST_P(Clock, ThatJumpsADayForwardsSavesOnce)
{
    start_store();
    kind.set(9);
    move_clock(day_ms);
    EXPECT_TRUE(becomes_saved(9));
    wait_for_passes();
    EXPECT_THAT(shell_commands(), ElementsAre("sync"));
}

TEST_P(Clock, ThatJumpsADayBackwardsIsNotWaitedForWithTheGuard)
{
    start_store();
    kind.set(9);
    move_clock(-day_ms);
    if (guarded) {
        EXPECT_TRUE(becomes_saved(9));
    } else {
        wait_for_passes();
        EXPECT_FALSE(read_data(kind.file));
    }
    kind.set(8);
    move_clock(2000);
    EXPECT_TRUE(becomes_saved(8));
    wait_for_passes();
    EXPECT_EQ(shell_commands().size(), guarded ? 2U : 1U) << "once for each save";
}

TEST_P(Clock, MayCountAnyNumberOfSeconds)
{
    start_store();
    int number = 50;
    for (const long long limit : limits()) {
        SCOPED_TRACE(limit);
        set_clock(limit - 1, 500000000); // 2 s before half a second behind the limit
        kind.set(++number);
        wait_for_passes();
        EXPECT_FALSE(is_saved(number));
        move_clock(2000);
        EXPECT_TRUE(becomes_saved(number));
    }
}

TEST_P(Clock, MayRunFromOneEndToTheOther)
{
    set_clock(0);
    start_store();
    kind.set(9);
    set_clock(limits().back());
    EXPECT_TRUE(becomes_saved(9)) << "292 years are more than 64 bits of nanoseconds";

    kind.set(8);
    set_clock(sizeof(time_t) > 4 ? LLONG_MIN : INT32_MIN);
    if (!guarded) {
        wait_for_passes();
        EXPECT_FALSE(is_saved(8));
        platformparam_save();
    }
    EXPECT_TRUE(becomes_saved(8)) << "beyond the end it begins again below zero";
}

TEST_P(Clock, OfTheWallMayTellAnything)
{
    start_store();
    std::vector<long long> times = limits();
    times.insert(times.end(), {1, -1, -day_ms});
    int number = 50;
    for (const long long seconds : times) {
        SCOPED_TRACE(seconds);
        set_wall_clock(seconds);
        kind.set(++number);
        platformparam_save();
        EXPECT_TRUE(is_saved(number));
        EXPECT_EQ(status().saved, status().changes);
        EXPECT_EQ(status().saved_at, seconds > LLONG_MAX / 1000 ? LLONG_MAX : seconds * 1000);
    }
}

using ClockWithTheGuard = EveryKind;

TEST_F(ClockWithTheGuard, ThatJumpsBackwardsHasAFailedSaveTriedOnce)
{
    platformparam_set_guard(1);
    stop_clock();
    ASSERT_EQ(para_init_af("af"), 0);
    const std::string blocker = data + "/af_cur.json.bak.tmp";
    std::filesystem::create_directory(blocker);
    para_set_af_zoom_value_cur(9);
    EXPECT_EQ(para_save_af("af"), EOF);

    move_clock(-day_ms);
    EXPECT_EQ(para_need_save_af("af"), 1);
    EXPECT_EQ(para_save_af("af"), EOF);
    EXPECT_EQ(para_need_save_af("af"), 0) << "the second failure is waited for as always";
    move_clock(3999);
    EXPECT_EQ(para_need_save_af("af"), 0);
    std::filesystem::remove(blocker);
    move_clock(1);
    // The change is as far ahead as the clock went back.
    EXPECT_EQ(para_need_save_af("af"), 1);
    EXPECT_EQ(para_save_af("af"), 0);
}

// The delay of a change and that of a retry are each waited for once more at the most.
TEST_F(ClockWithTheGuard, ThatJumpsALittleBackwardsIsWaitedFor)
{
    platformparam_set_guard(1);
    stop_clock();
    ASSERT_EQ(para_init_af("af"), 0);
    para_set_af_zoom_value_cur(9);
    move_clock(-1999);
    EXPECT_EQ(para_need_save_af("af"), 0);
    move_clock(1999 + 1999);
    EXPECT_EQ(para_need_save_af("af"), 0);
    move_clock(1);
    EXPECT_EQ(para_need_save_af("af"), 1);
}

// Start-up would never end.
TEST_F(ClockWithTheGuard, ThatStandsDoesNotKeepAStartWaitingForALockedFile)
{
    platformparam_set_guard(1);
    stop_clock();
    const int other = open((home + "/netport.conf").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    start_store();
    para_module_status found = {};
    EXPECT_EQ(platformparam_get_status("netport", &found), 0);
    EXPECT_EQ(found.flags, unsigned{PARA_STATUS_LOAD_FAILED | PARA_STATUS_NOT_SAVED});
    EXPECT_EQ(para_get_af_zoom_value_cur(), default_number);
    close(other);
}
