// Pattern modules: ranges and values.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <utility>
#include <vector>

#include "modules/text/pattern_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

using JsonRange = JsonModule;
using JsonValue = JsonModule;

TEST_F(JsonRange, TheFirstElementDecidesTheKind)
{
    init("{'n':[0,1],'e':['a','b'],'n_then_text':[0,'a'],'e_then_number':['a',0],'one':[5],"
         "'three':[1,2,3]}");
    for (const char *member : {"n", "n_then_text", "one", "three"})
        EXPECT_EQ(peek_json_enum_type("panel", member), PARA_KIND_NUMBER) << member;
    for (const char *member : {"e", "e_then_number"})
        EXPECT_EQ(peek_json_enum_type("panel", member), PARA_KIND_ENUM) << member;
}

TEST_F(JsonRange, WithoutAnElementTheKindIsZeroAndTraced)
{
    init();
    for (const char *member :
         {"empty", "plain", "brightnes", "", static_cast<const char *>(nullptr)}) {
        forget_traces();
        EXPECT_EQ(peek_json_enum_type("panel", member), 0);
        EXPECT_THAT(traces_of("peek_array_enum_type"), ElementsAre("error cJSON null\n"));
        EXPECT_THAT(levels_of("error cJSON null", "peek_array_enum_type"), ElementsAre(3));
    }
}

TEST_F(JsonRange, AnotherFirstElementIsKindZeroAndTraced)
{
    for (const char *first : {"true", "false", "null", "[1]", "{'a':1}"}) {
        forget_traces();
        const json array = parse("[" + std::string(first) + ",1]");
        EXPECT_EQ(peek_array_enum_type(array.get()), 0) << first;
        EXPECT_THAT(traces_of("peek_array_enum_type"), ElementsAre("error type cJSON_Invalid\n"));
        EXPECT_THAT(levels_of("error type cJSON_Invalid", "peek_array_enum_type"), ElementsAre(3));
    }
    init();
    EXPECT_EQ(peek_json_enum_type("panel", "flags"), 0);
}

TEST_F(JsonRange, KindsOfArrays)
{
    EXPECT_EQ(peek_array_enum_type(parse("[3,4]").get()), PARA_KIND_NUMBER);
    EXPECT_EQ(peek_array_enum_type(parse("['3','4']").get()), PARA_KIND_ENUM);
    EXPECT_THAT(traces(), IsEmpty());
    EXPECT_EQ(peek_array_enum_type(nullptr), 0);
    EXPECT_EQ(peek_array_enum_type(parse("[]").get()), 0);
    EXPECT_EQ(peek_array_enum_type(parse("5").get()), 0);
    EXPECT_EQ(count_traces("error cJSON null", "peek_array_enum_type"), 3);
}

TEST_F(JsonRange, EnumTextsHavePositionsAndBack)
{
    init();
    const std::vector<std::string> texts = {"off", "on", "auto"};
    for (int i = 0; i < 3; i++) {
        const char *const text = para_get_json_emum_str("panel", "mode", i);
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(text, texts[static_cast<size_t>(i)]);
        EXPECT_EQ(para_get_json_enum_index("panel", "mode", text), i);
    }
}

TEST_F(JsonRange, AnIndexOutsideTheListHasNoText)
{
    init();
    for (const int index : {-1, 3, INT_MIN, INT_MAX})
        EXPECT_EQ(para_get_json_emum_str("panel", "mode", index), nullptr) << index;
    EXPECT_EQ(para_get_json_emum_str("panel", "empty", 0), nullptr);
    EXPECT_EQ(para_get_json_emum_str("panel", "brightness", 0), nullptr) << "not a text";
    for (const char *member : unknown_members)
        EXPECT_EQ(para_get_json_emum_str("panel", member, 0), nullptr);
}

TEST_F(JsonRange, ATextOutsideTheListHasNoPosition)
{
    init();
    for (const char *text : {"of", "offf", "Off", "", "1"})
        EXPECT_EQ(para_get_json_enum_index("panel", "mode", text), -1) << text;
    EXPECT_EQ(para_get_json_enum_index("panel", "mode", nullptr), -1);
    EXPECT_EQ(para_get_json_enum_index("panel", "brightness", "50"), -1) << "no enum member";
    EXPECT_EQ(para_get_json_enum_index("panel", "empty", "off"), -1);
    for (const char *member : unknown_members)
        EXPECT_EQ(para_get_json_enum_index("panel", member, "off"), -1);
}

TEST_F(JsonRange, AnElementIsItsPositionOrItsNumber)
{
    init();
    const auto number_of = [](const char *element, const char *member) {
        return para_get_json_item_number("panel", parse(element).get(), member);
    };
    EXPECT_EQ(number_of("'auto'", "mode"), 2);
    EXPECT_EQ(number_of("'never'", "mode"), -1);
    EXPECT_EQ(number_of("'auto'", "brightness"), -1);
    EXPECT_EQ(number_of("'auto'", "nothing"), -1);
    EXPECT_EQ(number_of("-7", "brightness"), -7);
    EXPECT_EQ(number_of("7", "mode"), 7);
    EXPECT_EQ(number_of("3.9", "brightness"), 3);
    EXPECT_EQ(number_of("1e20", "brightness"), INT_MAX);
    EXPECT_EQ(number_of("-1e20", "brightness"), INT_MIN);
    for (const char *other : {"true", "false", "null", "[1]", "{'a':1}"})
        EXPECT_EQ(number_of(other, "mode"), -1) << other;
    EXPECT_EQ(para_get_json_item_number("panel", nullptr, "mode"), -1);
    EXPECT_EQ(para_get_json_item_number("panel", parse("'auto'").get(), nullptr), -1);
}

TEST_F(JsonRange, OnlyAStringNodeHasAText)
{
    EXPECT_STREQ(para_get_item_str(parse("'text'").get()), "text");
    EXPECT_STREQ(para_get_item_str(parse("''").get()), "");
    for (const char *other : {"5", "true", "null", "['a']", "{'a':'b'}"})
        EXPECT_EQ(para_get_item_str(parse(other).get()), nullptr) << other;
    EXPECT_EQ(para_get_item_str(nullptr), nullptr);
}

TEST_F(JsonRange, MinimumAndMaximumAreTheFirstAndTheLastElement)
{
    init("{'n':[-5,5],'e':['a','b','c'],'one':[7],'three':[1,2,3],'empty':[],'odd':[true,null],"
         "'wide':[-1e12,1e12]}");
    const auto range = [](const char *member) {
        return std::make_pair(para_get_json_min("panel", member),
                              para_get_json_max("panel", member));
    };
    EXPECT_EQ(range("n"), std::make_pair(-5, 5));
    EXPECT_EQ(range("e"), std::make_pair(0, 2)) << "positions";
    EXPECT_EQ(range("one"), std::make_pair(7, 7));
    EXPECT_EQ(range("three"), std::make_pair(1, 3));
    EXPECT_EQ(range("wide"), std::make_pair(INT_MIN, INT_MAX));
    for (const char *member : {"empty", "odd"})
        EXPECT_EQ(range(member), std::make_pair(-1, -1)) << member;
    for (const char *member : unknown_members)
        EXPECT_EQ(range(member), std::make_pair(-1, -1)) << text_or_none(member);
}

TEST_F(JsonRange, UnknownModulesHaveNothing)
{
    init();
    for (const char *module : unknown_modules)
        expect_unknown(module);
    for (const char *module : {"pane", "panels", ""})
        expect_unknown_row(module);
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(JsonValue, NumbersAreReadAsFarAsTheyGo)
{
    init("{'a':[0,1],'b':[0,1],'c':[0,1],'d':[0,1]}",
         "a = '12 apples'\nb = 'x'\nc = ''\nd = '-4'\ne = '9'\n");
    EXPECT_EQ(para_get_json_cur("panel", "a"), 12);
    EXPECT_EQ(para_get_json_cur("panel", "b"), 0);
    EXPECT_EQ(para_get_json_cur("panel", "c"), 0);
    EXPECT_EQ(para_get_json_cur("panel", "d"), -4);
    EXPECT_EQ(para_get_json_cur("panel", "e"), 9) << "not in the range";
    EXPECT_EQ(para_get_json_def("panel", "e"), 9);
}

TEST_F(JsonValue, NumbersBeyondAnIntAreSaturated)
{
    init("{'a':[0,1],'b':[0,1],'c':[0,1],'d':[0,1]}",
         "a = '2147483648'\nb = '-2147483649'\nc = '99999999999999999999999'\n"
         "d = '-99999999999999999999999'\n");
    EXPECT_EQ(para_get_json_cur("panel", "a"), INT_MAX);
    EXPECT_EQ(para_get_json_def("panel", "b"), INT_MIN);
    EXPECT_EQ(para_get_json_def("panel", "c"), INT_MAX);
    EXPECT_EQ(para_get_json_cur("panel", "d"), INT_MIN);
    EXPECT_EQ(query("['all']"), "{'a':2147483647,'b':-2147483648,'c':2147483647,'d':-2147483648}");
    EXPECT_EQ(query("['a','d']"), "{'a':2147483647,'d':-2147483648}");
    EXPECT_EQ(value("c"), "99999999999999999999999") << "the text stays";
}

TEST_F(JsonValue, AnEnumTextOutsideTheListHasNoNumber)
{
    init(panel_range, "mode = 'never'\n");
    EXPECT_EQ(para_get_json_cur("panel", "mode"), -1);
    EXPECT_EQ(para_get_json_def("panel", "mode"), -1);
    EXPECT_EQ(value("mode"), "never");
}

TEST_F(JsonValue, UnknownMembersHaveNone)
{
    init();
    for (const char *member : unknown_members) {
        EXPECT_EQ(para_get_json_cur("panel", member), -1);
        EXPECT_EQ(para_get_json_def("panel", member), -1);
        EXPECT_EQ(value(member), "none");
    }
    EXPECT_EQ(para_get_json_cur("panel", "unset"), -1) << "in the range alone";
}

TEST_F(JsonValue, TheTextIsCopiedWhenItFits)
{
    init();
    char text[8] = "xxxxxxx";
    EXPECT_EQ(para_get_json_string("panel", "single", text, 5), 0);
    EXPECT_STREQ(text, "only");
    EXPECT_EQ(text[5], 'x');
    for (const int size : {4, 1, 0, -1})
        EXPECT_NE(para_get_json_string("panel", "single", text, size), 0) << size;
    EXPECT_STREQ(text, "only");
}

TEST_F(JsonValue, TextsOf255CharactersAreReadAndLongerOnesAreNot)
{
    const std::string fits(255, 'f'), longer(256, 'l');
    init("{'fits':['a','" + fits + "'],'longer':['a','" + longer + "'],'number':[0,1]}",
         "fits = '" + fits + "'\nlonger = '" + longer + "'\nnumber = '7" + std::string(255, ' ') +
             "x'\n");
    EXPECT_EQ(para_get_json_cur("panel", "fits"), 1);
    EXPECT_EQ(para_get_json_def("panel", "fits"), 1);
    EXPECT_EQ(para_get_json_cur("panel", "longer"), -1);
    EXPECT_EQ(para_get_json_def("panel", "longer"), -1);
    EXPECT_EQ(para_get_json_cur("panel", "number"), -1);
    EXPECT_EQ(value("longer"), longer) << "a larger buffer takes it";
    EXPECT_EQ(query("['fits','longer','number']"), "{'fits':'" + fits + "'}");
    EXPECT_EQ(object(0), "{'fits':'" + fits + "','longer':'" + longer + "','number':7}");
}
