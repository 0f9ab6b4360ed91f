#include <sys/resource.h>

#include <chrono>

#include "cli/run.h"
#include "host/host_process.h"

namespace {

class WaitCommand : public HostProcess {};

double seconds_of(const std::string &output)
{
    const json tree(cJSON_Parse(output.c_str()));
    const cJSON *const seconds = cJSON_GetObjectItem(tree.get(), "seconds");
    return cJSON_IsNumber(seconds) ? seconds->valuedouble : -1;
}

TEST_F(WaitCommand, EndsAtOnceWhenTheHostAnswers)
{
    start_host();

    const run_result got = run({"wait"});

    EXPECT_EQ(got.status, 0) << got.errors;
    EXPECT_EQ(got.output, "");
    EXPECT_EQ(got.errors, "");
}

TEST_F(WaitCommand, TellsAsJsonHowLongItTook)
{
    start_host();

    const run_result got = run({"wait", "--json"});

    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.output.find("{\"answered\":true,\"seconds\":"), 0u) << got.output;
    EXPECT_GE(seconds_of(got.output), 0) << got.output;
}

TEST_F(WaitCommand, WaitsForAHostThatStartsLater)
{
    process client({CAMPARAM, "wait", "--json"});
    // A second client ends with what the first sees as well: a refused port.
    EXPECT_EQ(run({"wait", "--for", "0.6"}).status, 3);
    EXPECT_FALSE(client.has_ended());

    start_host();

    EXPECT_EQ(client.wait_for_end(), 0) << client.errors();
    EXPECT_GE(seconds_of(client.output()), 0.5) << client.output();
}

TEST_F(WaitCommand, EndsWithoutAnAnswerInTime)
{
    const run_result refused = run({"wait", "--for", "0.3"});

    EXPECT_EQ(refused.status, 3);
    EXPECT_EQ(refused.output, "");
    EXPECT_EQ(refused.errors,
              "camparam: 127.0.0.1 port 6800 has not answered in time; --for waits longer\n");
    const run_result as_json = run({"wait", "--for", "0.6", "--json"});
    EXPECT_EQ(as_json.status, 3);
    EXPECT_EQ(as_json.output.find("{\"answered\":false,\"seconds\":"), 0u) << as_json.output;
    EXPECT_GE(seconds_of(as_json.output), 0.6);
}

TEST_F(WaitCommand, AsksASilentHostAboutFourTimesASecond)
{
    const fake_server camera([](const std::string &) { return std::vector<std::string>{}; });

    EXPECT_EQ(run({"wait", "--for", "2"}).status, 3);

    const size_t asked = camera.requests().size();
    EXPECT_GE(asked, 2u);
    EXPECT_LE(asked, 9u);
}

TEST_F(WaitCommand, RestsWhileThePortIsRefused)
{
    EXPECT_EQ(run({"wait", "--for", "2"}).status, 3);

    rusage used = {};
    ASSERT_EQ(getrusage(RUSAGE_CHILDREN, &used), 0);
    EXPECT_LT(used.ru_utime.tv_sec + used.ru_stime.tv_sec, 1);
    EXPECT_LT(used.ru_utime.tv_usec + used.ru_stime.tv_usec, 1000000);
}

TEST_F(WaitCommand, TimeoutAndRetriesDoNotCount)
{
    const fake_server camera([](const std::string &) { return std::vector<std::string>{}; });

    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(run({"wait", "--for", "0.3", "--timeout", "3600", "--retries", "1000"}).status, 3);

    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(300));
}

TEST_F(WaitCommand, GarbageAndAnswersToOthersAreNone)
{
    const fake_server camera([](const std::string &) {
        return std::vector<std::string>{"", "garbage", "{}", "{\"msg_id\":0}", "[1]"};
    });

    EXPECT_EQ(run({"wait", "--for", "0.6"}).status, 3);
}

TEST_F(WaitCommand, AnAnswerAmongGarbageCounts)
{
    const fake_server camera([](const std::string &request) {
        const std::string answer = quoted("{'msg_id':" + id_of(request) + "}");
        return std::vector<std::string>{"garbage", answer, answer};
    });

    EXPECT_EQ(run({"wait"}).status, 0);
}

TEST_F(WaitCommand, AnAnswerThatTakesLongerThanAPollCounts)
{
    // Answers each request when the next one has come.
    std::string last;
    const fake_server camera([&](const std::string &request) {
        std::vector<std::string> late;
        if (!last.empty())
            late.push_back(quoted("{'msg_id':" + id_of(last) + "}"));
        last = request;
        return late;
    });

    EXPECT_EQ(run({"wait"}).status, 0);
    EXPECT_GE(camera.requests().size(), 2u);
}

TEST_F(WaitCommand, RefusesTimesThatAreNone)
{
    for (const char *time : {"0", "-1", "nan", "86401", "soon", ""})
        EXPECT_EQ(run({"wait", "--for", time}).status, 2) << time;
}

TEST_F(WaitCommand, AnUnknownHostIsReportedAtOnce)
{
    const run_result got = run({"wait", "--host", "no such host"});

    EXPECT_EQ(got.status, 1);
    EXPECT_NE(got.errors.find("cannot find the host"), std::string::npos) << got.errors;
}

} // namespace
