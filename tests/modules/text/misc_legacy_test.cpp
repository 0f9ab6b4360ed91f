// The legacy file set of "misc": its ranges and its values.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "modules/text/misc_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

using MiscWidening = Misc;

namespace {

// A legacy range member as it is in memory.
std::string widen(const std::string &member)
{
    const json old = parse("{" + member + "}");
    const json range(fix_old_misc_range_conf(old.get()));
    return compact(range.get());
}

std::string widened_list(const std::string &key, const std::string &first, const std::string &last)
{
    const json old = parse("{'" + key + "':['" + first + "','" + last + "']}");
    const json range(fix_old_misc_range_conf(old.get()));
    return compact(cJSON_GetObjectItem(range.get(), key.c_str()));
}

} // namespace

TEST_F(MiscWidening, TablesAreInTheLegacyOrder)
{
    EXPECT_THAT(
        hdmivideoformat,
        ElementsAre(testing::StrEq("1080P60"), testing::StrEq("1080P50"), testing::StrEq("1080I60"),
                    testing::StrEq("1080I50"), testing::StrEq("720P60"), testing::StrEq("720P50"),
                    testing::StrEq("1080P30"), testing::StrEq("1080P25"), testing::StrEq("720P30"),
                    testing::StrEq("720P25"), testing::StrEq("1080P59.94"),
                    testing::StrEq("1080I59.94"), testing::StrEq("4KP30"), testing::StrEq("4KP25"),
                    testing::StrEq("4KP50"), testing::StrEq("4KP60"), testing::StrEq("4KP29.97"),
                    testing::StrEq("4KP59.94"), testing::StrEq("480P59.94"),
                    testing::StrEq("480I59.94"), testing::StrEq("480P60"), testing::StrEq("576P50"),
                    testing::StrEq("576I50")));
    EXPECT_THAT(ViStrategy, ElementsAre(testing::StrEq("50"), testing::StrEq("60"),
                                        testing::StrEq("dial"), testing::StrEq("osd")));
    EXPECT_THAT(ndi_mode, ElementsAre(testing::StrEq("off"), testing::StrEq("low"),
                                      testing::StrEq("medium"), testing::StrEq("high"),
                                      testing::StrEq("264P50"), testing::StrEq("264P60"),
                                      testing::StrEq("265P50"), testing::StrEq("265P60")));
}

TEST_F(MiscWidening, AStretchBecomesTheFullList)
{
    EXPECT_EQ(widened_list("hdmivideoformat", "4KP30", "4KP60"),
              "['4KP30','4KP25','4KP50','4KP60']");
    EXPECT_EQ(widened_list("ViStrategy", "50", "osd"), "['50','60','dial','osd']");
    EXPECT_EQ(widened_list("ndi_mode", "off", "high"), "['off','low','medium','high']");
}

TEST_F(MiscWidening, EveryPairOfNamesGivesItsStretchOrNothing)
{
    for (const enum_accessors &member : enum_members) {
        const std::vector<std::string> &names = member.names;
        for (size_t first = 0; first < names.size(); first++) {
            for (size_t last = 0; last < names.size(); last++) {
                EXPECT_EQ(widened_list(member.key, names[first], names[last]),
                          first <= last ? list_of(names, first, last) : "[]")
                    << names[first] << " to " << names[last];
            }
        }
    }
}

TEST_F(MiscWidening, TheLastNameEndsTheWalkAlsoBeforeTheFirst)
{
    EXPECT_EQ(widened_list("ndi_mode", "high", "low"), "[]");
    EXPECT_EQ(widened_list("ViStrategy", "osd", "50"), "[]");
    EXPECT_EQ(widened_list("ndi_mode", "264P50", "26"), "['264P50']");
    EXPECT_EQ(widened_list("ndi_mode", "265P50", "26"), "[]") << "264P50 begins with 26";
    EXPECT_EQ(widened_list("hdmivideoformat", "4KP30", "1080P60"), "[]");
}

TEST_F(MiscWidening, AShortNameIsTheFirstThatBeginsWithIt)
{
    EXPECT_EQ(widened_list("ndi_mode", "l", "h"), "['low','medium','high']");
    EXPECT_EQ(widened_list("ndi_mode", "26", "265"), "['264P50','264P60','265P50']");
    EXPECT_EQ(widened_list("hdmivideoformat", "1080P5", "720P6"),
              "['1080P50','1080I60','1080I50','720P60']");
    EXPECT_EQ(widened_list("hdmivideoformat", "1080P50", "1080P"), "[]");
    EXPECT_EQ(widened_list("ViStrategy", "", ""), "['50']");
    EXPECT_EQ(widened_list("ViStrategy", "60", ""), "[]");
    EXPECT_EQ(widened_list("ViStrategy", "", "60"), "['50','60']");
}

TEST_F(MiscWidening, UnknownNamesNeitherStartNorEndIt)
{
    EXPECT_EQ(widened_list("ViStrategy", "none", "osd"), "[]");
    EXPECT_EQ(widened_list("ViStrategy", "60", "none"), "['60','dial','osd']");
    EXPECT_EQ(widened_list("ViStrategy", "50x", "osd"), "[]") << "longer than the name";
}

TEST_F(MiscWidening, OnlyTheFirstTwoElementsCount)
{
    EXPECT_EQ(widen("'ViStrategy':['60','dial','50','osd']"),
              "{'version':0,'ViStrategy':['60','dial']}");
}

TEST_F(MiscWidening, MembersWithoutTwoElementsAreDropped)
{
    EXPECT_EQ(widen("'ViStrategy':['50'],'ndi_mode':[],'hdmivideoformat':'1080P60','mirror':[1],"
                    "'flip':[],'lock':5,'version':0,'telnetEn':'x','trackMode':null,'a':[0,1]"),
              "{'version':0,'a':[0,1]}");
}

TEST_F(MiscWidening, NumbersAreNoNames)
{
    EXPECT_EQ(widen("'ViStrategy':[0,3],'ndi_mode':['off',1],'hdmivideoformat':[null,true]"),
              "{'version':0}");
}

TEST_F(MiscWidening, OtherMembersAreCopiedInOrder)
{
    EXPECT_EQ(widen("'mirror':[0,1],'ViStrategy':['dial','osd'],'modes':['a','z'],"
                    "'three':[1,2,3],'nested':[[1],{'b':2}],'vistrategy':['50','osd']"),
              "{'version':0,'mirror':[0,1],'ViStrategy':['dial','osd'],'modes':['a','z'],"
              "'three':[1,2,3],'nested':[[1],{'b':2}],'vistrategy':['50','osd']}");
}

TEST_F(MiscWidening, TheOldRangeIsLeftAlone)
{
    const json old = parse(legacy_range);
    json range(fix_old_misc_range_conf(old.get()));
    EXPECT_EQ(compact(old.get()), legacy_range);
    range.reset();
    EXPECT_EQ(compact(old.get()), legacy_range) << "nothing is shared";
}

TEST_F(MiscWidening, TracesEachMemberWithItsSize)
{
    widen("'ViStrategy':['50','osd'],'mirror':[0,1,2],'lock':[1],'plain':5");
    EXPECT_THAT(traces_of("fix_old_misc_range_conf"),
                ElementsAre("element is ViStrategy,size:2\n", "element is mirror,size:3\n",
                            "element is lock,size:1\n", "element is plain,size:0\n"));
}

TEST_F(MiscWidening, WhatIsNoObjectGivesAnEmptyRange)
{
    for (const char *old : {"[]", "[['50','osd']]", "5", "'text'", "null"}) {
        const json range(fix_old_misc_range_conf(parse(old).get()));
        EXPECT_EQ(compact(range.get()), "{'version':0}") << old;
    }
}

class MiscLegacyFile : public Misc {
protected:
    ~MiscLegacyFile() override { configure_free(values); }

    int load(const std::string &text)
    {
        write_data("values.json", text);
        return fix_old_misc_def_cur_conf((data + "/values.json").c_str(), values);
    }
    // All entries, one a line.
    std::string dump()
    {
        char text[4096] = "";
        conf_buffer_state state = {text, sizeof text, 0, 0};
        values->conf_loop(values, loop_2_buf, &state);
        return text;
    }

    configure *const values = configure_init();
};

TEST_F(MiscLegacyFile, EveryTypeBecomesText)
{
    EXPECT_EQ(load("{'text':'two words','empty':'','number':5,'negative':-7,'fraction':3.9,"
                   "'large':1e20,'small':-1e20,'yes':true,'no':false,'nothing':null,'list':[5],"
                   "'object':{'a':5},'utf8':'gr\xc3\xbc\xc3\x9f'}"),
              0);
    EXPECT_EQ(dump(), "text = \"two words\"\nempty = \"\"\nnumber = \"5\"\nnegative = \"-7\"\n"
                      "fraction = \"3\"\nlarge = \"2147483647\"\nsmall = \"-2147483648\"\n"
                      "yes = \"1\"\nno = \"0\"\nnothing = \"0\"\nlist = \"0\"\nobject = \"0\"\n"
                      "utf8 = \"gr\xc3\xbc\xc3\x9f\"\n");
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(MiscLegacyFile, OverwritesAndAdds)
{
    load("{'a':1,'b':2}");
    EXPECT_EQ(load("{'b':'x','c':3}"), 0);
    EXPECT_EQ(dump(), "a = \"1\"\nb = \"x\"\nc = \"3\"\n");
}

TEST_F(MiscLegacyFile, TextsOfAnyLengthAreKept)
{
    const std::string longer(1000, 'l');
    EXPECT_EQ(load("{'a':'" + longer + "'}"), 0);
    EXPECT_EQ(dump(), "a = \"" + longer + "\"\n");
}

TEST_F(MiscLegacyFile, AMissingFileIsNotTraced)
{
    EXPECT_EQ(fix_old_misc_def_cur_conf((data + "/none.json").c_str(), values), -1);
    EXPECT_THAT(traces(), IsEmpty());
    EXPECT_EQ(dump(), "");
}

TEST_F(MiscLegacyFile, ABrokenFileIsTracedAndChangesNothing)
{
    load("{'a':1}");
    EXPECT_EQ(load("rubbish"), -1);
    EXPECT_THAT(traces_of("fix_old_misc_def_cur_conf"), ElementsAre("Error before: [rubbish]\n"));
    EXPECT_THAT(levels_of("Error before: [rubbish]", "fix_old_misc_def_cur_conf"), ElementsAre(3));
    EXPECT_EQ(dump(), "a = \"1\"\n");
}

TEST_F(MiscLegacyFile, WhatIsNoObjectHoldsNothing)
{
    for (const char *text : {"[]", "[1,'a']", "5", "'a'", "null"})
        EXPECT_EQ(load(text), 0) << text;
    EXPECT_EQ(dump(), "");
}
