// Picture styles: named sets of ISP values, one of which gives the defaults.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "camparam/isp.h"
#include "support/store.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const char two_styles[] = "{'isp0_style_def':0,'style_excute_by_arm':3,"
                          "'isp0_style_list':['standard','vivid'],"
                          "'standard':{'style':0,'saturation':50,'sharpness':8,'antiflicker':1},"
                          "'vivid':{'style':1,'saturation':70,'sharpness':10,'antiflicker':2}}";

std::vector<std::string> odm_keys;
void odm_told(const char *key)
{
    odm_keys.push_back(key);
}

int notifications;
void notify(int (*)(int, int), int, int)
{
    notifications++;
}

// Runs in a process of its own: styles are loaded once in a process.
void in_another_process(const std::function<void()> &work)
{
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        work();
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

// No style has one of these numbers, whatever the file.
const int no_index[] = {-1, -2, -1000000, INT_MIN, 1001, 1000000, INT_MAX};

} // namespace

class IspStyle : public Store {
protected:
    IspStyle()
    {
        write_home("isp_range.json",
                   "{'isp0':{'style':[0,9],'saturation':[0,100],'sharpness':[0,20],"
                   "'antiflicker':[0,60]}}");
        write_home("isp_def.json", two_styles);
        para_profile.isp_set_notify_hook = notify;
        para_profile.odm_set_notify_hook = odm_told;
    }

    int load() { return para_init_isp_style(); }
    int load(const std::string &file)
    {
        write_home("isp_def.json", file);
        return load();
    }

    void start(const std::string &file = two_styles)
    {
        write_home("isp_def.json", file);
        EXPECT_EQ(para_init_isp("isp0"), 0);
    }

    void load_odm(const std::string &bytes)
    {
        std::filesystem::create_directory(data + "/persist");
        write_data("persist/odm.json", bytes);
        EXPECT_EQ(para_init_odm("odmInter"), 0);
    }

    std::string odm_number(const char *key)
    {
        int value = 0;
        return para_get_odm_int(key, &value) == 0 ? std::to_string(value) : "none";
    }

    std::string defaults(int instance = 0)
    {
        const json object(isp_param_to_json(instance, 1));
        return compact(object.get());
    }
    std::string current(int instance = 0)
    {
        const json object(isp_param_to_json(instance, 0));
        return compact(object.get());
    }

    std::string name(int index)
    {
        const char *const text = para_get_isp_style_string(index);
        return text != nullptr ? text : "none";
    }

    void expect_no_style(int index)
    {
        EXPECT_EQ(get_isp_style_json(index), nullptr) << index;
        EXPECT_EQ(para_get_isp_style_string(index), nullptr) << index;
        EXPECT_EQ(para_get_isp_style_param(0, index), nullptr) << index;
        EXPECT_EQ(para_set_isp_style_def_index(0, index), -1) << index;
        EXPECT_EQ(para_set_isp_style_def(0, index), -1) << index;
    }

    void expect_no_styles()
    {
        for (const int index : no_index)
            expect_no_style(index);
        expect_no_style(0);
        expect_no_style(1);
        for (const char *text : {"standard", "", "isp0_style_list"})
            EXPECT_EQ(para_get_isp_style_index(text), -1);
        EXPECT_EQ(para_get_isp_style_index(nullptr), -1);
    }
};

using IspStyleFile = IspStyle;
using IspStyleList = IspStyle;
using IspStyleLookUp = IspStyle;
using IspStyleRecord = IspStyle;
using IspDefaultStyle = IspStyle;
using IspStyleAntiflicker = IspStyle;

// --- The file ---

TEST_F(IspStyleFile, IsLoaded)
{
    EXPECT_EQ(load(), 0);
    EXPECT_EQ(para_isp_style_excute_by_arm(), 3);
    EXPECT_EQ(para_get_isp_style_def_index(0), 0);
    EXPECT_EQ(name(0), "standard");
    EXPECT_EQ(name(1), "vivid");
    EXPECT_THAT(traces_of("para_init_isp_style"),
                ElementsAre("style_excute_by_arm:3,total_style:2,style_def:0,antiflicker_def:-1\n",
                            "find style[0]:standard\n", "find style[1]:vivid\n"));
    EXPECT_EQ(traces()[0].level, 6);
}

TEST_F(IspStyleFile, IsNotThereBeforeItIsLoaded)
{
    expect_no_styles();
    EXPECT_EQ(para_get_isp_style_def_index(0), 0);
    EXPECT_EQ(para_isp_style_excute_by_arm(), 0);
}

TEST_F(IspStyleFile, AMissingOneFailsSilently)
{
    std::filesystem::remove(home + "/isp_def.json");
    EXPECT_EQ(load(), -1);
    EXPECT_THAT(traces(), IsEmpty());
    expect_no_styles();
}

TEST_F(IspStyleFile, ABrokenOneFails)
{
    EXPECT_EQ(load("rubbish"), -1);
    EXPECT_THAT(traces_of("para_init_isp_style"), ElementsAre("Error before: [rubbish]\n\n"));
    EXPECT_EQ(traces()[0].level, 6);
    expect_no_styles();
}

TEST_F(IspStyleFile, WithoutAListFailsAndKeepsItsSettings)
{
    load_odm("{'version':1,'isp0_style_def':3,'isp0_antiflicker_def':50}");
    EXPECT_EQ(load("{'isp0_style_def':1,'style_excute_by_arm':2,'standard':{'saturation':50}}"),
              -1);
    EXPECT_THAT(traces_of("para_init_isp_style"), ElementsAre("error\n"));
    EXPECT_EQ(para_get_isp_style_def_index(0), 1) << "the ODM store is not asked";
    EXPECT_EQ(para_isp_style_excute_by_arm(), 2);
    isp_record record = {};
    parse_isp_def_odm(&record);
    EXPECT_EQ(record.antiflicker, 0);
    expect_no_styles();
}

TEST_F(IspStyleFile, ThatIsNoObjectHasNoList)
{
    for (const char *file : {"[]", "5", "'text'", "null", "['isp0_style_list']"}) {
        in_another_process([&] {
            EXPECT_EQ(load(file), -1) << file;
            EXPECT_THAT(traces_of("para_init_isp_style"), ElementsAre("error\n")) << file;
            expect_no_styles();
        });
    }
}

TEST_F(IspStyleFile, SettingsOfAnotherTypeAreZero)
{
    EXPECT_EQ(load("{'isp0_style_def':'1','style_excute_by_arm':[2],'isp0_style_list':['a','b'],"
                   "'b':{}}"),
              0);
    EXPECT_EQ(para_get_isp_style_def_index(0), 0);
    EXPECT_EQ(para_isp_style_excute_by_arm(), 0);
}

TEST_F(IspStyleFile, ItsPathIsNeverCut)
{
    const std::string file_name = "/isp_def.json";
    std::string directory = home + "/";
    directory.append(127 - file_name.size() - directory.size(), 'd');
    std::filesystem::create_directory(directory);
    write_file(directory + file_name, R"({"isp0_style_list":["a"],"a":{}})");
    std::filesystem::create_directory(directory + "d");
    write_file(directory + "d" + file_name, R"({"isp0_style_list":["a"],"a":{}})");
    write_file(directory + "d" + "/isp_def.jso", R"({"isp0_style_list":["a"],"a":{}})");

    const std::string longer = directory + "d";
    para_profile.home_dir = longer.c_str();
    EXPECT_EQ(load(), -1);
    para_profile.home_dir = directory.c_str();
    EXPECT_EQ(load(), 0);
}

TEST_F(IspStyleFile, WithoutAHomeDirectoryIsInTheWorkingDirectory)
{
    ASSERT_EQ(chdir(home.c_str()), 0);
    para_profile.home_dir = nullptr;
    EXPECT_EQ(load(), 0);
    EXPECT_EQ(name(1), "vivid");
}

// --- The list ---

TEST_F(IspStyleList, AListedNameWithoutAnObjectHasNoStyle)
{
    EXPECT_EQ(load("{'isp0_style_list':['a','b'],'b':{'saturation':7}}"), 0);
    EXPECT_EQ(name(0), "none");
    EXPECT_EQ(name(1), "b");
    EXPECT_EQ(para_get_isp_style_index("a"), -1);
    EXPECT_EQ(para_get_isp_style_index("b"), 1);
    expect_no_style(0);
    expect_no_style(2);
    EXPECT_EQ(para_set_isp_style_def_index(0, 1), 0);
    EXPECT_THAT(traces_of("para_init_isp_style"),
                ElementsAre("style_excute_by_arm:0,total_style:2,style_def:0,antiflicker_def:-1\n",
                            "error can not find style a\n", "find style[1]:b\n"));
    EXPECT_EQ(traces()[1].level, 6);
}

TEST_F(IspStyleList, AllItsNamesMayBeMissing)
{
    start("{'isp0_style_list':['a','b','c']}");
    for (const int index : {0, 1, 2})
        expect_no_style(index);
    EXPECT_EQ(current(), "{'style':0}");
}

TEST_F(IspStyleList, MayBeEmpty)
{
    start("{'isp0_style_def':0,'isp0_style_list':[],'standard':{'saturation':50}}");
    EXPECT_EQ(count_traces("style_excute_by_arm:0,total_style:0,style_def:0,antiflicker_def:-1"),
              1);
    expect_no_styles();
    EXPECT_EQ(current(), "{'style':0}");
    EXPECT_EQ(defaults(), "{'style':0}");
}

TEST_F(IspStyleList, ThatIsNoListHasNoStyles)
{
    for (const char *list : {"'standard'", "5", "null", "true", "{}"}) {
        in_another_process([&] {
            EXPECT_EQ(
                load(std::string("{'isp0_style_list':") + list + ",'standard':{'saturation':50}}"),
                0)
                << list;
            expect_no_styles();
        });
    }
}

TEST_F(IspStyleList, EntriesThatAreNoTextsHaveNoStyle)
{
    EXPECT_EQ(load("{'isp0_style_list':[5,null,['a'],{'a':1},true,'a'],'a':{'saturation':7},"
                   "'5':{},'null':{}}"),
              0);
    for (const int index : {0, 1, 2, 3, 4})
        expect_no_style(index);
    EXPECT_EQ(name(5), "a");
    EXPECT_EQ(para_get_isp_style_param(0, 5)->saturation, 7);
}

TEST_F(IspStyleList, AStyleThatIsNoObjectNamesNothing)
{
    start("{'isp0_style_list':['a','b','c','d'],'a':5,'b':'text','c':['saturation'],'d':null}");
    for (const int index : {0, 1, 2, 3}) {
        EXPECT_EQ(name(index), std::string(1, static_cast<char>('a' + index)));
        ASSERT_NE(para_get_isp_style_param(0, index), nullptr);
        EXPECT_EQ(para_get_isp_style_param(0, index)->saturation, 0);
    }
    EXPECT_EQ(current(), "{'style':0}");
}

TEST_F(IspStyleList, DuplicateNamesShareOneObject)
{
    start("{'isp0_style_list':['a','b','a'],'a':{'style':9,'saturation':5},"
          "'b':{'style':9,'saturation':6},'A':{'saturation':7}}");
    EXPECT_EQ(get_isp_style_json(0), get_isp_style_json(2));
    EXPECT_EQ(para_get_isp_style_index("a"), 0) << "the first";
    EXPECT_EQ(name(2), "a");
    EXPECT_EQ(para_get_isp_style_param(0, 0)->style, 0);
    EXPECT_EQ(para_get_isp_style_param(0, 1)->style, 1);
    EXPECT_EQ(para_get_isp_style_param(0, 2)->style, 2);
    EXPECT_EQ(para_get_isp_style_param(0, 2)->saturation, 5);
    EXPECT_EQ(current(), "{'style':0,'saturation':5}");
    EXPECT_EQ(defaults(), "{'style':0,'saturation':5}");
}

TEST_F(IspStyleList, ANameThatDiffersInCaseFindsTheStyleByItsOwnName)
{
    EXPECT_EQ(load("{'isp0_style_list':['STANDARD','ViViD'],'Standard':{'SATURATION':50},"
                   "'vivid':{'Style':9}}"),
              0);
    EXPECT_EQ(name(0), "Standard");
    EXPECT_EQ(para_get_isp_style_index("Standard"), 0);
    EXPECT_EQ(para_get_isp_style_index("STANDARD"), -1);
    EXPECT_EQ(para_get_isp_style_index("standard"), -1);
    EXPECT_EQ(para_get_isp_style_index("vivid"), 1);
    EXPECT_EQ(para_get_isp_style_param(0, 0)->saturation, 50);
    EXPECT_EQ(para_get_isp_style_param(0, 1)->style, 1);
    EXPECT_EQ(count_traces("find style[0]:STANDARD"), 1) << "as the list has it";
}

TEST_F(IspStyleList, NamesAreTakenWhole)
{
    EXPECT_EQ(load("{'isp0_style_list':['','a b','isp0_style_list'],'':{'saturation':1},"
                   "'a b':{'saturation':2}}"),
              0);
    EXPECT_EQ(para_get_isp_style_index(""), 0);
    EXPECT_EQ(para_get_isp_style_index("a b"), 1);
    EXPECT_EQ(para_get_isp_style_index("a"), -1);
    EXPECT_EQ(para_get_isp_style_index("isp0_style_list"), 2) << "a key as any other";
}

TEST_F(IspStyleList, MayHoldAThousandStyles)
{
    std::string list, styles;
    for (int i = 0; i < 1000; i++) {
        const std::string style = "'style" + std::to_string(i) + "'";
        list += (i == 0 ? "" : ",") + style;
        if (i % 10 != 9)
            styles += "," + style + ":{'style':7,'saturation':" + std::to_string(i) + "}";
    }
    start("{'isp0_style_def':998,'isp0_style_list':[" + list + "]" + styles + "}");
    EXPECT_EQ(current(), "{'style':998,'saturation':998}");
    for (int i = 0; i < 1000; i++) {
        const std::string style = "style" + std::to_string(i);
        const bool found = i % 10 != 9;
        EXPECT_EQ(name(i), found ? style : "none");
        EXPECT_EQ(para_get_isp_style_index(style.c_str()), found ? i : -1);
        const isp_record *const record = para_get_isp_style_param(0, i);
        ASSERT_EQ(record != nullptr, found) << i;
        if (found) {
            EXPECT_EQ(record->style, i);
            EXPECT_EQ(record->saturation, i);
        }
    }
    expect_no_style(1000);
}

// --- Look-ups ---

TEST_F(IspStyleLookUp, RejectsEveryIndexWithoutAStyle)
{
    start();
    for (const int index : no_index)
        expect_no_style(index);
    expect_no_style(2);
    EXPECT_EQ(para_get_isp_style_def_index(0), 0) << "a refused index changes nothing";
    EXPECT_EQ(defaults(), "{'style':0,'antiflicker':1,'saturation':50,'sharpness':8}");
    EXPECT_THAT(odm_keys, IsEmpty());
}

TEST_F(IspStyleLookUp, NamesAreExact)
{
    load();
    for (const char *text : {"Vivid", "vivi", "vivids", " vivid", "", "isp0_style_list"})
        EXPECT_EQ(para_get_isp_style_index(text), -1) << text;
    EXPECT_EQ(para_get_isp_style_index(nullptr), -1);
    for (const int index : {0, 1})
        EXPECT_EQ(para_get_isp_style_index(para_get_isp_style_string(index)), index);
}

TEST_F(IspStyleLookUp, TheObjectIsThatOfTheDocument)
{
    load();
    EXPECT_EQ(compact(get_isp_style_json(1)),
              "{'style':1,'saturation':70,'sharpness':10,'antiflicker':2}");
    EXPECT_STREQ(get_isp_style_json(1)->string, "vivid");
}

// --- Records ---

TEST_F(IspStyleRecord, HoldsEveryLoadedMember)
{
    std::string style;
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written)                                 \
    style += std::string(",'") + #name + "':" + std::to_string(500 + word);
#include "camparam/isp_members.def"
    start("{'isp0_style_list':['none','all'],'all':{" + style.substr(1) + "}}");

    const isp_record *const record = para_get_isp_style_param(0, 1);
    ASSERT_NE(record, nullptr);
    int words[39];
    ASSERT_EQ(sizeof words, sizeof *record);
    memcpy(words, record, sizeof words);
    for (int word = 1; word < 39; word++) {
        const int expected = word == 1 ? 1 : word == 12 || word == 37 ? 0 : 500 + word;
        EXPECT_EQ(words[word], expected) << word;
    }
    EXPECT_EQ(words[0], 156);
}

TEST_F(IspStyleRecord, MembersThatTheStyleDoesNotNameAreZero)
{
    start("{'isp0_style_list':['a','b'],'a':{'saturation':5},'b':{'sharpness':6}}");
    const isp_record *const record = para_get_isp_style_param(0, 1);
    EXPECT_EQ(record->size, 156);
    EXPECT_EQ(record->style, 0) << "not named, not set";
    EXPECT_EQ(record->saturation, 0);
    EXPECT_EQ(record->sharpness, 6);
    EXPECT_EQ(record->hotpixel, 0);
}

TEST_F(IspStyleRecord, ValuesOfOtherTypesAreZeroAndUnchecked)
{
    start("{'isp0_style_list':['a'],'a':{'saturation':'50','sharpness':null,'hue':[1],"
          "'gamma':5000,'meter':-7,'drc':1e20,'iris':2.9}}");
    const isp_record *const record = para_get_isp_style_param(0, 0);
    EXPECT_EQ(record->saturation, 0);
    EXPECT_EQ(record->sharpness, 0);
    EXPECT_EQ(record->hue, 0);
    EXPECT_EQ(record->gamma, 5000);
    EXPECT_EQ(record->meter, -7);
    EXPECT_EQ(record->drc, INT_MAX);
    EXPECT_EQ(record->iris, 2);
}

TEST_F(IspStyleRecord, TheStyleIsItsPlaceInTheListWhateverTheFileSays)
{
    load("{'isp0_style_list':['a','b','c'],'a':{'style':7},'b':{'style':7},'c':{'style':7}}");
    for (const int index : {0, 1, 2}) {
        EXPECT_EQ(para_get_isp_style_param(0, index)->style, index);
        EXPECT_EQ(compact(get_isp_style_json(index)), "{'style':" + std::to_string(index) + "}");
    }
}

TEST_F(IspStyleRecord, CarriesTheCurrentAntiflickerOfTheInstance)
{
    start();
    para_set_isp_antiflicker_cur(0, 33);
    for (const int index : {0, 1}) {
        EXPECT_EQ(para_get_isp_style_param(0, index)->antiflicker, 33);
        EXPECT_EQ(para_get_isp_style_param(1, index)->antiflicker, 0);
    }
    para_set_isp_antiflicker_cur(0, 34);
    EXPECT_EQ(para_get_isp_style_param(0, 1)->antiflicker, 34);
}

TEST_F(IspStyleRecord, IsSharedByTheInstances)
{
    start();
    isp_record *const record = para_get_isp_style_param(0, 1);
    EXPECT_EQ(para_get_isp_style_param(1, 1), record);
    EXPECT_EQ(record->antiflicker, 0) << "of the last call";
    EXPECT_NE(para_get_isp_style_param(0, 0), record);
}

TEST_F(IspStyleRecord, OtherInstancesHaveNone)
{
    start();
    para_set_isp_antiflicker_cur(0, 33);
    isp_record *const record = para_get_isp_style_param(0, 1);
    for (const int instance : {-1, 2, 1000000, INT_MIN, INT_MAX})
        EXPECT_EQ(para_get_isp_style_param(instance, 1), nullptr) << instance;
    EXPECT_EQ(record->antiflicker, 33);
}

TEST_F(IspStyleRecord, IsAppliedByTheHostThroughTheSetters)
{
    start();
    const isp_record *const record = para_get_isp_style_param(0, 1);
    para_set_isp_style_cur(0, record->style);
    para_set_isp_saturation_cur(0, record->saturation);
    para_set_isp_sharpness_cur(0, record->sharpness);
    para_set_isp_antiflicker_cur(0, record->antiflicker);
    EXPECT_EQ(current(), "{'style':1,'antiflicker':1,'saturation':70,'sharpness':10}");
    EXPECT_EQ(notifications, 3) << "the same antiflicker is no change";
}

// --- The default style ---

TEST_F(IspDefaultStyle, ComesFromTheFile)
{
    start("{'isp0_style_def':1,'isp0_style_list':['a','b'],'a':{'saturation':5},"
          "'b':{'saturation':6}}");
    for (const int instance : {0, 1, -1, INT_MAX})
        EXPECT_EQ(para_get_isp_style_def_index(instance), 1) << "one for all instances";
    EXPECT_EQ(current(), "{'style':1,'saturation':6}");
}

TEST_F(IspDefaultStyle, TheOdmStoreWinsOverTheFile)
{
    load_odm("{'version':1,'isp0_style_def':1,'isp0_antiflicker_def':50}");
    EXPECT_EQ(load(), 0);
    EXPECT_EQ(para_get_isp_style_def_index(0), 1);
    EXPECT_EQ(traces_of("para_init_isp_style")[0],
              "style_excute_by_arm:3,total_style:2,style_def:1,antiflicker_def:50\n");
}

TEST_F(IspDefaultStyle, AnIndexWithoutAStyleIsNotCorrected)
{
    for (const int index : no_index) {
        in_another_process([&] {
            load_odm("{'version':1,'isp0_style_def':" + std::to_string(index) + "}");
            start();
            EXPECT_EQ(para_get_isp_style_def_index(0), index);
            EXPECT_EQ(current(), "{'style':" + std::to_string(index) + "}");
        });
    }
}

TEST_F(IspDefaultStyle, TheIndexAloneIsSetForThisRun)
{
    start();
    for (const int instance : {0, 1, -1, INT_MAX}) {
        EXPECT_EQ(para_set_isp_style_def_index(instance, 0), 0);
        EXPECT_EQ(para_set_isp_style_def_index(instance, 1), 0) << "the instance is ignored";
        EXPECT_EQ(para_get_isp_style_def_index(0), 1);
    }
    EXPECT_EQ(defaults(), "{'style':0,'antiflicker':1,'saturation':50,'sharpness':8}");
    EXPECT_THAT(odm_keys, IsEmpty());
    EXPECT_EQ(odm_number("isp0_style_def"), "none");
}

TEST_F(IspDefaultStyle, ANewOneGivesTheDefaultsAndLivesInTheOdmStore)
{
    start();
    const std::string before = current();
    EXPECT_EQ(para_set_isp_style_def(0, 1), 0);
    EXPECT_EQ(para_get_isp_style_def_index(0), 1);
    EXPECT_EQ(defaults(), "{'style':1,'antiflicker':2,'saturation':70,'sharpness':10}");
    EXPECT_EQ(current(), before) << "current values stay";
    EXPECT_EQ(odm_number("isp0_style_def"), "1");
    EXPECT_THAT(odm_keys, ElementsAre("isp0_style_def"));
    EXPECT_EQ(notifications, 0);
    move_clock(10000);
    EXPECT_EQ(para_need_save_isp("isp0"), 0);
    EXPECT_EQ(para_need_save_odm("odmInter"), 1);

    para_isp_cur_restore_isp_def();
    EXPECT_EQ(current(), "{'style':1,'antiflicker':2,'saturation':70,'sharpness':10}");
}

TEST_F(IspDefaultStyle, TheSameOneIsNoChangeOfTheOdmStore)
{
    start();
    para_set_isp_style_def(0, 1);
    odm_keys.clear();
    EXPECT_EQ(para_set_isp_style_def(0, 1), 0);
    EXPECT_THAT(odm_keys, IsEmpty());
}

TEST_F(IspDefaultStyle, MembersThatItDoesNotNameKeepTheirDefaults)
{
    start("{'isp0_style_list':['a','b'],'a':{'style':0,'saturation':5,'hue':1},"
          "'b':{'sharpness':6,'saturation':'x','NR3D':3}}");
    EXPECT_EQ(para_set_isp_style_def(0, 1), 0);
    EXPECT_EQ(defaults(), "{'style':0,'saturation':0,'hue':1,'sharpness':6,'nr3d':3}");
    EXPECT_EQ(para_isp_exist[0].sharpness, 0x81) << "present from now on";
    EXPECT_EQ(para_isp_exist[0].saturation, 0x81);
    EXPECT_EQ(current(), "{'style':0,'saturation':5,'hue':1,'sharpness':0,'nr3d':0}");
}

TEST_F(IspDefaultStyle, MayBeLoadedIntoTheSecondInstance)
{
    start();
    EXPECT_EQ(para_set_isp_style_def(1, 1), 0);
    EXPECT_EQ(defaults(1), "{'style':1,'antiflicker':2,'saturation':70,'sharpness':10}");
    EXPECT_EQ(defaults(0), "{'style':0,'antiflicker':1,'saturation':50,'sharpness':8}");
    EXPECT_EQ(para_get_isp_style_def_index(0), 1) << "one default for both";
    EXPECT_EQ(odm_number("isp0_style_def"), "1");
}

TEST_F(IspDefaultStyle, OtherInstancesAreRefused)
{
    start();
    for (const int instance : {-1, 2, 1000000, INT_MIN, INT_MAX})
        EXPECT_EQ(para_set_isp_style_def(instance, 1), -1) << instance;
    EXPECT_EQ(para_get_isp_style_def_index(0), 0);
    EXPECT_EQ(odm_number("isp0_style_def"), "none");
}

TEST_F(IspDefaultStyle, StandsAfterARestart)
{
    in_another_process([this] {
        start_store();
        EXPECT_EQ(para_set_isp_style_def(0, 1), 0);
        stop_store();
    });
    start_store();
    EXPECT_EQ(para_get_isp_style_def_index(0), 1);
    EXPECT_EQ(para_get_isp_style_cur(0), 0) << "the current style was saved as well";
}

TEST_F(IspDefaultStyle, IsTheCurrentOneAfterARestartWhenItWasAdopted)
{
    in_another_process([this] {
        start_store();
        para_set_isp_style_def(0, 1);
        para_isp_cur_restore_isp_def();
        stop_store();
    });
    start_store();
    EXPECT_EQ(current(), "{'style':1,'antiflicker':2,'saturation':70,'sharpness':10}");
    EXPECT_EQ(defaults(), current());
    EXPECT_EQ(notifications, 0);
}

// --- The ODM default of antiflicker ---

TEST_F(IspStyleAntiflicker, WinsOverEveryStyle)
{
    load_odm("{'version':1,'isp0_antiflicker_def':50}");
    start();
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 50);
    for (const int index : {1, 0, 1}) {
        para_set_isp_style_def(0, index);
        EXPECT_EQ(para_get_isp_antiflicker_def(0), 50);
    }
    para_set_isp_style_def(1, 1);
    EXPECT_EQ(para_get_isp_antiflicker_def(1), 50);
    EXPECT_EQ(para_get_isp_antiflicker_cur(0), 1);
}

TEST_F(IspStyleAntiflicker, IsWrittenIntoAnyRecord)
{
    load_odm("{'version':1,'isp0_antiflicker_def':50}");
    load();
    isp_record record;
    memset(&record, 0x11, sizeof record);
    EXPECT_EQ(parse_isp_def_odm(&record), 0);
    EXPECT_EQ(record.antiflicker, 50);
    record.antiflicker = 0x11111111;
    isp_record untouched;
    memset(&untouched, 0x11, sizeof untouched);
    EXPECT_EQ(memcmp(&record, &untouched, sizeof record), 0) << "that word alone";
}

TEST_F(IspStyleAntiflicker, NoneLeavesARecordAlone)
{
    load();
    isp_record record = {};
    record.antiflicker = 7;
    EXPECT_EQ(parse_isp_def_odm(&record), 0);
    EXPECT_EQ(record.antiflicker, 7);
}

TEST_F(IspStyleAntiflicker, ZeroIsAValueAndNegativeOnesAreNone)
{
    const std::pair<int, int> cases[] = {{0, 0}, {-1, 7}, {-50, 7}, {INT_MIN, 7}, {5000, 5000}};
    for (const auto &[value, expected] : cases) {
        in_another_process([&, value = value, expected = expected] {
            load_odm("{'version':1,'isp0_antiflicker_def':" + std::to_string(value) + "}");
            load();
            isp_record record = {};
            record.antiflicker = 7;
            parse_isp_def_odm(&record);
            EXPECT_EQ(record.antiflicker, expected) << value;
        });
    }
}

TEST_F(IspStyleAntiflicker, IsTheOneOfStartUpForTheWholeRun)
{
    load_odm("{'version':1,'isp0_antiflicker_def':50}");
    start();
    para_set_isp_antiflicker_def(0, 40);
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 40);
    EXPECT_EQ(odm_number("isp0_antiflicker_def"), "40");
    para_set_isp_style_def(0, 1);
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 50);
}

TEST_F(IspStyleAntiflicker, WithoutAnOdmValueTheStyleGivesIt)
{
    start();
    para_set_isp_antiflicker_def(0, 40);
    para_set_isp_style_def(0, 1);
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 2);
}
