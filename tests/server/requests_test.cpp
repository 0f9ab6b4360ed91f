// Get and set requests: which module is asked for what, and what is replied.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/store.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// What the modules under test were called with: "get key=item for row".
std::vector<std::string> calls;

std::string described(const char *kind, const char *key, const cJSON *item, const char *name)
{
    return std::string(kind) + " " + key + "=" + compact(item) + " for " + name;
}

int get_echo(const char *key, const cJSON *item, cJSON **answer, const char *name)
{
    EXPECT_EQ(*answer, nullptr);
    EXPECT_STREQ(key, item->string);
    calls.push_back(described("get", key, item, name));
    *answer = cJSON_CreateString(name);
    return -1; // ignored
}

int get_nothing(const char *key, const cJSON *item, cJSON **, const char *name)
{
    calls.push_back(described("get", key, item, name));
    return 0;
}

int set_echo(const char *key, const cJSON *item, const char *name)
{
    calls.push_back(described("set", key, item, name));
    return -1; // ignored
}

} // namespace

class Requests : public Store {
protected:
    Requests()
    {
        offer("host", set_echo, get_echo);
        offer("hostess", set_echo, get_echo);
        offer("quiet", nullptr, get_nothing);
        offer("deaf", nullptr, nullptr);
        offer("deafen", set_echo, get_echo);
        start_store();
        forget_traces();
    }

    static void offer(const char *name, int (*set)(const char *, const cJSON *, const char *),
                      int (*get)(const char *, const cJSON *, cJSON **, const char *))
    {
        const para_module row = {name, nullptr, nullptr, set, get, nullptr, nullptr};
        register_para_handle_extern(&row);
    }

    Client client;
};

TEST_F(Requests, GetAnswersInTheOrderOfTheRequest)
{
    EXPECT_EQ(client.ask("{'msg_type':'get','msg_name':'n','msg_id':5,'host':['a','b']}"),
              "{'msg_name':'n','msg_id':5,'host':'host'}");
    EXPECT_EQ(client.ask("{'host':1,'msg_id':5,'msg_type':'get','quiet':0,'hostess':null,"
                         "'msg_name':'n'}"),
              "{'host':'host','msg_id':5,'hostess':'host','msg_name':'n'}");
}

TEST_F(Requests, RepliesAreFormattedTextWithoutAZero)
{
    EXPECT_EQ(client.request("{'msg_type':'get','msg_id':5}"), "{\n\t\"msg_id\":\t5\n}");
}

TEST_F(Requests, AnUnansweredGetIsAnsweredByTheEmptyObject)
{
    EXPECT_EQ(client.request("{'msg_type':'get','nobody':['x'],'msg_from':'me'}"), "{\n}");
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(Requests, GetHandsTheItemToTheModule)
{
    client.ask("{'msg_type':'get','quiet':{'a':[1]}}");
    EXPECT_THAT(calls, ElementsAre("get quiet={'a':[1]} for quiet"));
}

TEST_F(Requests, AKeyThatBeginsWithARowNameIsThatRows)
{
    EXPECT_EQ(client.ask("{'msg_type':'get','hostx':1,'hostess':2}"),
              "{'hostx':'host','hostess':'host'}");
    EXPECT_THAT(calls, ElementsAre("get hostx=1 for host", "get hostess=2 for host"));
}

TEST_F(Requests, NamesOfRowsAreMatchedLetterByLetter)
{
    EXPECT_EQ(client.ask("{'msg_type':'get','Host':1,'HOST':2,' host':3,'ho st':4}"), "{}");
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(Requests, FirstPrefixMatchDecides)
{
    client.ask("{'msg_type':'get','deafen':1,'ends':2,'hos':3,'':4}");
    EXPECT_THAT(calls, IsEmpty()) << "the rows deaf and end have no functions";
    client.ask("{'msg_type':'set','deafen':1,'ends':2,'quiet':3}");
    EXPECT_THAT(calls, IsEmpty());
}

TEST_F(Requests, ARepeatedKeyIsAnsweredTwice)
{
    EXPECT_EQ(client.ask("{'msg_type':'get','host':1,'host':2}"), "{'host':'host','host':'host'}");
}

TEST_F(Requests, SetHandsEveryMemberOverAndEchoesTheIdentifiers)
{
    EXPECT_EQ(client.ask("{'host':{'a':1},'msg_id':7.5,'msg_type':'set','hostess':'x',"
                         "'msg_name':'n'}"),
              "{'msg_name':'n','msg_id':7}");
    EXPECT_THAT(calls, ElementsAre("set host={'a':1} for host", "set hostess='x' for host"));
}

TEST_F(Requests, SetHandsOverValuesOfEveryType)
{
    std::vector<std::string> expected;
    for (const char *value : {"null", "true", "7", "'x'", "[1,null]", "{}"}) {
        client.ask(std::string("{'msg_type':'set','host':") + value + "}");
        expected.push_back(std::string("set host=") + value + " for host");
    }
    EXPECT_EQ(calls, expected);
}

TEST_F(Requests, SetEchoesOnlyIdentifiersOfTheRightType)
{
    EXPECT_EQ(client.request("{'msg_type':'set','msg_id':'7','msg_name':8}"), "{\n}");
}

// '_' and the character of 7f differ by the bit that tells the two cases of a letter apart.
TEST_F(Requests, KeysOfARequestAreTheSameButForTheCaseOfLetters)
{
    EXPECT_EQ(client.ask(R"({"MSG_Type":"set","msg\u007fname":"other","Msg_NAME":"n"})"),
              "{'msg_name':'n'}");
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_id_2':1,'msg_':2,'msg_id':3}"), "{'msg_id':3}");
}

TEST_F(Requests, TheFirstOfEqualKeysCounts)
{
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_id':1,'MSG_ID':2}"), "{'msg_id':1}");
    EXPECT_EQ(client.ask("{'msg_type':'set','Msg_Type':'get','host':0}"), "{}");
}

TEST_F(Requests, ATypeCutShortIsServedAllTheSame)
{
    EXPECT_EQ(client.ask("{'msg_type':'g','host':0}"), "{'host':'host'}");
    EXPECT_EQ(client.ask("{'msg_type':'s','host':0,'msg_id':1}"), "{'msg_id':1}");
}

TEST_F(Requests, AnUnknownOriginNeedsNoConversion)
{
    EXPECT_EQ(client.ask("{'msg_type':'get','msg_from':'ww','msg_id':1}"), "{'msg_id':1}");
    EXPECT_EQ(client.ask("{'msg_type':'get','msg_from':'wwww','msg_id':2}"), "{'msg_id':2}");
    EXPECT_EQ(client.ask("{'msg_type':'get','msg_from':5,'msg_id':3}"), "{'msg_id':3}");
}

TEST_F(Requests, TheRequestIsTracedAtLevelSevenExactly)
{
    client.ask("{'msg_type':'get','msg_id':1}");
    EXPECT_THAT(traces_of("cJSON_Print_safe"),
                ElementsAre("type:0x40,{\n\t\"msg_type\":\t\"get\",\n\t\"msg_id\":\t1\n}\n"));
    forget_traces();
    for (const int level : {6, 8}) {
        set_trace_level(level);
        client.ask("{'msg_type':'get','msg_id':1}");
        EXPECT_THAT(traces_of("cJSON_Print_safe"), IsEmpty()) << level;
    }
}

TEST_F(Requests, WithoutATreeThereIsNothingToDo)
{
    para_message message = {};
    EXPECT_EQ(Recive_message_Process_gset(&message, nullptr, 0), -1);
    EXPECT_THAT(traces_of("Recive_message_Process_gset"), ElementsAre("ERROR : json null\n"));
}
