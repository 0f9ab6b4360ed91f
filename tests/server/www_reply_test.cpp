// Web names: the reply.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "server/www_fixture.h"

using WwwReply = Www;

TEST_F(WwwReply, WithoutWebNamesIsSuccess)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{}"), "result=success");
    EXPECT_EQ(shown("{'msg_name':'page','msg_id':5}"), "result=success");
    EXPECT_EQ(shown("{'lens':{},'stream':{'unknown':1},'nobody':{'zoom':1}}"), "result=success");
}

TEST_F(WwwReply, IsTheSameFromBothFunctions)
{
    start_with(lens_file);
    const json reply = parse("{'msg_id':5,'lens':{'zoom':7,'mode':'auto'}}");
    char *const text = para_reverse_convert_www_opt(reply.get());
    EXPECT_STREQ(text, "z=7&m=auto");
    free(text);
    EXPECT_EQ(shown(reply.get()), "z=7&m=auto");
    EXPECT_EQ(compact(reply.get()), "{'msg_id':5,'lens':{'zoom':7,'mode':'auto'}}")
        << "the reply stays the caller's";
}

TEST_F(WwwReply, JoinsMembersOfAllModulesInOrder)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{'stream':{'name':'cam','bit_rate':4096000},'msg_id':1,"
                    "'lens':{'mode':'auto','zoom':7,'gain':1.5,'position':3}}"),
              "n=cam&br=4096&m=auto&z=7&f=1.50&p=4");
}

TEST_F(WwwReply, SkipsWhatHasNoWebName)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{'nobody':{'zoom':1},'lens':{'x':1,'zoom':2,'Zoom':3},'bare':{'zoom':4},"
                    "'lists':{'void':5,'number':6,'text':7,'object':8,'last':9},'number':{'a':1}}"),
              "z=2&x=9");
    EXPECT_EQ(count_traces("can not find nobody.zoom", "get_http_name"), 1);
    EXPECT_EQ(count_traces("can not find lens.x", "get_http_name"), 1);
}

TEST_F(WwwReply, SkipsMembersThatAreNeitherTextNorNumber)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{'lens':{'zoom':null,'rate':true,'gain':[1],'mode':{'a':1}}}"),
              "result=success");
    EXPECT_EQ(shown("{'lens':{'zoom':null,'odd':1,'rate':false,'mode':'x'}}"), "o=1&m=x");
}

TEST_F(WwwReply, SkipsAnswersThatAreNoObject)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{'lens':'zoom','stream':5,'lists':[{'last':1}]}"), "result=success");
}

TEST_F(WwwReply, TheFirstPieceIsJoinedByThousandsCountedAndFraction)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{'lens':{'rate':4096000}}"), "&k=4096");
    EXPECT_EQ(shown("{'lens':{'rate':4096500}}"), "&k=4096.5");
    EXPECT_EQ(shown("{'lens':{'position':1}}"), "&p=2");
    EXPECT_EQ(shown("{'lens':{'gain':1}}"), "&f=1.00");
    EXPECT_EQ(shown("{'lens':{'rate':1000,'zoom':2,'mode':'x'}}"), "&k=1&z=2&m=x");
}

TEST_F(WwwReply, TheFirstPieceIsNotJoinedOtherwise)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{'lens':{'zoom':5}}"), "z=5");
    EXPECT_EQ(shown("{'lens':{'every':5}}"), "g=5");
    EXPECT_EQ(shown("{'lens':{'odd':5}}"), "o=5");
    EXPECT_EQ(shown("{'lens':{'untyped':5}}"), "u=5");
    EXPECT_EQ(shown("{'lens':{'mode':'5'}}"), "m=5");
    for (const char *member : {"rate", "position", "gain", "every"}) {
        const std::string reply = std::string("{'lens':{'") + member + "':'text'}}";
        EXPECT_NE(shown(reply)[0], '&') << "texts have no modifier: " << member;
    }
}

TEST_F(WwwReply, AnUnknownMemberInFrontLeavesTheFirstPieceFirst)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{'lens':{'unknown':1,'mode':null,'zoom':5}}"), "z=5");
}

TEST_F(WwwReply, ANumberWithoutModifierIsItsIntegerForm)
{
    start_with(lens_file);
    for (const char *key : {"zoom", "every", "odd", "lower", "kilo", "untyped", "mode"}) {
        const auto value = [key](const std::string &number) {
            const std::string text = shown(std::string("{'lens':{'") + key + "':" + number + "}}");
            return text.substr(text.find('=') + 1);
        };
        EXPECT_EQ(value("0"), "0") << key;
        EXPECT_EQ(value("-5"), "-5") << key;
        EXPECT_EQ(value("3.99"), "3") << key;
        EXPECT_EQ(value("-3.99"), "-3") << key;
        EXPECT_EQ(value("2147483647"), "2147483647") << key;
        EXPECT_EQ(value("-2147483648"), "-2147483648") << key;
        EXPECT_EQ(value("4294967296"), "2147483647") << key;
        EXPECT_EQ(value("1e300"), "2147483647") << key;
        EXPECT_EQ(value("-1e300"), "-2147483648") << key;
    }
}

TEST_F(WwwReply, ThousandsAreShownWholeOrWithOneDigit)
{
    start_with(lens_file);
    const auto thousands = [](const std::string &number) {
        return shown("{'lens':{'rate':" + number + "}}");
    };
    EXPECT_EQ(thousands("0"), "&k=0");
    EXPECT_EQ(thousands("-1000"), "&k=-1");
    EXPECT_EQ(thousands("-4096500"), "&k=-4096.5");
    EXPECT_EQ(thousands("1"), "&k=0.0");
    EXPECT_EQ(thousands("-1"), "&k=-0.0");
    EXPECT_EQ(thousands("999"), "&k=1.0");
    EXPECT_EQ(thousands("1250"), "&k=1.2") << "halfway to the even digit";
    EXPECT_EQ(thousands("4096000.75"), "&k=4096") << "the integer form";
    EXPECT_EQ(thousands("-2147483648"), "&k=-2147483.8");
    EXPECT_EQ(thousands("1e300"), "&k=2147483.8");
}

TEST_F(WwwReply, ThousandsAreComputedInSinglePrecision)
{
    start_with(lens_file);
    // In double precision they would be 2147483.6 and 1073741.8.
    EXPECT_EQ(shown("{'lens':{'rate':2147483647}}"), "&k=2147483.8");
    EXPECT_EQ(shown("{'lens':{'rate':1073741801}}"), "&k=1073741.9");
}

TEST_F(WwwReply, ACountedNumberIsOneMore)
{
    start_with(lens_file);
    const auto counted = [](const std::string &number) {
        return shown("{'lens':{'position':" + number + "}}");
    };
    EXPECT_EQ(counted("0"), "&p=1");
    EXPECT_EQ(counted("-1"), "&p=0");
    EXPECT_EQ(counted("-5"), "&p=-4");
    EXPECT_EQ(counted("1.9"), "&p=2");
    EXPECT_EQ(counted("2147483646"), "&p=2147483647");
    EXPECT_EQ(counted("2147483647"), "&p=2147483648") << "one more, even here";
    EXPECT_EQ(counted("-1e300"), "&p=-2147483647");
}

TEST_F(WwwReply, AFractionHasTwoDigits)
{
    start_with(lens_file);
    const auto fraction = [](const std::string &number) {
        return shown("{'lens':{'gain':" + number + "}}");
    };
    EXPECT_EQ(fraction("0"), "&f=0.00");
    EXPECT_EQ(fraction("3.14159"), "&f=3.14");
    EXPECT_EQ(fraction("-2.5"), "&f=-2.50");
    EXPECT_EQ(fraction("0.005001"), "&f=0.01");
    EXPECT_EQ(fraction("4294967296.75"), "&f=4294967296.75") << "beyond the integer form";
}

TEST_F(WwwReply, AHugeFractionIsCutWithItsPiece)
{
    start_with(lens_file);
    char digits[400];
    snprintf(digits, sizeof digits, "&f=%.2f", 1e300);
    EXPECT_EQ(shown("{'lens':{'gain':1e300}}"), std::string(digits, 63));
}

TEST_F(WwwReply, TextsPassUnchanged)
{
    start_with(lens_file);
    EXPECT_EQ(shown("{'lens':{'mode':'','scaled':'50%s%n &=\xC3\xA4','rate':'4096000'}}"),
              "m=&sk=50%s%n &=\xC3\xA4&k=4096000");
}

TEST_F(WwwReply, PercentSignsInWebNamesAreKept)
{
    start_with("{'lens':{'a':['%s%n','S'],'b':['%d','N'],'c':['100%','N','K']}}");
    EXPECT_EQ(shown("{'lens':{'a':'x','b':1,'c':2000}}"), "%s%n=x&%d=1&100%=2");
}

TEST_F(WwwReply, APieceIsCutAt63Characters)
{
    start_with(lens_file);
    const std::string letters(200, 'a');
    EXPECT_EQ(shown("{'lens':{'mode':'" + letters.substr(0, 60) + "','zoom':1}}"),
              "m=" + letters.substr(0, 60) + "&z=1");
    EXPECT_EQ(shown("{'lens':{'mode':'" + letters.substr(0, 61) + "','zoom':1}}"),
              "m=" + letters.substr(0, 61) + "&z=1");
    EXPECT_EQ(shown("{'lens':{'mode':'" + letters.substr(0, 62) + "','zoom':1}}"),
              "m=" + letters.substr(0, 61) + "&z=1");
    EXPECT_EQ(shown("{'lens':{'zoom':1,'mode':'" + letters + "','odd':2}}"),
              "z=1&m=" + letters.substr(0, 60) + "&o=2");
}

TEST_F(WwwReply, ALongWebNameIsCutWithItsValue)
{
    const std::string name(300, 'n');
    start_with("{'lens':{'a':['" + name + "','N'],'b':['" + name +
               "','N','K'],'c':['c','N'],"
               "'d':['" +
               name.substr(0, 60) + "','N']}}");
    EXPECT_EQ(shown("{'lens':{'a':1,'b':2,'c':3,'d':45}}"),
              name.substr(0, 63) + "&" + name.substr(0, 62) + "&c=3&" + name.substr(0, 60) + "=4");
}

TEST_F(WwwReply, GrowsWithEveryLengthOfPiece)
{
    start_with(lens_file);
    for (size_t letters = 0; letters <= 60; letters++) {
        json reply(cJSON_CreateObject());
        cJSON *const lens = cJSON_AddObjectToObject(reply.get(), "lens");
        std::string expected;
        for (int i = 0; i < 90; i++) {
            const std::string value(letters, static_cast<char>('a' + i % 26));
            cJSON_AddItemToObject(lens, "mode", cJSON_CreateString(value.c_str()));
            expected += (i == 0 ? "m=" : "&m=") + value;
        }
        ASSERT_EQ(shown(reply.get()), expected) << letters;
    }
}

TEST_F(WwwReply, MayBeLongerThanADatagramOfRequests)
{
    std::string file = "{'lens':{";
    std::string reply = "{'lens':{";
    std::string expected;
    for (int i = 0; i < 500; i++) {
        const std::string number = std::to_string(i);
        file += (i == 0 ? "'m" : ",'m") + number + "':['name" + number + "','N','K']";
        reply += (i == 0 ? "'m" : ",'m") + number + "':" + number + "000";
        expected += "&name" + number + "=" + number;
    }
    start_with(file + "}}");
    ASSERT_GT(expected.size(), 4096U);
    EXPECT_EQ(shown(reply + "}}"), expected);
}
