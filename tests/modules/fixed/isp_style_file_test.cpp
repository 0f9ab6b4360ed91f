// Picture styles: the file and its list.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "modules/fixed/another_process.h"
#include "modules/fixed/isp_style_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

using IspStyleFile = IspStyle;
using IspStyleList = IspStyle;

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
