#include <chrono>
#include <fstream>
#include <set>
#include <sstream>

#include "cli/run.h"
#include "host/host_process.h"

namespace {

using std::chrono::steady_clock;

class ClientNetwork : public HostProcess {};

std::vector<std::string> silence(const std::string &)
{
    return {};
}

TEST_F(ClientNetwork, AsksAgainUntilTheRetriesAreUsedUp)
{
    const fake_server camera(silence);

    const run_result got = run({"get", "af", "--timeout", "0.05", "--retries", "3"});

    EXPECT_EQ(got.status, 3);
    EXPECT_EQ(got.output, "");
    EXPECT_EQ(got.errors, "camparam: no answer from 127.0.0.1 port 6800 to 4 requests; --timeout "
                          "and --retries wait longer\n");
    const std::vector<std::string> requests = camera.requests();
    ASSERT_EQ(requests.size(), 4u);
    EXPECT_EQ(requests[0], requests[3]);
}

TEST_F(ClientNetwork, RetriesTwiceUnlessToldOtherwise)
{
    const fake_server camera(silence);

    EXPECT_EQ(run({"get", "af", "--timeout", "0.05"}).status, 3);
    EXPECT_EQ(camera.requests().size(), 3u);
    EXPECT_EQ(run({"get", "af", "--timeout", "0.05", "--retries", "0"}).status, 3);
    EXPECT_EQ(camera.requests().size(), 4u);
}

TEST_F(ClientNetwork, TellsOfTheOneRequestWithoutRetries)
{
    const fake_server camera(silence);

    EXPECT_EQ(run({"get", "af", "--timeout", "0.05", "--retries", "0"}).errors,
              "camparam: no answer from 127.0.0.1 port 6800 to 1 request; --timeout and --retries "
              "wait longer\n");
}

// Datagrams that met a closed port of this network.
int refused_datagrams()
{
    std::ifstream file("/proc/self/net/snmp");
    std::string line;
    while (std::getline(file, line) && line.find("Udp: ") != 0) {
    }
    std::getline(file, line); // the first names the numbers, the second holds them
    std::istringstream numbers(line);
    std::string name;
    int received = 0, refused = 0;
    numbers >> name >> received >> refused;
    return refused;
}

TEST_F(ClientNetwork, RetriesThatAreAskedForWaitForAClosedPort)
{
    const int before = refused_datagrams();
    process client({CAMPARAM, "get", "af", "--timeout", "0.2", "--retries", "1000"});
    ASSERT_TRUE(wait_until([&] { return refused_datagrams() > before; }));
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{reply_to(request, "'af':{'zoom_value':4}")};
    });

    EXPECT_EQ(client.wait_for_end(), 0);
    EXPECT_EQ(client.output(), "af.zoom_value=4\n");
    EXPECT_EQ(client.errors(), "");
}

TEST_F(ClientNetwork, AClosedPortIsToldAfterTheRetries)
{
    const int before = refused_datagrams();
    const run_result got = run({"get", "af", "--timeout", "0.05", "--retries", "3"});

    EXPECT_EQ(got.status, 3);
    EXPECT_EQ(got.errors.find("camparam: nothing listens on"), 0U) << got.errors;
    EXPECT_EQ(refused_datagrams() - before, 4);
    EXPECT_EQ(run({"get", "af"}).status, 3);
    EXPECT_EQ(refused_datagrams() - before, 5) << "at once, unless told otherwise";
}

TEST_F(ClientNetwork, WaitsForTheWholeTimeout)
{
    const fake_server camera(silence);

    const steady_clock::time_point begin = steady_clock::now();
    EXPECT_EQ(run({"get", "af", "--timeout", "0.6", "--retries", "0"}).status, 3);

    EXPECT_GE(steady_clock::now() - begin, std::chrono::milliseconds(600));
}

TEST_F(ClientNetwork, AnAnswerToARetryCounts)
{
    int asked = 0;
    const fake_server camera([&](const std::string &request) {
        std::vector<std::string> replies;
        if (++asked >= 3)
            replies.push_back(reply_to(request, "'af':{'zoom_value':4}"));
        return replies;
    });

    // More retries than it takes, as on a busy machine an answer may miss the timeout.
    EXPECT_EQ(run({"get", "af.zoom_value", "--timeout", "0.1", "--retries", "1000"}).output,
              "af.zoom_value=4\n");
}

TEST_F(ClientNetwork, AnswersToOtherRequestsAreSkipped)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{
            quoted("{'msg_id':0,'af':{'zoom_value':1}}"), quoted("{'af':{'zoom_value':2}}"),
            quoted("{'msg_id':'" + id_of(request) + "','af':{'zoom_value':3}}"),
            reply_to(request, "'af':{'zoom_value':4}")};
    });

    EXPECT_EQ(run({"get", "af.zoom_value"}).output, "af.zoom_value=4\n");
}

TEST_F(ClientNetwork, AnswersUnderAnotherNameAreSkipped)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{
            reply_to(request, "'msg_name':'other','af':{'zoom_value':1}"),
            reply_to(request, "'msg_name':5,'af':{'zoom_value':2}"),
            reply_to(request, "'msg_name':'camparam','af':{'zoom_value':3}")};
    });

    EXPECT_EQ(run({"get", "af.zoom_value"}).output, "af.zoom_value=3\n");
}

TEST_F(ClientNetwork, AnswersOfOtherCommandsAreSkipped)
{
    const fake_server camera([](const std::string &request) {
        const std::string id = std::to_string(std::stoi(id_of(request)) + 1);
        return std::vector<std::string>{
            quoted("{'msg_id':" + id + ",'told':1}"), quoted("{'msg_name':'restore','told':2}"),
            quoted("{'msg_name':'rest','told':3}"), quoted("{'msg_name':'reset','told':4}")};
    });

    EXPECT_EQ(squeeze(run({"call", "reset"}).output), "{'told':4}");
}

TEST_F(ClientNetwork, EachRequestHasAnIdentifierOfItsOwn)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{reply_to(request, "'af':{},'audio':{}")};
    });

    for (int i = 0; i < 2; i++)
        run({"get", "af", "audio"});

    std::set<std::string> ids;
    for (const std::string &request : camera.requests())
        ids.insert(id_of(request));
    EXPECT_EQ(camera.requests().size(), 6U) << "a description, and the two modules";
    EXPECT_EQ(ids.size(), 6u) << testing::PrintToString(ids);
    EXPECT_EQ(ids.count("none"), 0u);
}

TEST_F(ClientNetwork, ARepeatedAnswerIsNotTakenForTheNext)
{
    // Each answer is sent twice, as after a retry when the first answer was merely late.
    const fake_server camera([](const std::string &request) {
        std::string answer = reply_to(request, "'af':{'zoom_value':9}");
        if (is_for(request, "describe"))
            answer = quoted("{'err':'Invalid API command'}");
        return std::vector<std::string>{answer, answer};
    });

    EXPECT_EQ(run({"set", "--number", "af.zoom_value=9"}).output, "af.zoom_value=9\n");
}

TEST_F(ClientNetwork, AClosedPortIsReportedAtOnce)
{
    const run_result got = run({"get", "af", "--timeout", "15"});

    EXPECT_EQ(got.status, 3);
    EXPECT_EQ(got.errors, "camparam: nothing listens on 127.0.0.1 port 6800; is the host process "
                          "running, is --host right?\n");
}

TEST_F(ClientNetwork, PortAndHostAreOptions)
{
    start_host();

    EXPECT_EQ(run({"--host", "localhost", "--port", "6800", "get", "af.zoom_value"}).output,
              "af.zoom_value=0\n");
    EXPECT_EQ(run({"get", "af.zoom_value", "--host", "127.0.0.1"}).output, "af.zoom_value=0\n");
    const run_result other = run({"get", "af", "--port", "6801"});
    EXPECT_EQ(other.status, 3);
    EXPECT_NE(other.errors.find("port 6801"), std::string::npos) << other.errors;
}

TEST_F(ClientNetwork, AnUnknownHostIsReported)
{
    const run_result got = run({"get", "af", "--host", "no such host"});

    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors.find("camparam: cannot find the host \"no such host\": "), 0u)
        << got.errors;
}

TEST(ClientHost, MayHaveAPort)
{
    const std::vector<std::string> quick = {"--retries", "0", "--timeout", "0.2", "get", "af"};
    const struct {
        const char *given, *reached;
    } hosts[] = {
        {"127.0.0.1:7", "127.0.0.1 port 7"},
        {"127.0.0.1", "127.0.0.1 port 9"},
        {"[127.0.0.1]:7", "127.0.0.1 port 7"},
        {"[::1]:7", "::1 port 7"},
        {"[::1]", "::1 port 9"},
        {"::1", "::1 port 9"},
        {"localhost:7", "localhost port 7"},
    };
    for (const auto &host : hosts) {
        std::vector<std::string> words = {"--port", "9", "--host", host.given};
        words.insert(words.end(), quick.begin(), quick.end());
        const run_result got = run(words);
        EXPECT_EQ(got.status, 3) << host.given;
        EXPECT_NE(got.errors.find(host.reached), std::string::npos) << got.errors;
    }
}

TEST(ClientHost, OfAnotherFormIsAUsageError)
{
    for (const char *host :
         {"", "a:b", "a:0", "a:65536", "a:", "[::1", "[::1]x", "[]:5", "a:1:2:x"})
        EXPECT_EQ(run({"--host", host, "get", "af"}).status, 2) << host;
}

TEST(ClientHost, MayComeFromTheEnvironment)
{
    setenv("CAMPARAM_HOST", "127.0.0.1:7", 1);
    const run_result got = run({"--retries", "0", "--timeout", "0.2", "get", "af"});
    EXPECT_NE(got.errors.find("127.0.0.1 port 7"), std::string::npos) << got.errors;
    const run_result other =
        run({"--host", "127.0.0.1:8", "--retries", "0", "--timeout", "0.2", "get", "af"});
    EXPECT_NE(other.errors.find("port 8"), std::string::npos) << other.errors;
}

} // namespace
