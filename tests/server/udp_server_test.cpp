// The server's socket, and how datagrams are told apart.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <set>
#include <string>

#include "support/store.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

// A command that answers with the mode it was called in.
int tell_mode(int mode, para_message *, cJSON **reply)
{
    *reply = cJSON_CreateObject();
    cJSON_AddNumberToObject(*reply, "mode", mode);
    return 0;
}

// What this process has open.
std::set<std::string> open_descriptors()
{
    std::set<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd"))
        names.insert(entry.path().filename());
    return names;
}

const param_command commands[] = {{"tell", tell_mode, nullptr}};

} // namespace

class Server : public Store {
protected:
    Server()
    {
        register_param_command("test", commands, 1);
        start_store();
    }

    // The kind of request that a msg_type stands for, told by the reply.
    std::string kind(const std::string &type)
    {
        client.send("{\"msg_type\":\"" + type + "\",\"msg_name\":\"tell\",\"af\":[]}");
        client.send("{\"msg_type\":\"get\",\"msg_id\":1}");
        const std::string reply = client.receive().value_or("none");
        if (reply.find("msg_id") != std::string::npos)
            return "dropped";
        client.receive();
        if (reply.find("mode") != std::string::npos)
            return reply.find("0") != std::string::npos ? "command get" : "command set";
        return reply.find("af") != std::string::npos ? "get" : "set";
    }

    Client client;
};

TEST_F(Server, TellsRequestsByTheirType)
{
    // "af" is answered by a get request alone; its file is missing, so with an empty object.
    for (const char *type : {"get", "ge", "g", ""})
        EXPECT_EQ(kind(type), "get") << type;
    for (const char *type : {"set", "se", "s"})
        EXPECT_EQ(kind(type), "set") << type;
    for (const char *type : {"gets", "api_get", "forget", "target", "getset", "setget"})
        EXPECT_EQ(kind(type), "command get") << type;
    for (const char *type : {"reset", "settle", "api_set", "offset"})
        EXPECT_EQ(kind(type), "command set") << type;
    for (const char *type : {"e", "t", "api", "Get", "SET", "gest"})
        EXPECT_EQ(kind(type), "dropped") << type;
}

TEST_F(Server, ARequestWithoutTypeIsTracedAndDropped)
{
    client.send("{\"msg_name\":\"n\"}");
    client.send("{\"msg_type\":5}");
    client.send("[1,2]");
    client.send("5");
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(count_traces("get msg_type err", "para_server_message_Process"), 4);
}

TEST_F(Server, ADatagramThatIsNotJsonIsTracedAndDropped)
{
    client.send("{\"msg_type\":\"get\"");
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(count_traces("cJSON_Parse err,Rec buffer: {\"msg_type\":\"get\"",
                           "para_server_message_Process"),
              1);
}

TEST_F(Server, AShareDatagramIsDropped)
{
    client.send(std::string(76, '\0'));
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(count_traces("cJSON_Parse err,Rec buffer: ", "para_server_message_Process"), 1);
}

TEST_F(Server, AnEmptyDatagramIsIgnored)
{
    client.send("");
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(count_traces("cJSON_Parse err,Rec buffer: "), 0);
}

TEST_F(Server, SurvivesEveryLengthOfRubbish)
{
    // Bytes of every kind but zero, which would end the text, and a request that breaks off.
    std::string rubbish, request = "{\"msg_type\":\"get\"";
    for (int i = 0; rubbish.size() < PARA_MESSAGE_MAX + 100; i++)
        rubbish += static_cast<char>((i * 7919 >> 3) % 255 + 1);
    while (request.size() < rubbish.size())
        request += ",\"af\":[[\"\\u00e9\",-1.5e+7,{\"zoom_value\":[true,null]}]]";
    int sent = 0;
    for (size_t length = 1; length <= rubbish.size(); length++) {
        for (const std::string &text : {rubbish, request}) {
            client.send(text.substr(0, length));
            sent++;
        }
        ASSERT_TRUE(client.stays_silent()) << length;
    }
    EXPECT_EQ(traces_of("para_server_message_Process").size(), static_cast<size_t>(sent));
}

TEST_F(Server, TextOfAnEarlierDatagramDoesNotLeakIntoAShorterOne)
{
    client.send("{\"msg_type\":\"get\",\"msg_name\":\"a long text\"}");
    EXPECT_THAT(client.receive().value_or(""), HasSubstr("a long text"));
    client.send("{\"msg_type\":\"get\",");
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(count_traces("cJSON_Parse err,Rec buffer: {\"msg_type\":\"get\","), 1);
}

TEST_F(Server, ServesADatagramOfAllOf4096Bytes)
{
    std::string request = "{\"msg_type\":\"get\",\"msg_id\":9}";
    request.insert(1, PARA_MESSAGE_MAX - request.size(), ' ');
    ASSERT_EQ(request.size(), 4096U);
    EXPECT_EQ(client.ask(request), "{'msg_id':9}");
}

TEST_F(Server, CutsALongerDatagram)
{
    std::string request = "{\"msg_type\":\"get\",\"msg_id\":9}";
    request.insert(1, 4097 - request.size(), ' ');
    client.send(request);
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(count_traces("cJSON_Parse err,Rec buffer: " + request.substr(0, PARA_MESSAGE_MAX)),
              1);
}

TEST_F(Server, IgnoresWhatFollowsTheRequest)
{
    client.send("{\"msg_type\":\"get\",\"msg_id\":9}\n");
    EXPECT_EQ(client.receive(), "{\n\t\"msg_id\":\t9\n}");
    client.send("{\"msg_type\":\"get\",\"msg_id\":9} {\"msg_id\":10");
    EXPECT_EQ(client.receive(), "{\n\t\"msg_id\":\t9\n}");
    client.send(std::string("{\"msg_type\":\"get\",\"msg_id\":9}\0rest", 34));
    EXPECT_EQ(client.receive(), "{\n\t\"msg_id\":\t9\n}");
}

TEST_F(Server, RefusesDeepNesting)
{
    client.send(std::string(PARA_MESSAGE_MAX, '['));
    std::string request = "{\"msg_type\":\"get\",\"af\":";
    client.send(request + std::string(10000, '[') + std::string(10000, ']') + "}");
    client.send(request + std::string(900, '[') + std::string(900, ']') + "}");
    EXPECT_EQ(client.receive().value_or("none"), "{\n\t\"af\":\t{\n\t}\n}")
        << "what the parser still takes is answered";
    EXPECT_TRUE(client.stays_silent());
}

TEST_F(Server, TakesWrongTypesForEveryKey)
{
    for (const char *value : {"null", "true", "7", "-1e300", "'x'", "[]", "{}", "[[1]]",
                              "[null,5,{}]", "{'all':'all'}", "['all']"}) {
        const std::string v = value;
        client.ask("{'msg_type':'get','msg_name':" + v + ",'msg_id':" + v + ",'msg_from':" + v +
                   ",'af':" + v + ",'end':" + v + "}");
        client.ask("{'msg_type':'set','msg_name':" + v + ",'msg_id':" + v + ",'msg_from':" + v +
                   ",'af':" + v + ",'end':" + v + "}");
        client.ask("{'msg_type':'api_get','msg_name':" + v + "}");
        ASSERT_TRUE(client.stays_silent()) << v;
    }
}

TEST_F(Server, AnswersTheSenderOfEachRequest)
{
    Client other;
    client.send("{\"msg_type\":\"get\",\"msg_id\":1}");
    other.send("{\"msg_type\":\"get\",\"msg_id\":2}");
    EXPECT_THAT(other.receive().value_or("none"), HasSubstr("2"));
    EXPECT_THAT(client.receive().value_or("none"), HasSubstr("1"));
}

TEST_F(Server, ListensOnAllAddresses)
{
    const std::optional<std::string> sockets = read_file("/proc/net/udp");
    ASSERT_TRUE(sockets);
    char address[32];
    snprintf(address, sizeof address, " 00000000:%04X ", PARA_SERVER_PORT);
    EXPECT_THAT(*sockets, HasSubstr(address));
}

TEST_F(Server, TracesWhatItRefusesAtLevelThree)
{
    client.send("rubbish");
    client.send("{}");
    client.ask("{'msg_type':'api_get'}");
    client.ask("{'msg_type':'api_get','msg_name':'unknown'}");
    client.ask("{'msg_type':'get','msg_from':'www'}");
    EXPECT_TRUE(client.stays_silent());

    const std::string dispatcher = "para_server_message_Process";
    const std::string executor = "Recive_message_Process_api";
    EXPECT_THAT(levels_of("cJSON_Parse err,Rec buffer: rubbish", dispatcher), ElementsAre(3));
    EXPECT_THAT(levels_of("get msg_type err", dispatcher), ElementsAre(3));
    EXPECT_THAT(levels_of("msg_name is NULL", executor), ElementsAre(3));
    EXPECT_THAT(levels_of("not found api command: unknown", executor), ElementsAre(3));
    EXPECT_THAT(levels_of("ERROR : json null", "Recive_message_Process_gset"), ElementsAre(3));
}

TEST_F(Server, CannotOpenATakenPort)
{
    forget_traces();
    EXPECT_EQ(para_server_init(), -1);
    EXPECT_THAT(traces_of("para_server_init"), ElementsAre("bind error ret = -1\n"));
    EXPECT_EQ(traces().front().level, 3);
}

TEST_F(Server, KeepsNoSocketThatItCouldNotBind)
{
    const std::set<std::string> before = open_descriptors();
    EXPECT_EQ(para_server_init(), -1);
    EXPECT_EQ(open_descriptors(), before);
}

class Dispatcher : public Store {};

TEST_F(Dispatcher, AnswersZeroWhateverTheDatagram)
{
    para_message message = {};
    message.socket = -1;
    for (const char *text :
         {"rubbish", "{}", R"({"msg_type":"other"})", R"({"msg_type":"get"})",
          R"({"msg_type":"set"})", R"({"msg_type":"get","msg_from":"www"})",
          R"({"msg_type":"set","msg_from":"www"})", R"({"msg_type":"api_get"})",
          R"({"msg_type":"api_set"})", R"({"msg_type":"api_get","msg_name":"unknown"})"}) {
        snprintf(message.text, sizeof message.text, "%s", text);
        EXPECT_EQ(para_server_message_Process(&message), 0) << text;
    }
}

class ServerSocket : public Store {};

TEST_F(ServerSocket, IsNotOpenedWithoutADescriptorForIt)
{
    const int unused = dup(0);
    close(unused);
    rlimit limit = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit none = {static_cast<rlim_t>(unused), limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_EQ(para_server_init(), -1);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_THAT(traces_of("para_server_init"), ElementsAre("bind error ret = -1\n"));
}

TEST_F(ServerSocket, IsClosedInProgramsThatTheHostStarts)
{
    const int descriptor = para_server_init();
    EXPECT_EQ(fcntl(descriptor, F_GETFD), FD_CLOEXEC);
    close(descriptor);
}

TEST_F(ServerSocket, OpensOnceAndMakesTheRegistry)
{
    const int descriptor = para_server_init();
    ASSERT_GE(descriptor, 0);
    EXPECT_THAT(traces_of("para_server_init"),
                ElementsAre("para_server sock:" + std::to_string(descriptor) + "\n"));
    EXPECT_THAT(traces_of("param_base_register_init"), ElementsAre("enter\n", "leave\n"));
    close(descriptor);
}

TEST_F(ServerSocket, RefusesADescriptorThatCannotBeWaitedOn)
{
    const rlimit many = {4096, 4096};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &many), 0);
    while (dup(0) < 1023) {
    }
    EXPECT_EQ(para_server_init(), -1);
    EXPECT_THAT(traces_of("para_server_init"), ElementsAre("sock:1024 is too large to wait on\n"));
    EXPECT_EQ(fcntl(1024, F_GETFD), -1) << "given back";
}

class Reply : public Store {
protected:
    Reply()
    {
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        receiver = socket(AF_INET, SOCK_DGRAM, 0);
        bind(receiver, reinterpret_cast<sockaddr *>(&address), sizeof address);
        socklen_t length = sizeof address;
        getsockname(receiver, reinterpret_cast<sockaddr *>(&address), &length);
        sender = socket(AF_INET, SOCK_DGRAM, 0);
    }

    ~Reply() override
    {
        close(receiver);
        close(sender);
    }

    ssize_t received() { return recv(receiver, bytes, sizeof bytes, MSG_DONTWAIT); }

    sockaddr_in address = {};
    int receiver, sender;
    char bytes[64] = "";
};

TEST_F(Reply, SendsTheTextWithoutItsZero)
{
    EXPECT_EQ(SendBuf2Client(sender, address, "text", 4), 0);
    EXPECT_EQ(received(), 4);
    EXPECT_EQ(std::string(bytes, 4), "text");
    EXPECT_THAT(traces_of("SendBuf2Client"), ElementsAre("send buf : text,buflen:4\n"));
    EXPECT_EQ(traces().front().level, 7);
}

TEST_F(Reply, SendsNothingForLengthZero)
{
    EXPECT_EQ(SendBuf2Client(sender, address, "text", 0), 0);
    EXPECT_EQ(received(), -1);
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(Reply, AFailedSendIsNotNoticed)
{
    EXPECT_EQ(SendBuf2Client(-1, address, "text", 4), 0);
    EXPECT_EQ(received(), -1);
}
