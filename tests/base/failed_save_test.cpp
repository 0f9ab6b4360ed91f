// With the guard on: saves that fail, and turns in which there is nothing to write.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include "camparam/camparam.h"
#include "support/every_kind.h"
#include "support/reallocation.h"

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

class GuardedSave : public EveryKind {
protected:
    GuardedSave() { platformparam_set_guard(1); }

    // What no save gets past.
    void block(const std::string &file) { std::filesystem::create_directory(blocker(file)); }
    void unblock(const std::string &file) { std::filesystem::remove(blocker(file)); }

    // Sets "af" without the store's thread, so that nothing but the test saves.
    void change_af(int number)
    {
        stop_clock();
        ASSERT_EQ(para_init_af("af"), 0);
        para_set_af_zoom_value_cur(number);
    }
    static bool af_is_due() { return para_need_save_af("af") == 1; }

    // A pass of the store's thread comes between its answers.
    static void take_turn()
    {
        Client client;
        for (int i = 0; i < 2; i++)
            EXPECT_EQ(client.ask("{'msg_type':'get','msg_id':1}"), "{'msg_id':1}");
    }

private:
    std::string blocker(const std::string &file) const { return data + "/" + file + ".bak.tmp"; }
};

class GuardedSaveOf : public GuardedSave, public testing::WithParamInterface<module_kind> {
protected:
    GuardedSaveOf()
    {
        if (kind.name == "LegacyMisc")
            use_legacy_misc();
    }

    const module_kind &kind = GetParam();
};
INSTANTIATE_TEST_SUITE_P(, GuardedSaveOf, testing::ValuesIn(all_kinds), name_of_kind);

TEST_P(GuardedSaveOf, AModuleIsToldTriedAgainAndThenSaved)
{
    start_store();
    block(kind.file);
    kind.set(9);
    move_clock(2000);
    ASSERT_TRUE(wait_until([&] { return status_of(kind.row).error != 0; }));
    EXPECT_EQ(status_of(kind.row).error, EEXIST);
    EXPECT_LT(status_of(kind.row).saved, status_of(kind.row).changes);
    EXPECT_EQ(status_of(kind.row).saved_at, 0);
    EXPECT_THAT(traces_of("write_guarded"),
                Contains(EndsWith(kind.file + std::string(" is not written, errno:17\n"))));
    EXPECT_FALSE(read_data(kind.file));
    EXPECT_THAT(shell_commands(), IsEmpty()) << "nothing was written";

    unblock(kind.file);
    move_clock(2000);
    ASSERT_TRUE(wait_until([&] { return !shell_commands().empty(); }));
    EXPECT_EQ(status_of(kind.row).error, 0);
    EXPECT_EQ(status_of(kind.row).saved, status_of(kind.row).changes);
    EXPECT_GT(status_of(kind.row).saved_at, 1600000000000);
    EXPECT_THAT(read_data(kind.file).value_or(""), HasSubstr("9"));
    EXPECT_THAT(shell_commands(), ElementsAre("sync"));
}

TEST_P(GuardedSaveOf, AFifoInPlaceOfTheFileIsAnErrorAtOnce)
{
    start_store();
    kind.set(9);
    ASSERT_EQ(mkfifo(path_of(kind).c_str(), 0600), 0);
    platformparam_save();
    EXPECT_EQ(status_of(kind.row).error, ENXIO);
    EXPECT_THAT(read_data(kind.file + std::string(".bak")).value_or(""), HasSubstr("9"));
    std::filesystem::remove(path_of(kind));
}

TEST_P(GuardedSaveOf, ADeviceIsNotWrittenTo)
{
    start_store();
    kind.set(9);
    std::filesystem::create_symlink("/dev/null", path_of(kind));
    platformparam_save();
    EXPECT_EQ(status_of(kind.row).error, EINVAL);
    EXPECT_LT(status_of(kind.row).saved, status_of(kind.row).changes);
}

TEST_P(GuardedSaveOf, ADataFolderThatComesBackGetsItsFilesAgain)
{
    start_store();
    kind.set(9);
    std::filesystem::rename(data, data + "-away");
    platformparam_save();
    EXPECT_EQ(status_of(kind.row).error, ENOENT);
    std::filesystem::create_directory(data);
    platformparam_save();
    EXPECT_EQ(status_of(kind.row).error, 0);
    EXPECT_THAT(read_data(kind.file).value_or(""), HasSubstr("9"));
    std::filesystem::remove_all(data + "-away");
}

TEST_F(GuardedSave, IsTriedAgainAfterTwoFourEightAndAtMostSixtySeconds)
{
    change_af(9);
    block("af_cur.json");
    move_clock(2000);
    for (const int seconds : {2, 4, 8, 16, 32, 60, 60}) {
        ASSERT_TRUE(af_is_due()) << seconds;
        EXPECT_EQ(para_save_af("af"), EOF);
        EXPECT_FALSE(af_is_due()) << seconds;
        move_clock(seconds * 1000 - 1);
        EXPECT_FALSE(af_is_due()) << seconds;
        move_clock(1);
    }
    unblock("af_cur.json");
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_FALSE(af_is_due());

    block("af_cur.json");
    para_set_af_zoom_value_cur(10);
    move_clock(2000);
    EXPECT_EQ(para_save_af("af"), EOF);
    move_clock(2000);
    EXPECT_TRUE(af_is_due()) << "the first failure again";
    unblock("af_cur.json");
}

TEST_F(GuardedSave, AChangeBetweenTwoTriesDoesNotShortenTheWait)
{
    change_af(9);
    block("af_cur.json");
    EXPECT_EQ(para_save_af("af"), EOF);
    EXPECT_EQ(para_save_af("af"), EOF);
    move_clock(3000);
    para_set_af_zoom_value_cur(10);
    EXPECT_FALSE(af_is_due());
    move_clock(2000);
    EXPECT_TRUE(af_is_due());
    unblock("af_cur.json");
}

TEST_F(GuardedSave, ThatIsForcedDuringTheWaitDoesNotLengthenIt)
{
    change_af(9);
    block("af_cur.json");
    for (int i = 0; i < 10; i++) {
        EXPECT_EQ(para_save_af("af"), EOF);
        move_clock(100);
    }
    move_clock(999);
    EXPECT_FALSE(af_is_due());
    move_clock(1);
    EXPECT_TRUE(af_is_due());
    unblock("af_cur.json");
}

// Its seven rows are saved one after the other.
TEST_F(GuardedSave, OfVideoIsTriedAgainAsSoonAsThatOfOtherModules)
{
    start_store();
    stop_clock();
    block("video_cur.json");
    platformparam_save();
    ASSERT_EQ(status_of("video0").error, EEXIST);
    unblock("video_cur.json");
    move_clock(2000);
    EXPECT_TRUE(wait_until([] { return status_of("video0").error == 0; }));
}

TEST_F(GuardedSave, IsNotDoneBeforeTheFilesAreSynced)
{
    start_store();
    stop_clock();
    fail_shell_commands(EIO);
    para_set_af_zoom_value_cur(9);
    platformparam_save();
    EXPECT_EQ(status_of("af").error, EIO);
    EXPECT_EQ(status_of("video0").error, EIO);
    EXPECT_EQ(status_of("odmInter").error, 0) << "nothing was written";
    EXPECT_THAT(traces_of("save_param"), Contains("sync err, errno:5\n"));
    EXPECT_THAT(shell_commands(), ElementsAre("sync"));

    fail_shell_commands(0);
    platformparam_save();
    EXPECT_EQ(status_of("af").error, 0);
}

TEST_F(GuardedSave, SyncsAgainLikeItSavesAgain)
{
    start_store();
    stop_clock();
    fail_shell_commands(ENOSPC);
    platformparam_save();
    for (const int seconds : {2, 4}) {
        const size_t before = shell_commands().size();
        move_clock(seconds * 1000 - 1);
        EXPECT_EQ(status_of("af").error, ENOSPC);
        EXPECT_EQ(shell_commands().size(), before);
        move_clock(1);
        ASSERT_TRUE(wait_until(
            [&] { return count_traces("sync err, errno:28") == static_cast<int>(before) + 1; }));
    }
    fail_shell_commands(0);
    move_clock(8000);
    ASSERT_TRUE(wait_until([] { return status_of("af").error == 0; }));
    EXPECT_EQ(status_of("af").saved, status_of("af").changes);

    const size_t synced = shell_commands().size();
    move_clock(60000);
    take_turn();
    EXPECT_EQ(shell_commands().size(), synced) << "once is enough";

    fail_shell_commands(ENOSPC);
    platformparam_save();
    move_clock(2000);
    EXPECT_TRUE(wait_until([&] { return shell_commands().size() == synced + 2; }))
        << "the first failure again";
}

// What is on disk stays there.
TEST_F(GuardedSave, OfAModuleThatIsSyncedIsNotTouchedByALaterSync)
{
    start_store();
    stop_clock();
    platformparam_save();
    fail_shell_commands(EIO);
    para_set_audio_audioInputVol_cur(9);
    move_clock(2000);
    ASSERT_TRUE(wait_until([] { return status_of("audio").error == EIO; }));
    EXPECT_EQ(status_of("af").error, 0);
}

TEST_F(GuardedSave, WithoutTheGuardAFailedSyncIsNotTold)
{
    platformparam_set_guard(0);
    start_store();
    fail_shell_commands(EIO);
    platformparam_save();
    EXPECT_EQ(status_of("af").error, 0);
    EXPECT_EQ(count_traces("sync err, errno:5"), 0);
}

TEST_F(GuardedSave, OfAnOdmStoreWithoutADocumentIsNone)
{
    start_store();
    platformparam_save();
    EXPECT_FALSE(read_data("persist/odm.json"));
    EXPECT_EQ(status_of("odmInter").saved_at, 0);
    para_set_odm_int("mine", 9);
    platformparam_save();
    EXPECT_GT(status_of("odmInter").saved_at, 1600000000000);
}

// The next start could not read it, and would take it for a bad one.
TEST_F(GuardedSave, OfATextThatCannotBeReadAgainIsAFailure)
{
    start_store();
    para_set_odm_int("mine", 9);
    platformparam_save();
    const std::string before = read_data("persist/odm.json").value_or("none");
    const std::string long_text(5 * 1024 * 1024, 'x');
    para_set_odm_string("long", long_text.c_str());
    platformparam_save();
    EXPECT_EQ(status_of("odmInter").error, EFBIG);
    EXPECT_EQ(read_data("persist/odm.json"), before);
    EXPECT_EQ(read_data("persist/odm.json.bak"), before);
    EXPECT_FALSE(read_data("persist/odm.json.bak.tmp"));
}

TEST_F(GuardedSave, WithoutTheGuardAFailureIsInTheStatusAndNotRetried)
{
    platformparam_set_guard(0);
    start_store();
    para_set_af_zoom_value_cur(9);
    std::filesystem::create_directory(data + "/af_cur.json");
    platformparam_save();
    EXPECT_EQ(status_of("af").error, EISDIR);
    move_clock(100000);
    EXPECT_FALSE(af_is_due());
    EXPECT_THAT(traces_of("write_guarded"), IsEmpty());
}

TEST_F(GuardedSave, AFileThatAnotherProgramKeepsLockedIsAFailureAfterTwoSeconds)
{
    write_data("netport.conf", "port = '41'\n");
    start_store();
    const int other = open((data + "/netport.conf").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(flock(other, LOCK_SH), 0);
    para_conf_set_member("netport", "port", "42");
    platformparam_save();
    EXPECT_EQ(status_of("netport").error, EWOULDBLOCK);
    EXPECT_EQ(read_data("netport.conf"), "port = \"41\"\n");

    ASSERT_EQ(flock(other, LOCK_UN), 0);
    platformparam_save();
    EXPECT_EQ(status_of("netport").error, 0);
    EXPECT_EQ(read_data("netport.conf"), "port = \"42\"\n");
    close(other);
}

TEST_F(GuardedSave, AShortLockIsWaitedFor)
{
    write_data("netport.conf", "port = '41'\n");
    start_store();
    const int other = open((data + "/netport.conf").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    para_conf_set_member("netport", "port", "42");
    std::thread save([] { platformparam_save(); });
    // The backup stands before the file is opened and waited for.
    ASSERT_TRUE(wait_until([&] { return read_data("netport.conf.bak").has_value(); }));
    ASSERT_EQ(flock(other, LOCK_UN), 0);
    save.join();
    close(other);
    EXPECT_EQ(status_of("netport").error, 0);
    EXPECT_EQ(read_data("netport.conf"), "port = \"42\"\n");
}

TEST_F(GuardedSave, ALineOfALockedFileIsNotRewritten)
{
    const std::string file = data + "/other.conf";
    write_data("other.conf", "a=1\n");
    const int other = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    EXPECT_EQ(update_conf(file.c_str(), "a", "a=2"), -1);
    EXPECT_EQ(read_data("other.conf"), "a=1\n");
    close(other);
    EXPECT_EQ(update_conf(file.c_str(), "a", "a=2"), 0);
}

TEST_F(GuardedSave, WhileConfWritingIsOffAConfModuleIsNotDue)
{
    para_profile.conf_save_hook = nullptr;
    start_store();
    para_conf_set_member("netport", "port", "42");
    move_clock(10000);
    EXPECT_EQ(para_need_save_conf("netport"), 0);
    para_set_af_zoom_value_cur(9);
    move_clock(2000);
    ASSERT_TRUE(wait_until([] { return !shell_commands().empty(); }));
    stop_store();
    EXPECT_THAT(shell_commands(), ElementsAre("sync", "sync"))
        << "one after the pass, one at the stop";
    EXPECT_EQ(status_of("netport").flags, unsigned{PARA_STATUS_NOT_SAVED});
}

TEST_F(GuardedSave, AModuleThatCannotBeFoundIsNotDue)
{
    const std::string longest(64, 'n');
    write_home("www2json.json", "{'conf_pattern_list':['" + longest + "']}");
    write_home(longest + ".conf", "a = 'b'\n");
    start_store();
    ASSERT_EQ(para_need_save_conf(longest.c_str()), -1);
    para_set_af_zoom_value_cur(9);
    move_clock(2000);
    ASSERT_TRUE(wait_until([] { return !shell_commands().empty(); }));
    EXPECT_EQ(count_traces(longest + " save...", "save_param"), 0);
}

TEST_F(GuardedSave, ARequestAddsNoKeys)
{
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'set','netport':{'port':'41','new':'1'}}"), "{}");
    EXPECT_STREQ(para_conf_get_member("netport", "port"), "41");
    EXPECT_EQ(para_conf_get_member("netport", "new"), nullptr);
    EXPECT_EQ(para_conf_set_member("netport", "new", "1"), 1) << "the host may";
    EXPECT_EQ(client.ask("{'msg_type':'set','netport':{'new':'2'}}"), "{}");
    EXPECT_STREQ(para_conf_get_member("netport", "new"), "2");
}

// While the text of the file is made.
static bool change_zoom()
{
    para_set_af_zoom_value_cur(11);
    return true;
}

TEST_F(GuardedSave, AChangeWhileTheValuesAreReadIsSavedAgain)
{
    change_af(9);
    on_reallocation(change_zoom);
    EXPECT_EQ(para_save_af("af"), 0);
    on_reallocation(nullptr);
    ASSERT_EQ(para_get_af_zoom_value_cur(), 11);
    move_clock(2000);
    EXPECT_TRUE(af_is_due());
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_FALSE(af_is_due());
    EXPECT_THAT(read_data("af_cur.json").value_or(""), HasSubstr("11"));
}

TEST_F(GuardedSave, ATextThatMemoryDoesNotSufficeForIsAFailure)
{
    change_af(9);
    ASSERT_EQ(para_save_af("af"), 0);
    para_set_af_zoom_value_cur(10);
    on_reallocation([] { return false; });
    EXPECT_EQ(para_save_af("af"), EOF);
    on_reallocation(nullptr);
    EXPECT_THAT(traces_of("write_guarded"),
                ElementsAre(EndsWith("af_cur.json is not written, errno:12\n")));
    EXPECT_THAT(read_data("af_cur.json").value_or(""), HasSubstr("9"));
    move_clock(2000);
    EXPECT_TRUE(af_is_due());
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_THAT(read_data("af_cur.json").value_or(""), HasSubstr("10"));
}
