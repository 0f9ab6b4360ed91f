// The text of replies and files is, byte for byte, what cJSON_Print makes of the same values.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "support/store.h"

namespace {

// What the host's row answers: a copy of it.
cJSON *answer_of_host;

int get_answer(const char *, const cJSON *, cJSON **answer, const char *)
{
    *answer = cJSON_Duplicate(answer_of_host, 1);
    return 0;
}

int command_answer(int, para_message *, cJSON **reply)
{
    *reply = cJSON_Duplicate(answer_of_host, 1);
    return 0;
}

std::string printed(const cJSON *tree)
{
    char *const text = cJSON_Print(tree);
    const std::string copy = text != nullptr ? text : "";
    cJSON_free(text);
    return copy;
}

cJSON *object_with(const char *key, cJSON *value)
{
    cJSON *const object = cJSON_CreateObject();
    cJSON_AddItemToObject(object, key, value);
    return object;
}

cJSON *list_of(std::initializer_list<cJSON *> elements)
{
    cJSON *const array = cJSON_CreateArray();
    for (cJSON *const element : elements)
        cJSON_AddItemToArray(array, element);
    return array;
}

std::string every_character()
{
    std::string text;
    for (int byte = 1; byte < 256; byte++)
        text += static_cast<char>(byte);
    return text;
}

cJSON *nested(int depth)
{
    cJSON *tree = cJSON_CreateObject();
    for (int i = 0; i < depth; i++)
        tree = i % 2 == 0 ? list_of({tree, cJSON_CreateNumber(i)}) : object_with("in", tree);
    return tree;
}

cJSON *many_members(int count)
{
    cJSON *const object = cJSON_CreateObject();
    for (int i = 0; i < count; i++)
        cJSON_AddStringToObject(object, ("member" + std::to_string(i)).c_str(), "value");
    return object;
}

cJSON *number(double value)
{
    return cJSON_CreateNumber(value);
}

} // namespace

struct TreeCase {
    const char *name;
    cJSON *(*make)();
};

static std::ostream &operator<<(std::ostream &stream, const TreeCase &tree_case)
{
    return stream << tree_case.name;
}

namespace {

const TreeCase tree_cases[] = {
    {"EmptyObject", [] { return cJSON_CreateObject(); }},
    {"EmptyArray", [] { return cJSON_CreateArray(); }},
    {"EmptyText", [] { return cJSON_CreateString(""); }},
    {"True", [] { return cJSON_CreateTrue(); }},
    {"False", [] { return cJSON_CreateFalse(); }},
    {"Null", [] { return cJSON_CreateNull(); }},
    {"Raw", [] { return cJSON_CreateRaw("{\"as\":it is}"); }},
    {"Zero", [] { return number(0); }},
    {"NegativeZero", [] { return number(-0.0); }},
    {"Digit", [] { return number(-7); }},
    {"LargestInt", [] { return number(INT_MAX); }},
    {"SmallestInt", [] { return number(INT_MIN); }},
    {"BeyondInt", [] { return number(INT_MAX + 1.0); }},
    {"FarBeyondInt", [] { return number(-9007199254740993.0); }},
    {"Tenth", [] { return number(0.1); }},
    {"Third", [] { return number(1.0 / 3); }},
    {"AThousandthAndAHalf", [] { return number(-1000.0015); }},
    {"Huge", [] { return number(std::numeric_limits<double>::max()); }},
    {"OfTheMostDigits", [] { return number(-1e-300 / 3); }},
    {"Tiny", [] { return number(std::numeric_limits<double>::denorm_min()); }},
    {"Infinite", [] { return number(HUGE_VAL); }},
    {"NotANumber", [] { return number(std::nan("")); }},
    {"IntegerThatDiffersFromItsDouble",
     [] {
         cJSON *const node = number(1.5);
         node->valueint = 7;
         return node;
     }},
    {"EveryCharacter", [] { return cJSON_CreateString(every_character().c_str()); }},
    {"EveryCharacterInAKey",
     [] { return object_with(every_character().c_str(), cJSON_CreateTrue()); }},
    {"EmptyKey", [] { return object_with("", cJSON_CreateTrue()); }},
    {"TheSameKeyTwice",
     [] {
         cJSON *const object = object_with("a", number(1));
         cJSON_AddItemToObject(object, "a", number(2));
         return object;
     }},
    {"MixedArray",
     [] {
         return list_of({number(1), cJSON_CreateString("a"), cJSON_CreateObject(),
                         cJSON_CreateArray(), cJSON_CreateNull()});
     }},
    {"Nested", [] { return nested(40); }},
    {"LongText", [] { return cJSON_CreateString(std::string(10000, '\x01').c_str()); }},
    {"LongTextOfQuotes", [] { return cJSON_CreateString(std::string(25000, '"').c_str()); }},
    {"TextWithoutText", [] { return cJSON_CreateStringReference(nullptr); }},
    {"MemberWithoutAKey",
     [] {
         cJSON *const object = object_with("a", number(1));
         cJSON_AddItemToArray(object, number(2));
         return object;
     }},
    {"ConstantKeys",
     [] {
         cJSON *const object = cJSON_CreateObject();
         cJSON_AddItemToObjectCS(object, "a", number(1));
         cJSON_AddItemToObjectCS(object, "b", cJSON_CreateString("t"));
         return object;
     }},
    {"ManyMembers", [] { return many_members(1500); }},
};

} // namespace

// A host whose row and whose command answer the same.
class AnsweringHost : public Store {
protected:
    AnsweringHost()
    {
        const para_module row = {"host", nullptr, nullptr, nullptr, get_answer, nullptr, nullptr};
        register_para_handle_extern(&row);
        static const param_command command = {"answer", command_answer, nullptr};
        register_param_command("test", &command, 1);
    }
    ~AnsweringHost() override
    {
        stop_store();
        cJSON_Delete(answer_of_host);
    }

    void start_with(cJSON *answer)
    {
        answer_of_host = answer;
        start_store();
    }

    Client client;
};

class ReplyText : public AnsweringHost, public testing::WithParamInterface<TreeCase> {
protected:
    ReplyText() { start_with(GetParam().make()); }
};

TEST_P(ReplyText, OfACommandIsThatOfItsTree)
{
    EXPECT_EQ(client.request("{'msg_type':'do_get','msg_name':'answer'}"), printed(answer_of_host));
}

TEST_P(ReplyText, OfAHostsRowStandsInTheReplyAsItsTreeWould)
{
    cJSON *const reply = cJSON_CreateObject();
    cJSON_AddStringToObject(reply, "msg_name", "n");
    cJSON_AddItemToObject(reply, "host", cJSON_Duplicate(answer_of_host, 1));
    cJSON_AddNumberToObject(reply, "msg_id", -5);
    EXPECT_EQ(client.request("{'msg_type':'get','msg_name':'n','host':['all'],'msg_id':-5}"),
              printed(reply));
    cJSON_Delete(reply);
}

INSTANTIATE_TEST_SUITE_P(Of, ReplyText, testing::ValuesIn(tree_cases),
                         [](const auto &test_case) { return test_case.param.name; });

class ReplyOfNoValue : public AnsweringHost {
protected:
    void start_with_an_answer_of_type(int type)
    {
        cJSON *const answer = list_of({cJSON_CreateTrue()});
        answer->child->type = type;
        start_with(answer);
    }
};

// cJSON_Print makes no text of it.
TEST_F(ReplyOfNoValue, IsNotSent)
{
    start_with_an_answer_of_type(cJSON_Invalid);
    client.send(R"({"msg_type":"do_get","msg_name":"answer"})");
    client.send(R"({"msg_type":"get","msg_name":"n","host":1})");
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(count_traces("no memory for the reply"), 0);
}

TEST_F(ReplyOfNoValue, RawTextThatIsMissingIsNone)
{
    start_with_an_answer_of_type(cJSON_Raw);
    client.send(R"({"msg_type":"do_get","msg_name":"answer"})");
    EXPECT_TRUE(client.stays_silent());
}

// A handler may have a request served while it answers one: the replies do not mix.
namespace {

// The reply goes nowhere.
void serve_here(const char *text)
{
    sockaddr_in nobody = {};
    nobody.sin_family = AF_INET;
    para_message message = {};
    message.socket = -1;
    message.sender = nobody;
    snprintf(message.text, sizeof message.text, "%s", text);
    para_server_message_Process(&message);
}

int get_by_a_request(const char *, const cJSON *, cJSON **answer, const char *)
{
    serve_here(R"({"msg_type":"get","msg_name":"the inner request, with a longer name"})");
    *answer = cJSON_CreateTrue();
    return 0;
}

} // namespace

class NestedRequest : public Store {};

TEST_F(NestedRequest, LeavesTheReplyThatIsBeingWritten)
{
    const para_module row = {"host", nullptr, nullptr, nullptr, get_by_a_request, nullptr, nullptr};
    register_para_handle_extern(&row);
    start_store();
    Client client;
    for (int i = 0; i < 3; i++)
        EXPECT_EQ(client.ask("{'msg_type':'get','msg_name':'n','host':1,'msg_id':5}"),
                  "{'msg_name':'n','host':true,'msg_id':5}");
}

class ReplyMemory : public AnsweringHost {
protected:
    // Of the whole process; sanitizers count in their own way, and say 0 here.
    static size_t in_use()
    {
        const struct mallinfo2 heap = mallinfo2();
        return heap.uordblks + heap.hblkhd;
    }

    void serve_a_request() { serve_here(R"({"msg_type":"do_get","msg_name":"answer"})"); }
};

TEST_F(ReplyMemory, OfALargeReplyIsNotKept)
{
    start_with(number(1));
    set_trace_level(0);
    serve_a_request();
    const size_t before = in_use();

    cJSON *const small = answer_of_host;
    answer_of_host = cJSON_CreateString(std::string(50000, '\x01').c_str());
    serve_a_request();
    cJSON_Delete(answer_of_host);
    answer_of_host = small;

    EXPECT_LT(in_use(), before + 50000);
}
