// The ODM store: a device maker's own values, in a file and a folder of their own.
#include "camparam/odm.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "support/store.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

std::vector<std::string> told; // keys, as odm_set_notify_hook heard them
void tell(const char *key)
{
    told.push_back(key);
}

std::vector<std::string> conflicts;
void conflict(const char *name, int old_value, int new_value)
{
    conflicts.push_back(std::string(name) + " " + std::to_string(old_value) + " " +
                        std::to_string(new_value));
}

} // namespace

class Odm : public Store {
protected:
    Odm()
    {
        umask(0);
        para_profile.odm_set_notify_hook = tell;
        para_profile.conflict_hook = conflict;
    }

    void write_store(const std::string &bytes)
    {
        std::filesystem::create_directory(data + "/persist");
        write_data("persist/odm.json", bytes);
    }

    int init() { return para_init_odm("odmInter"); }
    int init(const std::string &bytes)
    {
        write_store(bytes);
        return init();
    }
    int second_stage() { return para_init_stage2_odm("odmInter"); }

    bool due() { return para_need_save_odm("odmInter") == 1; }
    bool change_pending()
    {
        move_clock(10000);
        return due();
    }

    std::string saved()
    {
        EXPECT_EQ(para_save_odm("odmInter"), 0);
        return read_data("persist/odm.json").value_or("none");
    }
    // The saved document without blanks.
    std::string saved_document() { return compact(parse(saved().c_str()).get()); }

    std::string number(const char *key)
    {
        int value = 77;
        const int result = para_get_odm_int(key, &value);
        EXPECT_TRUE(result == 0 || value == 77) << key << " was touched";
        return result == 0 ? std::to_string(value) : "error " + std::to_string(result);
    }
    std::string text(const char *key)
    {
        char value[PARA_ODM_TEXT_MAX] = "untouched";
        const int result = para_get_odm_string(key, value);
        EXPECT_TRUE(result == 0 || strcmp(value, "untouched") == 0) << key;
        return result == 0 ? value : "error " + std::to_string(result);
    }

    // Everything below the data folder, relative to it.
    std::vector<std::string> data_entries()
    {
        std::vector<std::string> entries;
        for (const auto &entry : std::filesystem::recursive_directory_iterator(data))
            entries.push_back(entry.path().lexically_relative(data).string());
        return entries;
    }

    // A data directory whose path has that length.
    void use_data_of_length(size_t length)
    {
        long_data = data + "/";
        long_data.append(length - long_data.size(), 'd');
        std::filesystem::create_directory(long_data);
        para_profile.data_dir = long_data.c_str();
    }

    std::string long_data;
};

using OdmStart = Odm;
using OdmVersion = Odm;
using OdmGetter = Odm;
using OdmSetter = Odm;
using OdmSave = Odm;

// --- Start-up ---

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

TEST_F(OdmStart, AFileThatHoldsNoObjectLosesNothingThatIsSet)
{
    EXPECT_EQ(init("[1,2]"), -1);
    EXPECT_EQ(number("version"), "error -1");
    para_set_odm_int("mine", 5);
    EXPECT_EQ(saved_document(), "{'version':1,'mine':5}");
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

// --- Version ---

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

// --- Getters ---

TEST_F(OdmGetter, AnAbsentKeyDiffersFromNoDocument)
{
    EXPECT_EQ(number("mine"), "error -1");
    EXPECT_EQ(text("mine"), "error -1");
    init("{}");
    EXPECT_EQ(number("mine"), "error -2");
    EXPECT_EQ(text("mine"), "error -2");
}

TEST_F(OdmGetter, ANumberIsItsIntegerForm)
{
    init("{'a':5,'b':-5,'c':1.9,'d':1e20,'e':-1e20,'f':0}");
    EXPECT_EQ(number("a"), "5");
    EXPECT_EQ(number("b"), "-5");
    EXPECT_EQ(number("c"), "1");
    EXPECT_EQ(number("d"), std::to_string(INT_MAX));
    EXPECT_EQ(number("e"), std::to_string(INT_MIN));
    EXPECT_EQ(number("f"), "0");
}

TEST_F(OdmGetter, ItemsOfAnotherTypeReadAsZeroOrEmpty)
{
    init("{'text':'25','array':[5],'object':{'a':5},'null':null,'no':false,'number':5}");
    for (const char *key : {"text", "array", "object", "null", "no"})
        EXPECT_EQ(number(key), "0") << key;
    EXPECT_EQ(text("text"), "25");
    for (const char *key : {"array", "object", "null", "no", "number"})
        EXPECT_EQ(text(key), "") << key;
}

TEST_F(OdmGetter, ATextIsCutToItsArea)
{
    init();
    const std::string long_text = std::string(254, 'a') + "bcd";
    for (const size_t length : std::vector<size_t>{0, 1, 254, 255, 256, 257}) {
        para_set_odm_string("mine", long_text.substr(0, length).c_str());
        char area[PARA_ODM_TEXT_MAX + 1];
        memset(area, '#', sizeof area);
        EXPECT_EQ(para_get_odm_string("mine", area), 0);
        EXPECT_EQ(std::string(area), long_text.substr(0, std::min<size_t>(length, 255)));
        EXPECT_EQ(area[PARA_ODM_TEXT_MAX], '#') << length;
    }
    EXPECT_EQ(saved_document(), "{'version':1,'mine':'" + long_text + "'}") << "kept whole";
}

TEST_F(OdmGetter, KeysAreMatchedWithoutRegardToCase)
{
    init("{'version':1,'Mine':5}");
    EXPECT_EQ(number("mINE"), "5");
    para_set_odm_int("MINE", 6);
    EXPECT_EQ(saved_document(), "{'version':1,'Mine':6}");
}

// --- Setters ---

TEST_F(OdmSetter, TheFirstNumberMakesTheDocument)
{
    init();
    EXPECT_EQ(para_set_odm_int("mine", 5), 0);
    EXPECT_EQ(number("version"), "1");
    EXPECT_EQ(number("mine"), "5");
    EXPECT_EQ(saved_document(), "{'version':1,'mine':5}");
}

TEST_F(OdmSetter, TheFirstTextMakesTheDocument)
{
    init();
    EXPECT_EQ(para_set_odm_string("mine", "a text"), 0);
    EXPECT_EQ(number("version"), "1");
    EXPECT_EQ(text("mine"), "a text");
}

TEST_F(OdmSetter, AValueThatTheNewDocumentHoldsIsNoChange)
{
    init();
    EXPECT_EQ(para_set_odm_int("version", 1), 0);
    EXPECT_EQ(number("version"), "1");
    EXPECT_THAT(told, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(OdmSetter, ANumberIsAddedChangedOrKept)
{
    init("{'version':1}");
    for (const int value : {5, 0, -1, INT_MAX, INT_MIN}) {
        EXPECT_EQ(_para_set_odm_int("mine", value), 1) << value;
        EXPECT_EQ(number("mine"), std::to_string(value));
        EXPECT_EQ(_para_set_odm_int("mine", value), 0) << value;
    }
    EXPECT_EQ(saved_document(), "{'version':1,'mine':-2147483648}");
}

TEST_F(OdmSetter, ATextIsAddedChangedOrKept)
{
    init("{'version':1}");
    const std::string long_text(5000, 'x');
    for (const char *value : {"abc", "abcd", "ab", "", "ABC", long_text.c_str()}) {
        EXPECT_EQ(_para_set_odm_string("mine", value), 1) << value;
        EXPECT_EQ(text("mine"), std::string(value).substr(0, 255));
        EXPECT_EQ(_para_set_odm_string("mine", value), 0) << value;
    }
    EXPECT_EQ(saved_document(), "{'version':1,'mine':'" + long_text + "'}");
}

TEST_F(OdmSetter, TheTextIsCopied)
{
    char value[] = "one", key[] = "mine";
    para_set_odm_string(key, value);
    strcpy(value, "two");
    strcpy(key, "less");
    EXPECT_EQ(text("mine"), "one");
}

TEST_F(OdmSetter, TheInternalOnesTellNobody)
{
    init("{'version':1}");
    EXPECT_EQ(_para_set_odm_int("number", 5), 1);
    EXPECT_EQ(_para_set_odm_string("text", "x"), 1);
    EXPECT_THAT(told, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(OdmSetter, ANewValueTellsTheHookAndMarksTheStore)
{
    init("{'version':1}");
    EXPECT_EQ(para_set_odm_int("number", 5), 0);
    EXPECT_EQ(para_set_odm_string("text", "x"), 0);
    EXPECT_EQ(para_set_odm_int("number", 6), 0);
    EXPECT_EQ(para_set_odm_string("text", "y"), 0);
    EXPECT_THAT(told, ElementsAre("number", "text", "number", "text"));
    EXPECT_TRUE(change_pending());
}

TEST_F(OdmSetter, ThePresentValueDoesNothing)
{
    init("{'version':1,'number':5,'text':'x'}");
    EXPECT_EQ(para_set_odm_int("number", 5), 0);
    EXPECT_EQ(para_set_odm_string("text", "x"), 0);
    EXPECT_THAT(told, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(OdmSetter, ThePresentValueDoesNotPostponeTheSave)
{
    init("{'version':1}");
    para_set_odm_int("number", 5);
    para_set_odm_string("text", "x");
    move_clock(2000);
    para_set_odm_int("number", 5);
    para_set_odm_string("text", "x");
    EXPECT_TRUE(due());
}

TEST_F(OdmSetter, TellsTheHookBeforeTheStamp)
{
    static bool due_in_hook;
    static std::string value_in_hook;
    static time_t time_in_hook;
    para_profile.odm_set_notify_hook = [](const char *key) {
        int value = 0;
        para_get_odm_int(key, &value);
        value_in_hook = std::to_string(value);
        due_in_hook = para_need_save_odm("odmInter") == 1;
        time_in_hook = odm_item_start_time.tv_sec;
    };
    init("{'version':1}");
    para_set_odm_int("mine", 5);
    EXPECT_EQ(value_in_hook, "5");
    EXPECT_EQ(time_in_hook, 0) << "never stamped before";
    const time_t first_time = odm_item_start_time.tv_sec;
    EXPECT_GT(first_time, 0);

    move_clock(3000);
    para_set_odm_int("mine", 6);
    EXPECT_TRUE(due_in_hook) << "the stamp is that of the first change";
    EXPECT_EQ(time_in_hook, first_time);
    EXPECT_FALSE(due());
}

TEST_F(OdmSetter, TheHookMaySetValuesItself)
{
    para_profile.odm_set_notify_hook = [](const char *key) {
        para_set_odm_string("last", key);
        _para_set_odm_int("count", 1);
    };
    init();
    para_set_odm_int("mine", 5);
    EXPECT_EQ(saved_document(), "{'version':1,'mine':5,'last':'last','count':1}");
}

TEST_F(OdmSetter, WorksWithoutAHook)
{
    para_profile.odm_set_notify_hook = nullptr;
    init();
    para_set_odm_int("number", 5);
    para_set_odm_string("text", "x");
    EXPECT_EQ(number("number"), "5");
    EXPECT_EQ(text("text"), "x");
    EXPECT_TRUE(change_pending());
}

TEST_F(OdmSetter, AnItemKeepsItsType)
{
    init("{'version':1,'number':5,'text':'x'}");
    EXPECT_EQ(_para_set_odm_string("number", "y"), 1);
    EXPECT_EQ(_para_set_odm_string("number", "y"), 1) << "never equal";
    EXPECT_EQ(number("number"), "5");
    EXPECT_EQ(text("number"), "");

    EXPECT_EQ(_para_set_odm_int("text", 0), 0) << "a text is the number 0";
    EXPECT_EQ(_para_set_odm_int("text", 7), 1);
    EXPECT_EQ(number("text"), "7");
    EXPECT_EQ(text("text"), "x");
    EXPECT_EQ(saved_document(), "{'version':1,'number':5,'text':'x'}");
}

TEST_F(OdmSetter, ANullTextLeavesTheItemAsItIs)
{
    init("{'version':1,'text':'x','number':5}");
    EXPECT_EQ(_para_set_odm_string("text", nullptr), 1);
    EXPECT_EQ(_para_set_odm_string("number", nullptr), 1);
    EXPECT_EQ(text("text"), "x");
    EXPECT_EQ(number("number"), "5");
    EXPECT_EQ(para_set_odm_string("absent", nullptr), 0);
    EXPECT_EQ(text("text"), "x");
}

TEST_F(OdmSetter, OneDocumentIsMadeWhenThreadsSetFirstAtOnce)
{
    para_profile.odm_set_notify_hook = nullptr;
    init();
    std::vector<std::thread> hosts;
    for (int host = 0; host < 4; host++) {
        hosts.emplace_back([host] {
            for (int i = 0; i < 50; i++) {
                const std::string key = "key" + std::to_string(host) + "_" + std::to_string(i);
                para_set_odm_int(key.c_str(), i);
                para_set_odm_string(("text" + key).c_str(), key.c_str());
            }
        });
    }
    for (std::thread &host : hosts)
        host.join();
    const json document = parse(saved().c_str());
    EXPECT_EQ(cJSON_GetArraySize(document.get()), 1 + 4 * 50 * 2);
    EXPECT_STREQ(document->child->string, "version");
    EXPECT_EQ(number("key3_49"), "49");
    EXPECT_EQ(text("textkey0_0"), "key0_0");
}

// --- Saving ---

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
    EXPECT_FALSE(due());
    para_set_odm_int("mine", 5);
    EXPECT_FALSE(due());
    move_clock(1900);
    EXPECT_FALSE(due());
    para_set_odm_string("other", "x");
    move_clock(1900);
    EXPECT_FALSE(due()) << "a further change postpones the save";
    move_clock(100);
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
