#include "camparam/json_util.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/store.h"

using testing::ElementsAre;
using testing::MatchesRegex;

class JsonUtil : public Store {};

TEST_F(JsonUtil, GetIntReadsNumbersAndTruncatesThem)
{
    EXPECT_EQ(json_object_get_int(parse("7").get()), 7);
    EXPECT_EQ(json_object_get_int(parse("3.9").get()), 3);
    EXPECT_EQ(json_object_get_int(parse("-3.9").get()), -3);
}

TEST_F(JsonUtil, GetIntAnswersMinusOneForAnythingElse)
{
    for (const char *text : {"'7'", "true", "null", "[1]", "{'a':1}"})
        EXPECT_EQ(json_object_get_int(parse(text).get()), -1) << text;
    EXPECT_EQ(json_object_get_int(nullptr), -1);
    EXPECT_TRUE(traces().empty());
}

TEST_F(JsonUtil, GetStringReadsTexts)
{
    EXPECT_STREQ(json_object_get_string(parse("'text'").get()), "text");
    EXPECT_STREQ(json_object_get_string(parse("''").get()), "");
}

TEST_F(JsonUtil, GetStringTracesOnlyAMissingNode)
{
    for (const char *text : {"7", "true", "null", "['a']", "{'a':'b'}"})
        EXPECT_EQ(json_object_get_string(parse(text).get()), nullptr) << text;
    EXPECT_TRUE(traces().empty());

    EXPECT_EQ(json_object_get_string(nullptr), nullptr);
    EXPECT_THAT(traces_of("json_object_get_string"), ElementsAre("null\n"));
}

TEST_F(JsonUtil, TracesNothingBelowItsLevel)
{
    set_trace_level(5);
    json_object_get_string(nullptr);
    cJSON_Print_safe(nullptr);
    cJSON_Print_safe(parse("1").get());
    EXPECT_TRUE(traces().empty());

    set_trace_level(6);
    json_object_get_string(nullptr);
    EXPECT_EQ(traces().size(), 1U);
}

static int texts_made;

static void *count_text(size_t size)
{
    texts_made++;
    return malloc(size);
}

TEST_F(JsonUtil, PrintsTreesAlsoWhereTheirTraceIsDropped)
{
    const json tree = parse("{'a':1}");
    set_trace_level(5);
    cJSON_Hooks hooks = {count_text, free};
    cJSON_InitHooks(&hooks);
    for (const auto print :
         {cJSON_Print_safe, +[](const cJSON *node) { cJSON_Print2_safe(node, "tag"); }}) {
        texts_made = 0;
        print(tree.get());
        EXPECT_GT(texts_made, 0);
    }
    cJSON_InitHooks(nullptr);
    EXPECT_TRUE(traces().empty());
}

TEST_F(JsonUtil, LoadNumberStoresTheIntegerForm)
{
    const json object = parse("{'a':12,'half':2.5,'text':'12'}");
    int value = 99;
    EXPECT_EQ(json_object_load_number(object.get(), "a", &value), 0);
    EXPECT_EQ(value, 12);
    EXPECT_EQ(json_object_load_number(object.get(), "half", &value), 0);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(json_object_load_number(object.get(), "text", &value), -1);
    EXPECT_EQ(json_object_load_number(object.get(), "none", &value), -1);
    EXPECT_EQ(json_object_load_number(nullptr, "a", &value), -1);
    EXPECT_EQ(value, 2) << "failures store nothing";
}

TEST_F(JsonUtil, LoadDoubleStoresAllBits)
{
    const json object = parse("{'a':0.1,'big':1e300,'text':'1'}");
    double value = 99;
    EXPECT_EQ(json_object_load_double(object.get(), "a", &value), 0);
    EXPECT_EQ(value, 0.1);
    EXPECT_EQ(json_object_load_double(object.get(), "big", &value), 0);
    EXPECT_EQ(value, 1e300);
    EXPECT_EQ(json_object_load_double(object.get(), "text", &value), -1);
    EXPECT_EQ(json_object_load_double(object.get(), "none", &value), -1);
    EXPECT_EQ(json_object_load_double(nullptr, "a", &value), -1);
    EXPECT_EQ(value, 1e300) << "failures store nothing";
}

class LoadU8Array : public JsonUtil {
protected:
    int load(const char *text, int capacity)
    {
        return json_object_load_u8_array(parse(text).get(), "a", bytes, capacity);
    }

    unsigned char bytes[8] = {9, 9, 9, 9, 9, 9, 9, 9};
};

TEST_F(LoadU8Array, KeepsTheLowEightBits)
{
    EXPECT_EQ(load("{'a':[1,300,-1]}", 8), 3);
    EXPECT_THAT(bytes, ElementsAre(1, 44, 255, 9, 9, 9, 9, 9));
}

TEST_F(LoadU8Array, StopsAtTheCapacity)
{
    EXPECT_EQ(load("{'a':[1,300,-1]}", 2), 2);
    EXPECT_THAT(bytes, ElementsAre(1, 44, 9, 9, 9, 9, 9, 9));
}

TEST_F(LoadU8Array, StoresOneElementWithoutCapacity)
{
    EXPECT_EQ(load("{'a':[5,6]}", 0), 1);
    EXPECT_EQ(load("{'a':[5,6]}", -3), 1);
    EXPECT_THAT(bytes, ElementsAre(5, 9, 9, 9, 9, 9, 9, 9));
}

TEST_F(LoadU8Array, StoresZeroForWhatIsNoNumber)
{
    EXPECT_EQ(load("{'a':['7',null,[1],2,false,true]}", 8), 6);
    EXPECT_THAT(bytes, ElementsAre(0, 0, 0, 2, 0, 1, 9, 9))
        << "but for true, which cJSON keeps as 1";
}

TEST_F(LoadU8Array, AnEmptyArrayStoresNothing)
{
    EXPECT_EQ(load("{'a':[]}", 8), 0);
    EXPECT_EQ(bytes[0], 9);
}

TEST_F(LoadU8Array, RefusesAMissingKeyAndOtherTypes)
{
    EXPECT_EQ(load("{'b':[1]}", 8), -1);
    EXPECT_EQ(load("{'a':1}", 8), -1);
    EXPECT_EQ(load("{'a':{'x':1}}", 8), -1);
    EXPECT_EQ(bytes[0], 9);
}

TEST_F(LoadU8Array, NullObjectAnswersZero)
{
    EXPECT_EQ(json_object_load_u8_array(nullptr, "a", bytes, 8), 0);
    EXPECT_EQ(bytes[0], 9);
}

class LoadString : public JsonUtil {
protected:
    ~LoadString() override { free(slot); }

    int load(const char *text, const char *default_text)
    {
        return json_object_load_string(parse(text).get(), "a", &slot, default_text);
    }

    char *slot = nullptr;
};

TEST_F(LoadString, ReplacesTheTextOfTheSlot)
{
    EXPECT_EQ(load("{'a':'first'}", "default"), 0);
    EXPECT_STREQ(slot, "first");
    EXPECT_EQ(load("{'a':'second'}", "default"), 0);
    EXPECT_STREQ(slot, "second");
}

TEST_F(LoadString, EmptySlotGetsACopyOfTheDefault)
{
    const char *const text = "default";
    EXPECT_EQ(load("{'b':'x'}", text), 0);
    EXPECT_STREQ(slot, "default");
    EXPECT_NE(slot, text);
}

TEST_F(LoadString, MissingKeyOrObjectKeepsTheSlot)
{
    load("{'a':'first'}", "default");
    EXPECT_EQ(load("{}", "default"), 0);
    EXPECT_EQ(json_object_load_string(nullptr, "a", &slot, "default"), 0);
    EXPECT_STREQ(slot, "first");
}

TEST_F(LoadString, NullObjectStillGivesTheDefault)
{
    EXPECT_EQ(json_object_load_string(nullptr, "a", &slot, "default"), 0);
    EXPECT_STREQ(slot, "default");
}

TEST_F(LoadString, AMemberThatIsNoTextEmptiesTheSlot)
{
    EXPECT_EQ(load("{'a':5}", "default"), 0);
    EXPECT_EQ(slot, nullptr);
}

TEST_F(JsonUtil, PrintTracesTypeAndText)
{
    cJSON_Print_safe(parse("{'a':1}").get());
    EXPECT_THAT(traces_of("cJSON_Print_safe"), ElementsAre("type:0x40,{\n\t\"a\":\t1\n}\n"));
}

TEST_F(JsonUtil, PrintWithTagTracesTheTagToo)
{
    cJSON_Print2_safe(parse("5").get(), "mark");
    cJSON_Print2_safe(parse("5").get(), nullptr);
    EXPECT_THAT(traces_of("cJSON_Print2_safe"),
                ElementsAre("dbg_msg:mark type:0x8,5\n", "type:0x8,5\n"));
}

TEST_F(JsonUtil, PrintTracesANullNodeWithTheCaller)
{
    cJSON_Print_safe(nullptr);
    EXPECT_THAT(traces_of("cJSON_Print_safe"),
                ElementsAre(MatchesRegex("ERROR : json null,return:0x[0-9a-f]+\n")));
    cJSON_Print2_safe(nullptr, "mark");
    cJSON_Print2_safe(nullptr, nullptr);
    const std::vector<std::string> tagged = traces_of("cJSON_Print2_safe");
    EXPECT_THAT(tagged, testing::Each(MatchesRegex("ERROR : json null,return:0x[0-9a-f]+\n")));
    ASSERT_EQ(tagged.size(), 2U);
    EXPECT_NE(tagged[0], tagged[1]) << "each names its own caller";
}

TEST_F(JsonUtil, PrintTracesANodeThatCannotBePrinted)
{
    cJSON invalid = {};
    cJSON_Print_safe(&invalid);
    EXPECT_THAT(traces_of("cJSON_Print_safe"),
                ElementsAre(MatchesRegex("ERROR : json format,return:0x[0-9a-f]+\n")));
    cJSON_Print2_safe(&invalid, "mark");
    EXPECT_THAT(traces_of("cJSON_Print2_safe"),
                ElementsAre(MatchesRegex("ERROR : json format,return:0x[0-9a-f]+\n")));
    EXPECT_EQ(traces().back().level, 6);
}
