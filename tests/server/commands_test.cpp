// Commands that hosts register, and requests to them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <string>
#include <thread>
#include <vector>

#include "support/store.h"

using testing::ElementsAre;

namespace {

template <char letter> int answer(int mode, para_message *message, cJSON **reply)
{
    *reply = cJSON_CreateObject();
    cJSON_AddStringToObject(*reply, "from", std::string(1, letter).c_str());
    cJSON_AddNumberToObject(*reply, "mode", mode);
    const json request(cJSON_Parse(message->text));
    const cJSON *const body = cJSON_GetObjectItem(request.get(), "body");
    if (body != nullptr)
        cJSON_AddItemToObject(*reply, "body", cJSON_Duplicate(body, 1));
    return 0;
}

int silent(int, para_message *, cJSON **)
{
    return 0;
}

template <int result> int fail(int, para_message *, cJSON **reply)
{
    *reply = cJSON_CreateString("never sent");
    return result;
}

int lose_socket(int, para_message *message, cJSON **)
{
    message->socket = -1;
    return 0;
}

const char refusal[] = "{\"err\":\"Invalid API command\"}";

const param_command first[] = {
    {"alpha", answer<'a'>, nullptr},    {"alphabet", answer<'b'>, nullptr},
    {"silent", silent, nullptr},        {"failing", fail<1>, nullptr},
    {"failing_too", fail<-1>, nullptr}, {"half", nullptr, nullptr},
    {nullptr, answer<'n'>, nullptr},
};

} // namespace

class Commands : public Store {
protected:
    void start()
    {
        ASSERT_EQ(register_param_command("first", first, 7), 0);
        start_store();
        forget_traces();
    }

    std::string ask(const std::string &name, const std::string &more = "")
    {
        return client.ask("{'msg_type':'api_get','msg_name':'" + name + "'" + more + "}");
    }

    Client client;
};

TEST_F(Commands, AnswersWithTheHandlersTree)
{
    start();
    EXPECT_EQ(ask("alphabet"), "{'from':'b','mode':0}");
    EXPECT_THAT(
        traces_of("param_base_json_dispose"),
        ElementsAre("enter\n", "found, msg_name:alphabet, content: alphabet\n", "ret == 0\n"));
    EXPECT_EQ(client.request("{'msg_type':'api_set','msg_name':'alphabet'}"),
              "{\n\t\"from\":\t\"b\",\n\t\"mode\":\t1\n}");
}

TEST_F(Commands, HandlersReadTheirRequestThemselves)
{
    start();
    EXPECT_EQ(ask("alpha", ",'body':[1,2]"), "{'from':'b','mode':0,'body':[1,2]}");
}

TEST_F(Commands, ANameMayBeCutShortAndTheLastRowWins)
{
    start();
    EXPECT_EQ(ask("alpha"), "{'from':'b','mode':0}") << "alphabet stands behind alpha";
    EXPECT_EQ(ask("a"), "{'from':'b','mode':0}");
    EXPECT_EQ(ask("alphabets"), "{'err':'Invalid API command'}");
    EXPECT_EQ(ask("Alpha"), "{'err':'Invalid API command'}") << "letter by letter";
}

TEST_F(Commands, HandlersAreToldWhereTheirRequestCameFrom)
{
    static para_message seen;
    static const param_command where[] = {{"where",
                                           [](int, para_message *message, cJSON **) {
                                               seen = *message;
                                               return 0;
                                           },
                                           nullptr}};
    ASSERT_EQ(register_param_command("where", where, 1), 0);
    start();
    client.send("{\"msg_type\":\"api_get\",\"msg_name\":\"where\"}");
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(seen.sender_length, static_cast<int>(sizeof seen.sender));
    EXPECT_EQ(seen.sender.sin_family, AF_INET);
    EXPECT_EQ(seen.sender.sin_addr.s_addr, htonl(INADDR_LOOPBACK));
    EXPECT_NE(seen.sender.sin_port, 0);
    EXPECT_STREQ(seen.text, "{\"msg_type\":\"api_get\",\"msg_name\":\"where\"}");
    sockaddr_in server = {};
    socklen_t size = sizeof server;
    EXPECT_EQ(getsockname(seen.socket, reinterpret_cast<sockaddr *>(&server), &size), 0);
    EXPECT_EQ(server.sin_port, htons(PARA_SERVER_PORT));
}

TEST_F(Commands, TheNewestRegistrationIsSearchedFirst)
{
    start();
    static const param_command second[] = {{"alphabet", answer<'c'>, nullptr}};
    static const param_command other[] = {{"other", answer<'o'>, nullptr}};
    EXPECT_EQ(register_param_command("first", second, 1), 0) << "the same name again";
    EXPECT_EQ(register_param_command("other", other, 1), 0);
    EXPECT_EQ(ask("alphabet"), "{'from':'c','mode':0}");
    EXPECT_EQ(ask("other"), "{'from':'o','mode':0}");
}

TEST_F(Commands, AnEmptyNameFitsTheFirstRowSearched)
{
    start();
    static const param_command second[] = {{"x", answer<'x'>, nullptr},
                                           {"y", answer<'y'>, nullptr}};
    register_param_command("second", second, 2);
    EXPECT_EQ(ask(""), "{'from':'y','mode':0}");
}

TEST_F(Commands, ARowThatCannotBeCalledIsNeverMatched)
{
    start();
    EXPECT_EQ(ask("half"), "{'err':'Invalid API command'}");
}

TEST_F(Commands, AnUnknownCommandIsRefused)
{
    start();
    client.send("{\"msg_type\":\"api_get\",\"msg_name\":\"unknown\"}");
    EXPECT_EQ(client.receive(), refusal) << "these bytes exactly";
    EXPECT_EQ(count_traces("not found api command: unknown", "Recive_message_Process_api"), 1);
    EXPECT_THAT(traces_of("param_base_json_dispose"), ElementsAre("enter\n", "leave\n"));
}

TEST_F(Commands, AFailingCommandIsRefusedLikeAnUnknownOne)
{
    start();
    client.send("{\"msg_type\":\"api_get\",\"msg_name\":\"failing\"}");
    EXPECT_EQ(client.receive(), refusal);
    EXPECT_EQ(count_traces("ret == -1", "param_base_json_dispose"), 1);
    EXPECT_EQ(count_traces("not found api command: failing"), 1);
    client.send("{\"msg_type\":\"api_get\",\"msg_name\":\"failing_too\"}");
    EXPECT_EQ(client.receive(), refusal);
}

TEST_F(Commands, ARequestWithoutANameIsRefused)
{
    start();
    for (const char *request :
         {"{\"msg_type\":\"api_get\"}", "{\"msg_type\":\"api_get\",\"msg_name\":5}"}) {
        client.send(request);
        EXPECT_EQ(client.receive(), refusal);
    }
    EXPECT_EQ(count_traces("msg_name is NULL", "Recive_message_Process_api"), 2);
}

TEST_F(Commands, OnlyARequestWithoutANameIsAnError)
{
    register_param_command("first", first, 7);
    const auto process = [](const char *request) {
        para_message message = {};
        message.socket = -1;
        return Recive_message_Process_api(&message, parse(request).release(), PARA_GET);
    };
    EXPECT_EQ(process("{}"), -1);
    EXPECT_EQ(process("{'msg_name':5}"), -1);
    for (const char *request : {"{'msg_name':'alpha'}", "{'msg_name':'silent'}",
                                "{'msg_name':'failing'}", "{'msg_name':'unknown'}"})
        EXPECT_EQ(process(request), 0) << request;
}

TEST_F(Commands, ACommandWithoutATreeGetsNoReply)
{
    start();
    client.send("{\"msg_type\":\"api_get\",\"msg_name\":\"silent\"}");
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(count_traces("ret == 0", "param_base_json_dispose"), 1);
}

TEST_F(Commands, IncompleteRegistrationsAreRefused)
{
    const param_command nameless[] = {{nullptr, silent, nullptr}};
    const param_command no_handler[] = {{"name", nullptr, nullptr}};
    EXPECT_EQ(register_param_command(nullptr, first, 1), -1);
    EXPECT_EQ(register_param_command("name", nullptr, 1), -1);
    EXPECT_EQ(register_param_command("name", nameless, 1), -1);
    EXPECT_EQ(register_param_command("name", no_handler, 1), -1);
    EXPECT_EQ(register_param_command("name", first, 0), -1);
    EXPECT_EQ(register_param_command("name", first, -1), -1);
    EXPECT_EQ(count_traces("fail", "register_param_command"), 6);

    start_store();
    EXPECT_EQ(ask("name"), "{'err':'Invalid API command'}") << "nothing was registered";
}

TEST_F(Commands, RegisteringTracesEnterAndLeave)
{
    EXPECT_EQ(register_param_command("first", first, 1), 0);
    EXPECT_THAT(traces_of("register_param_command"), ElementsAre("enter\n", "leave\n"));
}

TEST_F(Commands, ALongRegistrationNameIsCut)
{
    const std::string long_name(300, 'n');
    EXPECT_EQ(register_param_command(long_name.c_str(), first, 1), 0);
    start_store();
    EXPECT_EQ(ask("alpha"), "{'from':'a','mode':0}");
}

TEST_F(Commands, TheRegistryIsMadeOnceByAnyThread)
{
    std::thread other([] { EXPECT_EQ(param_base_register_init(), 0); });
    EXPECT_EQ(param_base_register_init(), 0);
    other.join();
    register_param_command("first", first, 7);
    EXPECT_EQ(param_base_register_init(), 0) << "keeps what is registered";
    start_store();
    EXPECT_EQ(ask("alpha"), "{'from':'b','mode':0}");
}

TEST_F(Commands, NoRegistrationAnswersNothing)
{
    para_message message = {};
    const json request = parse("{'msg_name':'alpha'}");
    cJSON *reply = nullptr;
    EXPECT_EQ(param_base_json_dispose(&message, request.get(), &reply, 0), -1);
    EXPECT_EQ(reply, nullptr);
}

TEST_F(Commands, RegisteringWhileRequestsAreServed)
{
    start();
    set_trace_level(0); // else the lock on the test's record of traces orders the threads
    static const param_command more[] = {{"more", answer<'m'>, nullptr}};
    std::thread host([] {
        for (int i = 0; i < 50; i++)
            register_param_command("more", more, 1);
    });
    for (int i = 0; i < 50; i++)
        EXPECT_EQ(ask("alphabet"), "{'from':'b','mode':0}");
    host.join();
    EXPECT_EQ(ask("more"), "{'from':'m','mode':0}");
}

TEST_F(Commands, CannotMakeTheServerDeafOrDumb)
{
    const param_command table[] = {{"lose", lose_socket, nullptr}};
    register_param_command("test", table, 1);
    start_store();
    client.send(R"({"msg_type":"api_set","msg_name":"lose"})");
    EXPECT_EQ(client.ask("{'msg_type':'get','msg_name':'n'}"), "{'msg_name':'n'}");
}
