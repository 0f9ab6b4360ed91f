#include "cli/run.h"
#include "host/host_process.h"

namespace {

class RawCommand : public HostProcess {};

TEST_F(RawCommand, PrintsTheAnswerAsItCame)
{
    start_host();

    const run_result sent =
        run({"raw"}, "{\"msg_type\":\"get\",\"msg_id\":5,\"af\":[\"zoom_value\"]}\n");

    EXPECT_EQ(sent.status, 0);
    EXPECT_EQ(sent.output, "{\n\t\"msg_id\":\t5,\n\t\"af\":\t{\n\t\t\"zoom_value\":\t0\n\t}\n}\n");
}

TEST_F(RawCommand, ErrorAnswersCountAsRefused)
{
    start_host();

    const run_result sent = run({"raw"}, "{\"msg_type\":\"api_get\",\"msg_name\":\"nosuch\"}");

    EXPECT_EQ(sent.status, 4);
    EXPECT_EQ(sent.output, "{\"err\":\"Invalid API command\"}\n");
}

TEST_F(RawCommand, RefusesWhatTheStoreWouldDrop)
{
    start_host();

    for (const char *wrong : {"", "zoom", "[1]", "{", "{\"msg_id\":1}", "{\"msg_type\":1}"}) {
        const run_result sent = run({"raw"}, wrong);
        EXPECT_EQ(sent.status, 2) << wrong;
        EXPECT_EQ(sent.output, "");
        EXPECT_NE(sent.errors, "");
    }
    const run_result longest =
        run({"raw"}, "{\"msg_type\":\"get\",\"x\":\"" + std::string(PARA_MESSAGE_MAX, 'x') + "\"}");
    EXPECT_EQ(longest.status, 2);
}

TEST_F(RawCommand, SendsTheLongestRequest)
{
    start_host();
    const std::string begin = R"({"msg_type":"get","msg_id":5,"x":")", end = R"("})";
    const std::string filling(PARA_MESSAGE_MAX - begin.size() - end.size(), 'x');

    const run_result sent = run({"raw"}, begin + filling + end);

    EXPECT_EQ(sent.status, 0) << sent.errors;
    EXPECT_EQ(squeeze(sent.output), "{'msg_id':5}");
}

TEST_F(RawCommand, SkipsAnswersToOtherRequests)
{
    const fake_server camera([](const std::string &) {
        return std::vector<std::string>{"{\"msg_id\":4}", "", "{\"msg_id\":5,\"x\":1}"};
    });

    EXPECT_EQ(run({"raw"}, "{\"msg_type\":\"get\",\"msg_id\":5}").output,
              "{\"msg_id\":5,\"x\":1}\n");
}

TEST_F(RawCommand, SkipsAnswersUnderAnotherName)
{
    const fake_server camera([](const std::string &) {
        return std::vector<std::string>{"{\"msg_name\":\"b\",\"msg_id\":5}",
                                        "{\"msg_name\":\"a\",\"msg_id\":5}"};
    });

    EXPECT_EQ(run({"raw"}, "{\"msg_type\":\"get\",\"msg_name\":\"a\",\"msg_id\":5.5}").output,
              "{\"msg_name\":\"a\",\"msg_id\":5}\n");
}

TEST_F(RawCommand, PrintsAnswersThatAreNoJson)
{
    const fake_server camera(
        [](const std::string &) { return std::vector<std::string>{"zoom=5&mode=1"}; });

    const run_result sent =
        run({"raw"}, "{\"msg_type\":\"get\",\"msg_from\":\"www\",\"msg_id\":5}");

    EXPECT_EQ(sent.status, 0);
    EXPECT_EQ(sent.output, "zoom=5&mode=1\n");
}

} // namespace
