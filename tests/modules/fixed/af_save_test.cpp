// Saving focus and zoom, and the files that every module with fixed members writes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "modules/fixed/af_fixture.h"
#include "support/reallocation.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

using AfSave = Af;
using SavedFile = Af;

TEST_F(AfSave, IsDueAtTwoThousandMilliseconds)
{
    init();
    stop_clock();
    para_set_af_zoom_value_cur(200);
    move_clock(1999);
    EXPECT_EQ(para_need_save_af("af"), 0);
    move_clock(1);
    EXPECT_EQ(para_need_save_af("af"), 1);
}

TEST_F(AfSave, IsDueTwoSecondsAfterTheLastChange)
{
    init();
    stop_clock();
    EXPECT_EQ(para_need_save_af("af"), 0);
    move_clock(5000);
    EXPECT_EQ(para_need_save_af("af"), 0) << "nothing has changed";

    para_set_af_zoom_value_cur(200);
    EXPECT_EQ(para_need_save_af("af"), 0);
    move_clock(1500);
    para_set_af_zoom_value_cur(300);
    move_clock(1999);
    EXPECT_EQ(para_need_save_af("af"), 0) << "the second change begins the delay again";
    move_clock(1);
    EXPECT_EQ(para_need_save_af("af"), 1);
    EXPECT_EQ(para_need_save_af("af"), 1) << "until it is saved";
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_EQ(para_need_save_af("af"), 0);
}

TEST_F(AfSave, TheThreadSavesAndSyncsOnce)
{
    start_store();
    para_set_af_zoom_value_cur(200);
    move_clock(2000);
    ASSERT_TRUE(wait_until([] { return !shell_commands().empty(); }));
    EXPECT_THAT(read_data("af_cur.json").value_or(""), HasSubstr("\"zoom_value\":\t200"));
    EXPECT_EQ(count_traces("af save...", "save_param"), 1);
    EXPECT_THAT(shell_commands(), ElementsAre("sync"));
}

TEST_F(AfSave, StoppingSavesWhatIsNotDueYet)
{
    start_store();
    para_set_af_zoom_value_cur(200);
    stop_store();
    EXPECT_THAT(read_data("af_cur.json").value_or(""), HasSubstr("\"zoom_value\":\t200"));
}

TEST_F(AfSave, WhatIsSavedIsLoadedAgain)
{
    init();
    for (const accessors &member : all_members)
        member.set(member.max());
    para_save_af("af");
    for (int &value : para_af_cur)
        value = 0;
    EXPECT_EQ(init(), 0);
    for (const accessors &member : all_members)
        EXPECT_EQ(member.cur(), member.max()) << member.key;
}

TEST_F(SavedFile, HoldsThePresentMembersInSlotOrder)
{
    write_home("af_def.json", "{'zoom_value':100,'focus_zone':2,'focus_mode':0}");
    init();
    EXPECT_EQ(para_save_af("af"), 0);
    const std::string expected = "{\n\t\"focus_mode\":\t0,\n\t\"focus_zone\":\t2,\n"
                                 "\t\"zoom_value\":\t100\n}";
    EXPECT_EQ(read_data("af_cur.json"), expected + '\0');
}

TEST_F(SavedFile, EndsWithOneZeroByte)
{
    init();
    para_save_af("af");
    const std::string bytes = read_data("af_cur.json").value_or("");
    ASSERT_GT(bytes.size(), 2U);
    EXPECT_EQ(bytes.substr(bytes.size() - 2), std::string("}\0", 2));
    EXPECT_EQ(bytes.find('\0'), bytes.size() - 1);
}

TEST_F(SavedFile, IsReplacedWhole)
{
    init();
    write_data("af_cur.json", std::string(5000, 'x'));
    para_save_af("af");
    EXPECT_LT(read_data("af_cur.json").value_or("").size(), 200U);
}

TEST_F(SavedFile, OfAModuleWithoutMembersIsTheEmptyObject)
{
    write_home("af_def.json", "{}");
    init();
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_EQ(read_data("af_cur.json"), std::string("{\n}\0", 4));
}

// While the text of the file is made.
static bool change_zoom()
{
    para_set_af_zoom_value_cur(4321);
    return true;
}

TEST_F(SavedFile, AChangeDuringTheSaveMayMissIt)
{
    init();
    para_set_af_focus_mode_cur(2);
    on_reallocation(change_zoom);
    para_save_af("af");
    on_reallocation(nullptr);
    EXPECT_EQ(para_get_af_zoom_value_cur(), 4321);
    EXPECT_FALSE(change_pending()) << "the mark is cleared when all is written";
    para_set_af_focus_mode_cur(1);
    EXPECT_TRUE(change_pending()) << "the next change saves both";
}

TEST_F(SavedFile, AFullDiskIsTheResult)
{
    init();
    ASSERT_EQ(symlink("/dev/full", (data + "/af_cur.json").c_str()), 0);
    EXPECT_EQ(para_save_af("af"), -1);
}

TEST_F(SavedFile, FailedSaveIsNotRetried)
{
    init();
    para_set_af_zoom_value_cur(200);
    const std::string missing = data + "/missing";
    para_profile.data_dir = missing.c_str();
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_FALSE(change_pending());
}

TEST_F(SavedFile, StandsInTheWorkingDirectoryWithoutADataDirectory)
{
    init();
    para_profile.data_dir = nullptr;
    ASSERT_EQ(chdir(data.c_str()), 0);
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_THAT(read_data("af_cur.json").value_or(""), StartsWith("{"));
}

TEST_F(SavedFile, ADirectoryMayEndWithASlash)
{
    init();
    const std::string slashed = data + "/";
    para_profile.data_dir = slashed.c_str();
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_THAT(read_data("af_cur.json").value_or(""), StartsWith("{"));
}

TEST_F(SavedFile, AnOverlongPathIsNeverCut)
{
    init();
    std::string deep = data + "/";
    deep += std::string(127 - deep.size() - strlen("/af_cur.json"), 'd');
    mkdir(deep.c_str(), 0755);
    para_profile.data_dir = deep.c_str();
    para_save_af("af");
    EXPECT_TRUE(read_file(deep + "/af_cur.json")) << "127 characters fit";

    deep += 'e';
    mkdir(deep.c_str(), 0755);
    para_profile.data_dir = deep.c_str();
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_FALSE(read_file(deep + "/af_cur.json")) << "128 do not";
    EXPECT_EQ(rmdir(deep.c_str()), 0) << "nothing was written under a cut name either";
}
