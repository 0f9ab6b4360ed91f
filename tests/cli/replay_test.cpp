#include <algorithm>
#include <chrono>
#include <csignal>

#include "cli/recorder.h"

namespace {

class ReplayCommand : public Recorder {
protected:
    // Writes a recording of these lines of a client 1; an apostrophe stands for a quote.
    void write_recording(const std::vector<std::string> &datagrams)
    {
        std::string text;
        for (const std::string &datagram : datagrams)
            text += quoted("{'time':1000,'client':1," + datagram + "}\n");
        write_file(file, text);
    }

    // Replays the recording.
    run_result replay(std::vector<std::string> options = {}) const
    {
        options.insert(options.begin(), {"replay", file});
        return run(options);
    }

    // Records what one client sends, each when the answer to the last has come.
    void record(const std::vector<std::string> &requests)
    {
        start_recorder();
        Client client(port);
        for (const std::string &request : requests) {
            client.send(request);
            EXPECT_TRUE(client.receive().has_value()) << request;
        }
        EXPECT_EQ(end_recorder(), 0);
    }
};

std::vector<std::string> ignore(const std::string &)
{
    return {};
}

// A text that holds JSON (an apostrophe stands for a quote), as JSON. Backslashes stay.
std::string text_of(const std::string &held)
{
    const json text(cJSON_CreateString(quoted(held).c_str()));
    char *const printed = cJSON_PrintUnformatted(text.get());
    const std::string line = printed;
    cJSON_free(printed);
    return line;
}

// Requests besides those of the program's own.
std::vector<std::string> recorded_of(const fake_server &camera)
{
    std::vector<std::string> found;
    for (const std::string &request : camera.requests()) {
        if (!is_for(request, "msg_name"))
            found.push_back(request);
    }
    return found;
}

TEST_F(ReplayCommand, TheSameHostAnswersAlike)
{
    start_host();
    start_recorder();
    const std::string listen = std::to_string(port);
    EXPECT_EQ(run({"get", "af.zoom_value", "--port", listen}).status, 0);
    EXPECT_EQ(run({"call", "changes", "--port", listen}).status, 0);
    EXPECT_EQ(run({"call", "nosuch", "--port", listen}).status, 4);
    EXPECT_EQ(end_recorder(), 0);
    ASSERT_EQ(lines().size(), 6u);
    const run_result got = replay();

    EXPECT_EQ(got.status, 0) << got.errors;
    EXPECT_EQ(got.output, "3 requests, 0 answers differ, 0 without an answer\n");
}

TEST_F(ReplayCommand, TellsWhatDiffers)
{
    home = SAMPLE_HOME;
    start_host();
    const std::string request = quoted("{'msg_type':'get','msg_id':5,'video0':['gop']}");
    record({request, quoted("{'msg_type':'api_get','msg_name':'nosuch'}")});
    EXPECT_EQ(run({"set", "video0.gop=25"}).status, 0);

    const run_result got = replay();

    EXPECT_EQ(got.status, 7);
    EXPECT_EQ(got.output.find("1: " + request + ": recorded {\\x0a"), 0u) << got.output;
    EXPECT_NE(got.output.find(", got {\\x0a"), std::string::npos);
    EXPECT_NE(got.output.find("\n2 requests, 1 answers differ, 0 without an answer\n"),
              std::string::npos)
        << got.output;
    EXPECT_EQ(std::count(got.output.begin(), got.output.end(), '\n'), 2);
}

TEST_F(ReplayCommand, TellsDifferencesAsOneObject)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{request == "b" ? "2" : request == "c" ? "\xff" : "1"};
    });
    write_recording({"'request':'a'", "'answer':'1'", "'request':'b'", "'answer':'1'",
                     "'request':'c'", "'answer_hex':'00fe'"});

    const run_result got = replay({"--json"});

    EXPECT_EQ(got.status, 7);
    EXPECT_EQ(got.output,
              quoted("{'requests':3,'different':[{'line':3,'request':'b','recorded':'1','got':'2'},"
                     "{'line':5,'request':'c','recorded_hex':'00fe','got_hex':'ff'}],"
                     "'unanswered':0}\n"));
    EXPECT_EQ(replay().output, "3: b: recorded 1, got 2\n"
                               "5: c: recorded hex 00fe, got hex ff\n"
                               "3 requests, 2 answers differ, 0 without an answer\n");
}

TEST_F(ReplayCommand, ComparesAnswersAsJson)
{
    shared_text answer;
    const fake_server camera([&](const std::string &) { return std::vector<std::string>{answer}; });
    const auto compares = [&](const std::string &recorded, const std::string &got) {
        write_recording({"'request':'x'", "'answer':" + text_of(recorded)});
        answer = quoted(got);
        return replay().status;
    };

    const std::vector<std::pair<std::string, std::string>> alike = {
        {"{'a':1,'b':[1,{'c':null}]}", "{ 'b' : [1, {'c':null}], 'a' : 1.0 }"},
        {"{'a':{'msg_id':1,'time':1,'started':2}}", "{'time':1,'a':{'uptime':1,'saved_at':2}}"},
        {"[]", "[ ]"},
        {"zoom=5&mode=1", "zoom=5&mode=1"},
        {"5&x=1", "5&x=1"},
    };
    for (const auto &[recorded, got] : alike)
        EXPECT_EQ(compares(recorded, got), 0) << recorded;
    const std::vector<std::pair<std::string, std::string>> different = {
        {"{'a':1}", "{'a':2}"},
        {"{'a':1}", "{'a':1,'b':2}"},
        {"{'a':1,'b':2}", "{'a':1}"},
        {"{'a':1}", "{'A':1}"},
        {"[1,2]", "[2,1]"},
        {"[1,2]", "[1]"},
        {"{'a':'1'}", "{'a':1}"},
        {"{'a':true}", "{'a':false}"},
        {"5&x=1", "5&x=2"},
        {"5", "5&x=1"},
        {"zoom=5", "zoom=6"},
        {"{'a':null}", "{'a':{}}"},
        {"{'times':1}", "{'times':2}"},
        {"{'a':1}", "garbage"},
        {"zoom=5", "zoom=5 "},
    };
    for (const auto &[recorded, got] : different)
        EXPECT_EQ(compares(recorded, got), 7) << recorded;
}

TEST_F(ReplayCommand, SendsRequestsInOrderAsTheyWere)
{
    const fake_server camera(
        [](const std::string &request) { return std::vector<std::string>{"<" + request + ">"}; });
    const std::string longest(5000, 'x');
    record({"one", std::string("\0\xff", 2), "two", longest});

    const size_t before = camera.requests().size();
    EXPECT_EQ(replay().output, "4 requests, 0 answers differ, 0 without an answer\n");

    const std::vector<std::string> requests = camera.requests();
    ASSERT_EQ(requests.size(), before + 4);
    EXPECT_EQ(
        std::vector<std::string>(requests.begin() + static_cast<long>(before), requests.end()),
        (std::vector<std::string>{"one", std::string("\0\xff", 2), "two", longest}));
}

TEST_F(ReplayCommand, AnswersBelongToTheRequestsThatTheyFit)
{
    const fake_server camera([](const std::string &request) {
        std::vector<std::string> answers;
        if (is_for(request, "www"))
            answers.push_back("zoom=1");
        else if (is_for(request, "msg_type"))
            answers.push_back(reply_to(request, "'x':" + id_of(request)));
        return answers;
    });
    const std::string one = "'request':" + text_of("{'msg_type':'get','msg_id':1}");
    const std::string two = "'request':" + text_of("{'msg_type':'get','msg_id':2}");
    const std::string web = "'request':" + text_of("{'msg_type':'get','msg_from':'www'}");
    // In another order, twice, and behind requests that no store answers.
    write_recording({"'request':'share'", one, "'request':'{}'", two, web, "'answer':'zoom=1'",
                     "'answer':" + text_of("{'msg_id':2,'x':2}"),
                     "'answer':" + text_of("{'msg_id':1,'x':1}"),
                     "'answer':" + text_of("{'msg_id':1,'x':3}"), "'answer':'zoom=3'"});

    EXPECT_EQ(replay().output, "5 requests, 0 answers differ, 0 without an answer\n");
}

TEST_F(ReplayCommand, ASecondAnswerIsNotToALaterRequest)
{
    const fake_server camera([](const std::string &request) {
        std::vector<std::string> answers;
        if (is_for(request, "msg_type"))
            answers.push_back(reply_to(request, "'x':1"));
        return answers;
    });
    const std::string answer = "'answer':" + text_of("{'msg_id':1,'x':1}");
    write_recording({"'request':" + text_of("{'msg_type':'get','msg_id':1}"), answer,
                     "'request':'share'", "'request':'{}'", answer});

    EXPECT_EQ(replay({"--timeout", "1"}).output,
              "3 requests, 0 answers differ, 0 without an answer\n");
}

TEST_F(ReplayCommand, AnAnswerWithoutAnIdentifierIsToTheOldestRequest)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{quoted("{'err':" + id_of(request) + "}")};
    });
    write_recording({"'request':" + text_of("{'msg_type':'api_get','msg_id':1}"),
                     "'request':" + text_of("{'msg_type':'api_get','msg_id':2}"),
                     "'answer':" + text_of("{'err':1}"), "'answer':" + text_of("{'err':2}")});

    EXPECT_EQ(replay().output, "2 requests, 0 answers differ, 0 without an answer\n");
}

TEST_F(ReplayCommand, KeepsClientsApart)
{
    const fake_server camera(
        [](const std::string &request) { return std::vector<std::string>{"<" + request + ">"}; });
    write_file(file,
               quoted("{'time':1,'client':1,'request':'a'}\n{'time':1,'client':2,'request':'b'}\n"
                      "{'time':1,'client':2,'answer':'<b>'}\n"
                      "{'time':1,'client':1,'answer':'<a>'}\n"));

    EXPECT_EQ(replay().output, "2 requests, 0 answers differ, 0 without an answer\n");
}

TEST_F(ReplayCommand, ARequestWithoutAnAnswerIsNotWaitedFor)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{
            is_for(request, "msg_name") ? quoted("{'msg_id':" + id_of(request) + "}") : "1"};
    });
    write_recording({"'request':'a'", "'request':'b'", "'answer':'1'", "'request':'c'"});

    EXPECT_EQ(replay().output, "3 requests, 0 answers differ, 0 without an answer\n");
    EXPECT_EQ(recorded_of(camera), (std::vector<std::string>{"a", "b", "c"}));
}

TEST_F(ReplayCommand, ManyRequestsWithoutAnswersDoNotOverflowTheHost)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{quoted("{'msg_id':" + id_of(request) + "}")};
    });
    const size_t many = 3000;
    write_recording(std::vector<std::string>(many, "'request':'share'"));

    EXPECT_EQ(replay().status, 0);

    EXPECT_EQ(recorded_of(camera).size(), many);
}

TEST_F(ReplayCommand, CountsRequestsThatAreNotAnswered)
{
    const fake_server camera([](const std::string &request) {
        return request == "b" ? std::vector<std::string>{} : std::vector<std::string>{"1"};
    });
    write_recording({"'request':'a'", "'answer':'1'", "'request':'b'", "'answer':'1'",
                     "'request':'c'", "'answer':'1'"});

    const run_result got = replay({"--timeout", "0.3", "--retries", "3"});

    EXPECT_EQ(got.status, 7);
    EXPECT_EQ(got.output, "3: b: recorded 1, no answer\n"
                          "3 requests, 0 answers differ, 1 without an answer\n");
    EXPECT_EQ(replay({"--timeout", "0.3", "--retries", "3", "--json"}).output,
              quoted("{'requests':3,'different':[],'unanswered':1}\n"));
}

TEST_F(ReplayCommand, AHostThatAnswersOtherRequestsAnswers)
{
    const fake_server camera([](const std::string &request) {
        std::vector<std::string> answers;
        if (is_for(request, "msg_name"))
            answers.push_back(quoted("{'msg_id':" + id_of(request) + "}"));
        return answers;
    });
    write_recording({"'request':'a'", "'answer':'1'"});

    const run_result got = replay({"--timeout", "0.3", "--retries", "3"});

    EXPECT_EQ(got.status, 7);
    EXPECT_EQ(got.output, "1: a: recorded 1, no answer\n"
                          "1 requests, 0 answers differ, 1 without an answer\n");
}

TEST_F(ReplayCommand, AHostThatDoesNotAnswerAtAllEndsIt)
{
    write_recording({"'request':'a'", "'answer':'1'", "'request':'b'", "'answer':'1'"});
    const run_result refused = replay();
    EXPECT_EQ(refused.status, 3);
    EXPECT_NE(refused.errors.find("nothing listens on"), std::string::npos) << refused.errors;

    const fake_server camera(ignore);
    const run_result silent = replay({"--timeout", "0.05"});
    EXPECT_EQ(silent.status, 3);
    EXPECT_EQ(silent.output, "");
    EXPECT_NE(silent.errors.find("no answer from"), std::string::npos) << silent.errors;
    EXPECT_EQ(recorded_of(camera), (std::vector<std::string>{"a", "a", "a"}));

    write_recording({"'request':'a'"}); // nothing to wait for
    EXPECT_EQ(replay({"--timeout", "0.05"}).status, 3);
}

TEST_F(ReplayCommand, LateDoubleAndForeignAnswersAreNotTakenForTheNext)
{
    // The answer to the first comes only with its repeat, as two.
    int asked = 0;
    const fake_server camera([&](const std::string &request) {
        std::vector<std::string> answers = {quoted("{'msg_id':77}"), "",
                                            reply_to(request, "'x':" + id_of(request))};
        if (asked++ == 0)
            answers.clear();
        answers.insert(answers.end(), answers.begin(), answers.end());
        return answers;
    });
    write_recording(
        {"'request':" + text_of("{'msg_id':1}"), "'answer':" + text_of("{'msg_id':1,'x':1}"),
         "'request':" + text_of("{'msg_id':2}"), "'answer':" + text_of("{'msg_id':2,'x':2}")});

    EXPECT_EQ(replay({"--timeout", "0.2", "--retries", "100"}).output,
              "2 requests, 0 answers differ, 0 without an answer\n");
}

TEST_F(ReplayCommand, SpeedKeepsPauses)
{
    const fake_server camera([](const std::string &) { return std::vector<std::string>{"1"}; });
    std::string text;
    for (const std::string time : {"1000", "2000", "500", "3500"}) // set back once
        text += quoted("{'time':" + time + ",'client':1,'request':'a'}\n{'time':" + time +
                       ",'client':1,'answer':'1'}\n");
    write_file(file, text);
    const auto took = [&](const std::vector<std::string> &options) {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(replay(options).status, 0);
        return std::chrono::steady_clock::now() - begin;
    };

    EXPECT_GE(took({"--speed", "10"}), std::chrono::milliseconds(400));
    EXPECT_LT(took({}), std::chrono::milliseconds(4000));
    EXPECT_LT(took({"--speed", "1000000"}), std::chrono::milliseconds(4000));
}

TEST_F(ReplayCommand, ReadsStandardInput)
{
    const fake_server camera([](const std::string &) { return std::vector<std::string>{"1"}; });

    EXPECT_EQ(run({"replay", "-"}, quoted("{'time':1,'client':1,'request':'a'}\n"
                                          "{'time':1,'client':1,'answer':'1'}"))
                  .output,
              "1 requests, 0 answers differ, 0 without an answer\n");
    EXPECT_EQ(run({"replay", "-"}, "x").errors,
              "camparam: - is no recording: line 1 is no JSON object\n");
}

TEST_F(ReplayCommand, BrokenRecordingsAreRefusedBeforeAnythingIsSent)
{
    const fake_server camera(ignore);
    const std::string good = "{'time':1,'client':1,'request':'a'}\n";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", "is no JSON object"}, // an empty line
        {"x", "is no JSON object"},
        {"[]", "is no JSON object"},
        {"{'time':1,'client':1,'requ", "is no JSON object"},
        {"{'time':1,'client':1,'request':'a'} x", "is no JSON object"},
        {"{'client':1,'request':'a'}", "lacks \"time\", milliseconds since 1970"},
        {"{'time':'1','client':1,'request':'a'}", "lacks \"time\", milliseconds since 1970"},
        {"{'time':-1,'client':1,'request':'a'}", "lacks \"time\", milliseconds since 1970"},
        {"{'time':1e300,'client':1,'request':'a'}", "lacks \"time\", milliseconds since 1970"},
        {"{'time':1,'request':'a'}", "lacks \"client\", a number from 1"},
        {"{'time':1,'client':0,'request':'a'}", "lacks \"client\", a number from 1"},
        {"{'time':1,'client':1}", "holds not one request or answer"},
        {"{'time':1,'client':1,'request':'a','answer':'b'}", "holds not one request or answer"},
        {"{'time':1,'client':1,'request':5}", "holds no text as \"request\""},
        {"{'time':1,'client':1,'request':'a','request_hex':'61'}", "holds no text as \"request\""},
        {"{'time':1,'client':1,'request_hex':'6'}",
         "holds no hexadecimal digits as \"request_hex\""},
        {"{'time':1,'client':1,'answer_hex':'zz'}",
         "holds no hexadecimal digits as \"answer_hex\""},
        {"{'time':1,'client':2,'answer':'a'}",
         "answers a client that has sent no request before it"},
        {"{'time':1,'client':1,'request':'" + std::string(65508, 'x') + "'}",
         "is longer than a datagram"},
    };
    for (const auto &[line, reason] : cases) {
        write_file(file, quoted(good + line + "\n" + good));
        const run_result got = replay();
        EXPECT_EQ(got.status, 2) << line;
        EXPECT_EQ(got.output, "");
        EXPECT_EQ(got.errors, "camparam: " + file + " is no recording: line 2 " + reason + "\n");
    }
    EXPECT_EQ(camera.requests().size(), 0u);
}

TEST_F(ReplayCommand, AFileThatCannotBeReadIsReported)
{
    const run_result none = run({"replay", file});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.errors, "camparam: cannot read " + file + ": No such file or directory\n");
    EXPECT_EQ(run({"replay", data}).errors, "camparam: cannot read " + data + ": Is a directory\n");
}

TEST_F(ReplayCommand, ARecordingWithoutRequestsIsAlike)
{
    start_host();
    write_file(file, "");

    EXPECT_EQ(replay().output, "0 requests, 0 answers differ, 0 without an answer\n");
}

} // namespace
