// Saving "misc".
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <string>

#include "modules/text/file_lock.h"
#include "modules/text/misc_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

using MiscSave = Misc;

TEST_F(MiscSave, TheCurrentSetIsWrittenAsConfLines)
{
    init_versioned();
    para_set_misc_ndi_mode_cur(4);
    para_set_misc_mirror_cur(1);
    EXPECT_EQ(para_save_misc("misc"), 0);
    EXPECT_EQ(read_data("misc.conf"),
              "ViStrategy = \"60\"\nndi_mode = \"264P50\"\nhdmivideoformat = \"1080P60\"\n"
              "mirror = \"1\"\nflip = \"1\"\nvi_framerate = \"50\"\nezoom_limit = \"4\"\n"
              "lock = \"0\"\nprivacyCover = \"1\"\nnetStream = \"2\"\ntrackMode = \"3\"\n"
              "telnetEn = \"0\"\n");
    EXPECT_THAT(data_files(), ElementsAre("misc.conf"));
    EXPECT_FALSE(change_pending());
}

TEST_F(MiscSave, TheCurrentSetIsWrittenWithoutALock)
{
    init_versioned();
    EXPECT_EQ(para_save_misc("misc"), 0);
    EXPECT_EQ(lock_attempts(), 0);
}

TEST_F(MiscSave, TheLegacySetIsWrittenAsJson)
{
    write_data("misc_cur.json", "{'unknown':'12 apples','more':true}" + std::string(2000, ' '));
    init_legacy();
    para_set_misc_ViStrategy_cur(3);
    para_set_misc_mirror_cur(-5);
    EXPECT_EQ(para_save_misc("misc"), 0);
    EXPECT_EQ(read_data("misc_cur.json"), std::string("{\n"
                                                      "\t\"ViStrategy\":\t\"osd\",\n"
                                                      "\t\"ndi_mode\":\t\"high\",\n"
                                                      "\t\"hdmivideoformat\":\t\"4KP25\",\n"
                                                      "\t\"mirror\":\t-5,\n"
                                                      "\t\"flip\":\t1,\n"
                                                      "\t\"vi_framerate\":\t50,\n"
                                                      "\t\"ezoom_limit\":\t4,\n"
                                                      "\t\"lock\":\t0,\n"
                                                      "\t\"privacyCover\":\t1,\n"
                                                      "\t\"netStream\":\t2,\n"
                                                      "\t\"trackMode\":\t3,\n"
                                                      "\t\"telnetEn\":\t0,\n"
                                                      "\t\"unknown\":\t12,\n"
                                                      "\t\"more\":\t1\n"
                                                      "}") +
                                              '\0');
    EXPECT_THAT(data_files(), ElementsAre("misc_cur.json"));
    EXPECT_FALSE(change_pending());
}

TEST_F(MiscSave, TheFilesOfTheHomeFolderStay)
{
    init_legacy();
    para_set_misc_mirror_cur(1);
    para_save_misc("misc");
    const auto as_written = [this](const char *name) {
        return compact(parse(read_file(home + "/" + name).value_or("none")).get());
    };
    EXPECT_EQ(as_written("misc_range.json"), legacy_range);
    EXPECT_EQ(as_written("misc_def.json"), legacy_defaults);
}

TEST_F(MiscSave, ASavedCurrentSetIsLoadedAgain)
{
    init_versioned();
    para_set_misc_ndi_mode_cur(4);
    para_set_misc_vi_framerate_cur(INT_MIN);
    para_save_misc("misc");
    EXPECT_EQ(after_restart("ndi_mode"), "264P50");
    EXPECT_EQ(after_restart("vi_framerate"), "-2147483648");
    EXPECT_EQ(after_restart("trackMode"), "3");
}

TEST_F(MiscSave, ASavedLegacySetIsLoadedAgain)
{
    init_legacy();
    para_set_misc_ndi_mode_cur(0);
    para_set_misc_vi_framerate_cur(INT_MAX);
    para_save_misc("misc");
    EXPECT_EQ(after_restart("ndi_mode"), "off");
    EXPECT_EQ(after_restart("vi_framerate"), "2147483647");
    EXPECT_EQ(after_restart("trackMode"), "3");
}

TEST_F(MiscSave, LegacyTextsOfAnyBytesAreWrittenWhole)
{
    const std::string longer(1000, 'l');
    write_home("misc_range.json", "{'e':['a','b'],'f':['a','b']}");
    write_home("misc_def.json", "{'e':'gr\xc3\xbc\xc3\x9f dich','f':'" + longer + "'}");
    init();
    para_save_misc("misc");
    EXPECT_EQ(read_data("misc_cur.json"),
              "{\n\t\"e\":\t\"gr\xc3\xbc\xc3\x9f dich\",\n\t\"f\":\t\"" + longer + "\"\n}" + '\0');
    EXPECT_EQ(after_restart("e"), "gr\xc3\xbc\xc3\x9f dich");
}

TEST_F(MiscSave, NothingIsWrittenBeforeItIsLoaded)
{
    configure *const values = configure_init();
    values->conf_set(values, "mirror", "1");
    EXPECT_EQ(para_save_misc_legacy("misc", values), 0);
    EXPECT_THAT(data_files(), IsEmpty());
    configure_free(values);
}

TEST_F(MiscSave, AModuleThatFailedToLoadIsSavedLikeAnyOther)
{
    write_home("misc_range.json", versioned_range);
    write_data("misc.conf", "mirror = '1'\n"); // without the defaults file in the home folder
    init();
    EXPECT_EQ(para_save_misc("misc"), 0);
    EXPECT_EQ(read_data("misc.conf"), "") << "it has no values";
}

TEST_F(MiscSave, AFileThatDoesNotOpenIsNoErrorAndNotRetried)
{
    init_versioned();
    para_set_misc_mirror_cur(1);
    mkdir((data + "/misc.conf").c_str(), 0755);
    EXPECT_EQ(para_save_misc("misc"), 0);
    EXPECT_FALSE(change_pending());
}

TEST_F(MiscSave, ALegacyFileThatDoesNotOpenIsNoErrorAndNotRetried)
{
    init_legacy();
    para_set_misc_mirror_cur(1);
    mkdir((data + "/misc_cur.json").c_str(), 0755);
    EXPECT_EQ(para_save_misc("misc"), 0);
    EXPECT_FALSE(change_pending());
}

TEST_F(MiscSave, AFullDiskIsReported)
{
    init_versioned();
    ASSERT_EQ(symlink("/dev/full", (data + "/misc.conf").c_str()), 0);
    EXPECT_NE(para_save_misc("misc"), 0);
}

TEST_F(MiscSave, AFullDiskIsReportedForTheLegacySetToo)
{
    init_legacy();
    ASSERT_EQ(symlink("/dev/full", (data + "/misc_cur.json").c_str()), 0);
    EXPECT_NE(para_save_misc("misc"), 0);
}

TEST_F(MiscSave, IsDueTwoSecondsAfterTheLastChange)
{
    init_legacy();
    stop_clock();
    EXPECT_EQ(para_need_save_misc("misc"), 0);
    para_set_misc_mirror_cur(1);
    move_clock(1500);
    para_set_misc_mirror_cur(1);
    para_set_misc_ndi_mode_cur(99);
    move_clock(499);
    EXPECT_EQ(para_need_save_misc("misc"), 0);
    move_clock(1);
    EXPECT_EQ(para_need_save_misc("misc"), 1);
    para_save_misc("misc");
    EXPECT_EQ(para_need_save_misc("misc"), 0);
}

TEST_F(MiscSave, TheThreadSavesARequestedChange)
{
    write_legacy();
    start_store();
    Client client;
    client.ask("{'msg_type':'set','misc':{'ndi_mode':'low'}}");
    EXPECT_FALSE(read_data("misc_cur.json"));
    move_clock(2000);
    EXPECT_TRUE(wait_until([this] {
        const std::string text = read_data("misc_cur.json").value_or("");
        return text.find("\"ndi_mode\":\t\"low\"") != std::string::npos && text.back() == '\0';
    }));
    stop_store();
    EXPECT_THAT(data_files(), testing::Not(testing::Contains("misc.conf")));
}
