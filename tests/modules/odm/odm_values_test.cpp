// Values of the ODM store.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "modules/odm/odm_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

using OdmGetter = Odm;
using OdmSetter = Odm;

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

TEST_F(OdmSetter, ATextThatDiffersInCaseIsAnotherOne)
{
    init("{'version':1,'text':'Maker'}");
    EXPECT_EQ(_para_set_odm_string("text", "maker"), 1);
    EXPECT_EQ(text("text"), "maker");
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
    stop_clock();
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
    EXPECT_EQ(text("text"), "x");
}

TEST_F(OdmSetter, ANullKeyChangesNothing)
{
    init("{'version':1}");
    EXPECT_EQ(_para_set_odm_int(nullptr, 5), 0);
    EXPECT_EQ(_para_set_odm_string(nullptr, "x"), 0);
    EXPECT_EQ(para_set_odm_int(nullptr, 5), 0);
    EXPECT_THAT(told, IsEmpty());
    EXPECT_EQ(saved_document(), "{'version':1}");
}

TEST_F(OdmSetter, ANullTextForAnAbsentKeyStoresNothingAndCountsAsAChange)
{
    init("{'version':1}");
    EXPECT_EQ(_para_set_odm_string("absent", nullptr), 1);
    EXPECT_THAT(told, IsEmpty());
    EXPECT_FALSE(change_pending());
    EXPECT_EQ(para_set_odm_string("absent", nullptr), 0);
    EXPECT_THAT(told, testing::ElementsAre("absent"));
    EXPECT_TRUE(change_pending());
    EXPECT_EQ(text("absent"), "error -2");
    EXPECT_EQ(saved_document(), "{'version':1}");
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
