// Saving the ODM store.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include "modules/odm/odm_fixture.h"
#include "support/reallocation.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using OdmSave = Odm;

TEST_F(OdmSave, WritesThePrintedDocumentAndOneZeroByte)
{
    init();
    para_set_odm_int("isp0_style_def", 2);
    para_set_odm_int("isp0_antiflicker_def", 50);
    para_set_odm_string("maker", "a \"text\"");
    EXPECT_EQ(saved(), std::string("{\n"
                                   "\t\"version\":\t1,\n"
                                   "\t\"isp0_style_def\":\t2,\n"
                                   "\t\"isp0_antiflicker_def\":\t50,\n"
                                   "\t\"maker\":\t\"a \\\"text\\\"\"\n"
                                   "}") +
                           '\0');
}

TEST_F(OdmSave, AShorterDocumentLeavesNothingOfALongerFile)
{
    init("{'version':1}                                                                    ");
    para_set_odm_int("mine", 5);
    EXPECT_EQ(saved(), std::string("{\n\t\"version\":\t1,\n\t\"mine\":\t5\n}") + '\0');
}

TEST_F(OdmSave, IsDueTwoSecondsAfterTheLastChange)
{
    init();
    stop_clock();
    EXPECT_FALSE(due());
    para_set_odm_int("mine", 5);
    EXPECT_FALSE(due());
    move_clock(1999);
    EXPECT_FALSE(due());
    para_set_odm_string("other", "x");
    move_clock(1999);
    EXPECT_FALSE(due()) << "a further change postpones the save";
    move_clock(1);
    EXPECT_TRUE(due());
    saved();
    EXPECT_FALSE(change_pending());
}

TEST_F(OdmSave, TheFirstOneMakesTheFolder)
{
    init();
    para_set_odm_int("mine", 5);
    EXPECT_THAT(data_entries(), IsEmpty());
    saved();
    EXPECT_THAT(data_entries(), UnorderedElementsAre("persist", "persist/odm.json"));
    EXPECT_EQ(std::filesystem::status(data + "/persist").permissions(),
              std::filesystem::perms(0775));
}

TEST_F(OdmSave, WithoutADocumentOnlyTheFolderIsMade)
{
    init();
    EXPECT_EQ(para_save_odm("odmInter"), 0);
    EXPECT_THAT(data_entries(), ElementsAre("persist"));
}

TEST_F(OdmSave, TheFolderIsMadeOnceARun)
{
    init();
    para_set_odm_int("mine", 5);
    saved();
    std::filesystem::remove_all(data + "/persist");
    para_set_odm_int("mine", 6);
    EXPECT_EQ(saved(), "none");
    EXPECT_THAT(data_entries(), IsEmpty());
}

TEST_F(OdmSave, AFolderMadeForTheLegacyFileIsNotMadeAgain)
{
    write_data("isp_odm.json", "{'version':1}");
    init();
    std::filesystem::remove_all(data + "/persist");
    para_set_odm_int("mine", 6);
    EXPECT_EQ(saved(), "none");
}

TEST_F(OdmSave, AFolderThatWasThereIsNotMadeAgain)
{
    init("{'version':1}");
    std::filesystem::remove_all(data + "/persist");
    para_set_odm_int("mine", 6);
    EXPECT_EQ(saved(), "none");
}

TEST_F(OdmSave, AFailedOneIsNotRetried)
{
    std::filesystem::create_directories(data + "/persist/odm.json");
    init();
    para_set_odm_int("mine", 5);
    EXPECT_EQ(para_save_odm("odmInter"), 0);
    EXPECT_FALSE(change_pending());

    std::filesystem::remove(data + "/persist/odm.json");
    para_set_odm_int("mine", 6);
    EXPECT_TRUE(change_pending());
    EXPECT_EQ(saved_document(), "{'version':1,'mine':6}");
}

TEST_F(OdmSave, WhatIsSavedIsLoadedAgain)
{
    init();
    para_set_odm_int("number", -5);
    para_set_odm_string("text", "gr\xc3\xbc\xc3\x9f \\ \"'\n");
    const std::string bytes = saved();
    _para_set_odm_int("number", 1);
    _para_set_odm_string("text", "");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(number("number"), "-5");
    EXPECT_EQ(text("text"), "gr\xc3\xbc\xc3\x9f \\ \"'\n");
    EXPECT_EQ(saved(), bytes);
}

// The store's printing, as the first memory that it asks for shows it.
static std::atomic<bool> watched{false}, printing{false}, print_may_go_on{false};

static bool wait_in_print()
{
    if (watched.exchange(false)) {
        printing = true;
        wait_until([] { return print_may_go_on.load(); });
    }
    return true;
}

static void watch_printing()
{
    watched = true;
    on_reallocation(wait_in_print);
}

TEST_F(OdmSave, AChangeThatIsStampedDuringThePrintStaysMarked)
{
    static std::atomic<bool> about_to_stamp{false};
    para_profile.odm_set_notify_hook = [](const char *) {
        about_to_stamp = true;
        wait_until([] { return printing.load(); });
    };
    init("{'version':1}");
    std::thread host([] {
        para_set_odm_int("mine", 5);
        print_may_go_on = true;
    });
    EXPECT_TRUE(wait_until([] { return about_to_stamp.load(); }));
    watch_printing();
    para_save_odm("odmInter");
    host.join();
    on_reallocation(nullptr);
    EXPECT_TRUE(printing);
    EXPECT_TRUE(change_pending());
}

TEST_F(OdmSave, AChangeDuringTheWriteStaysMarked)
{
    init();
    para_set_odm_int("mine", 5);
    std::filesystem::create_directory(data + "/persist");
    const std::string path = data + "/persist/odm.json";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    print_may_go_on = true;
    std::thread saver([] {
        watch_printing();          // here, as a thread that starts may allocate, too
        para_save_odm("odmInter"); // waits for a reader
    });
    EXPECT_TRUE(wait_until([] { return printing.load(); }));
    para_set_odm_int("mine", 6); // once the document is printed

    const std::string written = read_file(path).value_or("none");
    saver.join();
    on_reallocation(nullptr);
    EXPECT_THAT(written, testing::HasSubstr("\"mine\":\t5"));
    EXPECT_TRUE(change_pending());
}

TEST_F(OdmSave, TheThreadSavesAChange)
{
    start_store();
    para_set_odm_int("mine", 5);
    move_clock(2000);
    const std::string bytes = std::string("{\n\t\"version\":\t1,\n\t\"mine\":\t5\n}") + '\0';
    EXPECT_TRUE(wait_until([&] { return read_data("persist/odm.json") == bytes; }));
    EXPECT_EQ(count_traces("odmInter save err"), 0);
}

TEST_F(OdmSave, StoppingSavesAChangeThatIsNotDue)
{
    start_store();
    para_set_odm_int("mine", 5);
    stop_store();
    EXPECT_EQ(read_data("persist/odm.json"),
              std::string("{\n\t\"version\":\t1,\n\t\"mine\":\t5\n}") + '\0');
}

TEST_F(Odm, IsOutOfReachOfRequests)
{
    write_store("{'version':1,'mine':5}");
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'get','msg_id':1,'odmInter':['all']}"), "{'msg_id':1}");
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_id':2,'odmInter':{'mine':6}}"), "{'msg_id':2}");
    EXPECT_EQ(number("mine"), "5");
}
