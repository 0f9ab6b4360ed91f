// The ODM store at start-up: a device maker's own values, in a file and a folder of their own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "modules/odm/odm_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using OdmStart = Odm;
using OdmVersion = Odm;

TEST_F(OdmStart, NoFileIsNoError)
{
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(number("version"), "error -1");
    EXPECT_EQ(text("version"), "error -1");
    EXPECT_FALSE(change_pending());
    EXPECT_THAT(traces(), IsEmpty());
    EXPECT_THAT(data_entries(), IsEmpty()) << "the folder is made by the first save";
}

TEST_F(OdmStart, LoadsItsFile)
{
    EXPECT_EQ(init("{'version':1,'isp0_style_def':2,'name':'a text'}"), 0);
    EXPECT_EQ(number("isp0_style_def"), "2");
    EXPECT_EQ(text("name"), "a text");
    EXPECT_FALSE(change_pending());
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(OdmStart, ABrokenFileIsReported)
{
    EXPECT_EQ(init("rubbish"), -1);
    EXPECT_THAT(traces_of("para_init_odm"), ElementsAre("Error before: [rubbish]\n\n"));
    EXPECT_EQ(number("version"), "error -1");
}

TEST_F(OdmStart, ABrokenFileIsTracedAsAnError)
{
    init("rubbish");
    ASSERT_EQ(traces().size(), 1U);
    EXPECT_EQ(traces()[0].level, 3);
}

TEST_F(OdmStart, WithTheGuardAFileThatIsNoObjectIsKeptAndTheBackupUsed)
{
    platformparam_set_guard(1);
    std::filesystem::create_directory(data + "/persist");
    for (const char *bytes : {"[1,2]", "5", "null", "true", "'text'"}) {
        write_data("persist/odm.json.bak", "{'version':1,'mine':7}");
        EXPECT_EQ(init(bytes), 0) << bytes;
        EXPECT_EQ(number("mine"), "7") << bytes;
        EXPECT_EQ(read_data("persist/odm.json.bad"), swap_quotes(bytes, '\'', '"'));
        EXPECT_EQ(saved_document(), "{'version':1,'mine':7}");
    }
}

TEST_F(OdmStart, WithTheGuardABackupThatIsNoObjectRestoresNothing)
{
    platformparam_set_guard(1);
    std::filesystem::create_directory(data + "/persist");
    write_data("persist/odm.json.bak", "[1,2,3]");
    EXPECT_EQ(init("[1,2]"), 0);
    EXPECT_EQ(number("version"), "error -1") << "there is no document";
    EXPECT_EQ(read_data("persist/odm.json.bad"), "[1,2]");
    para_set_odm_int("mine", 7);
    EXPECT_EQ(saved_document(), "{'version':1,'mine':7}");
}

TEST_F(OdmStart, AnEmptyFileIsBroken)
{
    EXPECT_EQ(init(""), -1);
    EXPECT_THAT(traces_of("para_init_odm"), ElementsAre("Error before: []\n\n"));
}

TEST_F(OdmStart, ABrokenFileIsReplacedByTheNextSave)
{
    init("{'isp0_style_def':1,");
    para_set_odm_int("mine", 5);
    EXPECT_EQ(saved_document(), "{'version':1,'mine':5}");
}

TEST_F(OdmStart, AFileThatHoldsNoObjectHasNoKeys)
{
    for (const char *bytes : {"[1,2]", "7", "'text'", "null"}) {
        EXPECT_EQ(init(bytes), 0) << bytes;
        EXPECT_EQ(number("version"), "error -2") << bytes;
        EXPECT_EQ(text("version"), "error -2") << bytes;
    }
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(OdmStart, AFileThatCannotBeReadIsNoError)
{
    std::filesystem::create_directories(data + "/persist/odm.json");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(number("version"), "error -1");
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(OdmStart, TheLegacyFileIsMoved)
{
    write_data("isp_odm.json", "{'version':1,'isp0_style_def':3}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(number("isp0_style_def"), "3");
    EXPECT_THAT(data_entries(), UnorderedElementsAre("persist", "persist/odm.json"));
    EXPECT_EQ(std::filesystem::status(data + "/persist").permissions(),
              std::filesystem::perms(0775));
    EXPECT_FALSE(change_pending());
}

TEST_F(OdmStart, TheLegacyFileReplacesTheFileInItsPlace)
{
    write_store("{'version':1,'isp0_style_def':1}");
    write_data("isp_odm.json", "{'version':1,'isp0_style_def':3}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(number("isp0_style_def"), "3");
    EXPECT_FALSE(read_data("isp_odm.json"));
}

TEST_F(OdmStart, ABrokenLegacyFileIsMovedToo)
{
    write_data("isp_odm.json", "rubbish");
    EXPECT_EQ(init(), -1);
    EXPECT_EQ(read_data("persist/odm.json"), "rubbish");
}

TEST_F(OdmStart, ADataDirectoryMayEndWithASlash)
{
    const std::string ending = data + "/";
    para_profile.data_dir = ending.c_str();
    write_data("isp_odm.json", "{'version':1,'isp0_style_def':3}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(number("isp0_style_def"), "3");
    para_set_odm_int("isp0_style_def", 4);
    EXPECT_EQ(saved_document(), "{'version':1,'isp0_style_def':4}");
}

TEST_F(OdmStart, WithoutADataDirectoryTheFileIsInTheWorkingDirectory)
{
    para_profile.data_dir = nullptr;
    ASSERT_EQ(chdir(data.c_str()), 0);
    write_data("odm.json", "{'version':1,'mine':5}");
    write_data("isp_odm.json", "{'version':1,'mine':6}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(number("mine"), "5") << "the legacy file has no place either";
    para_set_odm_int("mine", 7);
    EXPECT_EQ(para_save_odm("odmInter"), 0);
    EXPECT_EQ(read_data("odm.json"),
              std::string("{\n\t\"version\":\t1,\n\t\"mine\":\t7\n}") + '\0');
    EXPECT_THAT(data_entries(), UnorderedElementsAre("odm.json", "isp_odm.json"));
}

// "//persist/odm.json" has 18 characters, and a path at most 127.
TEST_F(OdmStart, TheLongestPathIsUsed)
{
    use_data_of_length(127 - 18);
    write_file(long_data + "/isp_odm.json", R"({"version":1,"mine":5})");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(number("mine"), "5");
    para_set_odm_int("mine", 6);
    EXPECT_EQ(para_save_odm("odmInter"), 0);
    EXPECT_EQ(read_file(long_data + "/persist/odm.json"),
              std::string("{\n\t\"version\":\t1,\n\t\"mine\":\t6\n}") + '\0');
}

TEST_F(OdmStart, APathThatIsTooLongIsNeverCut)
{
    for (const size_t length : std::vector<size_t>{127 - 17, 127 - 10, 127 - 9, 127, 200}) {
        use_data_of_length(length);
        write_file(long_data + "/isp_odm.json", R"({"version":1,"mine":5})");
        EXPECT_EQ(init(), 0) << length;
        EXPECT_EQ(number("mine"), "error -1") << length;
        EXPECT_EQ(read_file(long_data + "/isp_odm.json"), R"({"version":1,"mine":5})") << length;
        EXPECT_EQ(para_save_odm("odmInter"), 0) << length;
        for (const std::string &entry : data_entries())
            EXPECT_THAT(entry, testing::MatchesRegex("d+(/persist|/isp_odm.json)?")) << length;
        std::filesystem::remove_all(long_data);
    }
}

TEST_F(OdmStart, NothingIsWrittenBelowAPathThatIsTooLong)
{
    const std::optional<std::string> in_the_root = read_file("/odm.json");
    use_data_of_length(120);
    init();
    para_set_odm_int("mine", 5);
    EXPECT_EQ(para_save_odm("odmInter"), 0);
    EXPECT_EQ(read_file("/odm.json"), in_the_root) << "what the empty folder's path leads to";
    EXPECT_THAT(data_entries(), ElementsAre(std::filesystem::path(long_data).filename().string()));
    EXPECT_FALSE(change_pending()) << "a failed save is not retried";
}

TEST_F(OdmVersion, WithoutADocumentNothingIsChecked)
{
    init();
    EXPECT_EQ(second_stage(), -1);
    EXPECT_THAT(conflicts, IsEmpty());
    EXPECT_EQ(number("version"), "error -1");
    EXPECT_FALSE(change_pending());
}

TEST_F(OdmVersion, TheCurrentOneIsNoConflict)
{
    init("{'version':1}");
    EXPECT_EQ(second_stage(), 0);
    EXPECT_THAT(conflicts, IsEmpty());
    EXPECT_THAT(told, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(OdmVersion, AMissingOneIsReportedAsZeroAndAdded)
{
    init("{'isp0_style_def':1}");
    EXPECT_EQ(second_stage(), 0);
    EXPECT_THAT(conflicts, ElementsAre("odm 0 1"));
    EXPECT_THAT(told, ElementsAre("version"));
    EXPECT_THAT(traces_of("para_conflict_callback"), ElementsAre("odm 0->1\n"));
    EXPECT_FALSE(due());
    EXPECT_TRUE(change_pending());
    EXPECT_EQ(saved_document(), "{'isp0_style_def':1,'version':1}");
}

TEST_F(OdmVersion, AnotherOneIsReportedAndRewritten)
{
    for (const int found : {2, 0, -5, INT_MAX, INT_MIN}) {
        conflicts.clear();
        init("{'isp0_style_def':1,'version':" + std::to_string(found) + ",'mine':'text'}");
        EXPECT_EQ(second_stage(), 0);
        EXPECT_THAT(conflicts, ElementsAre("odm " + std::to_string(found) + " 1"));
        EXPECT_TRUE(change_pending());
        EXPECT_EQ(saved_document(), "{'isp0_style_def':1,'version':1,'mine':'text'}");
    }
}

TEST_F(OdmVersion, IsReportedBeforeItIsRewritten)
{
    static int version_in_hook;
    para_profile.conflict_hook = [](const char *, int, int) {
        para_get_odm_int("version", &version_in_hook);
    };
    init("{'version':2}");
    second_stage();
    EXPECT_EQ(version_in_hook, 2);
    EXPECT_EQ(number("version"), "1");
}

TEST_F(OdmVersion, IsSetWithoutHooksToo)
{
    para_profile.conflict_hook = nullptr;
    para_profile.odm_set_notify_hook = nullptr;
    init("{'version':2}");
    EXPECT_EQ(second_stage(), 0);
    EXPECT_EQ(number("version"), "1");
}

TEST_F(OdmVersion, IsCheckedByStartUpAndSavedByTheThread)
{
    write_store("{'isp0_style_def':1}");
    start_store();
    EXPECT_THAT(conflicts, ElementsAre("odm 0 1"));
    EXPECT_EQ(read_data("persist/odm.json"), "{\"isp0_style_def\":1}");
    move_clock(2000);
    EXPECT_TRUE(wait_until([] { return count_traces("odmInter save...") == 1; }));
    const std::string bytes =
        std::string("{\n\t\"isp0_style_def\":\t1,\n\t\"version\":\t1\n}") + '\0';
    EXPECT_TRUE(wait_until([&] { return read_data("persist/odm.json") == bytes; }));
}
