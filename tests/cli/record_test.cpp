#include <sys/stat.h>

#include <csignal>
#include <ctime>

#include "cli/recorder.h"

namespace {

class RecordCommand : public Recorder {
protected:
    static mode_t mode_of(const std::string &path)
    {
        struct stat found = {};
        EXPECT_EQ(stat(path.c_str(), &found), 0) << path;
        return found.st_mode & 07777;
    }
};

std::vector<std::string> echo(const std::string &request)
{
    return {"<" + request + ">"};
}

TEST_F(RecordCommand, PassesRequestsAndAnswersOnAndWritesThemDown)
{
    start_host();
    start_recorder();

    const run_result got = run({"--port", std::to_string(port), "raw"},
                               quoted("{'msg_type':'get','msg_id':5,'af':['zoom_value']}"));
    EXPECT_EQ(squeeze(got.output), "{'msg_id':5,'af':{'zoom_value':0}}");

    EXPECT_EQ(end_recorder(), 0);
    const std::vector<std::string> written = lines();
    ASSERT_EQ(written.size(), 2u);
    EXPECT_EQ(swap_quotes(written[0], '\\', ' '),
              "{'client':1,'request':'{ 'msg_type ': 'get ', 'msg_id ':5, 'af ':[ 'zoom_value "
              "']}'}");
    EXPECT_EQ(written[1].find("{'client':1,'answer':'{"), 0u) << written[1];
    EXPECT_EQ(recorder->output(), "");
}

TEST_F(RecordCommand, LinesHoldTheTimeInMilliseconds)
{
    const fake_server camera(echo);
    const double before_ms = static_cast<double>(time(nullptr)) * 1000;
    start_recorder();

    Client(port).send("one");
    ASSERT_TRUE(records(1));

    const json line(cJSON_Parse(read_file(file)->c_str()));
    const double recorded = cJSON_GetNumberValue(cJSON_GetObjectItem(line.get(), "time"));
    EXPECT_GE(recorded, before_ms);
    EXPECT_LE(recorded, static_cast<double>(time(nullptr) + 1) * 1000);
}

TEST_F(RecordCommand, TheUsualPortFollowsTheHosts)
{
    start_recorder({});

    EXPECT_EQ(port, PARA_SERVER_PORT + 1);
}

TEST_F(RecordCommand, BothSignalsEndItWithTheFileComplete)
{
    const fake_server camera(echo);
    for (const int number : {SIGINT, SIGTERM}) {
        start_recorder();
        Client client(port);
        client.send("one");
        EXPECT_EQ(client.receive(), "<one>");

        EXPECT_EQ(end_recorder(number), 0);

        EXPECT_EQ(lines(), (std::vector<std::string>{"{'client':1,'request':'one'}",
                                                     "{'client':1,'answer':'<one>'}"}));
    }
}

TEST_F(RecordCommand, EachLineIsWrittenWhenItsDatagramComes)
{
    const fake_server camera(echo);
    start_recorder();

    Client client(port);
    client.send("one");
    EXPECT_EQ(client.receive(), "<one>");

    EXPECT_EQ(lines().size(), 2u); // while it runs
}

TEST_F(RecordCommand, BytesThatAreNoTextGoInHexadecimalDigits)
{
    const fake_server camera(echo);
    start_recorder();

    Client client(port);
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"\xff", "ff"},       {std::string("a\0b", 3), "610062"}, {"\xc3", "c3"},
        {"\xc0\x80", "c080"}, {"\xed\xa0\x80", "eda080"},         {"\xf4\x90\x80\x80", "f4908080"},
        {"\x80", "80"},
    };
    for (const auto &[bytes, digits] : cases) {
        client.send(bytes);
        EXPECT_EQ(client.receive(), "<" + bytes + ">");
        EXPECT_EQ(lines().back(), "{'client':1,'answer_hex':'3c" + digits + "3e'}");
    }
    const std::vector<std::string> texts = {"\xc3\xa4", "\xe2\x82\xac", "\xf0\x9f\x93\xb7", "x"};
    for (const std::string &text : texts) {
        client.send(text);
        EXPECT_EQ(client.receive(), "<" + text + ">");
        EXPECT_EQ(lines().back(), "{'client':1,'answer':'<" + text + ">'}");
    }
    EXPECT_EQ(lines()[0], "{'client':1,'request_hex':'ff'}");
    client.send("");
    EXPECT_EQ(client.receive(), "<>");
}

TEST_F(RecordCommand, ShareDatagramsArePassedOn)
{
    home = SAMPLE_HOME;
    share();
    start_host();
    start_recorder();

    EXPECT_EQ(run({"share", "video.gop=25", "--port", std::to_string(port)}).output,
              "video0.gop=25\n");

    EXPECT_EQ(run({"get", "video0.gop"}).output, "video0.gop=25\n");
    bool found = false;
    for (const std::string &line : lines())
        found = found || line.find("'request_hex':'") != std::string::npos;
    EXPECT_TRUE(found);
}

TEST_F(RecordCommand, EachClientGetsItsOwnAnswers)
{
    const fake_server camera(echo);
    start_recorder();

    Client one(port), two(port);
    one.send("one");
    two.send("two");
    EXPECT_EQ(two.receive(), "<two>");
    EXPECT_EQ(one.receive(), "<one>");
    one.send("again");
    EXPECT_EQ(one.receive(), "<again>");

    const std::vector<std::string> written = lines();
    ASSERT_EQ(written.size(), 6u);
    for (const char *line : {"{'client':1,'request':'one'}", "{'client':1,'answer':'<one>'}",
                             "{'client':2,'request':'two'}", "{'client':2,'answer':'<two>'}",
                             "{'client':1,'request':'again'}", "{'client':1,'answer':'<again>'}"})
        EXPECT_EQ(std::count(written.begin(), written.end(), line), 1) << line;
}

TEST_F(RecordCommand, SeveralAnswersToARequestArePassedOn)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{request + "1", request + "2"};
    });
    start_recorder();

    Client client(port);
    client.send("a");

    EXPECT_EQ(client.receive(), "a1");
    EXPECT_EQ(client.receive(), "a2");
    EXPECT_EQ(lines().size(), 3u);
}

TEST_F(RecordCommand, TheLeastRecentlyUsedOfTooManyClientsIsDropped)
{
    const fake_server camera(echo);
    start_recorder();
    std::vector<std::unique_ptr<Client>> clients;
    const auto asks = [&](Client &client) {
        client.send("x");
        EXPECT_EQ(client.receive(), "<x>");
    };

    for (int i = 0; i < 64; i++) {
        clients.push_back(std::make_unique<Client>(port));
        asks(*clients.back());
    }
    asks(*clients[0]); // leaves the second as the least recently used
    EXPECT_EQ(lines().back(), "{'client':1,'answer':'<x>'}");
    Client another(port);
    asks(another);
    EXPECT_EQ(lines().back(), "{'client':65,'answer':'<x>'}");
    asks(*clients[0]);
    EXPECT_EQ(lines().back(), "{'client':1,'answer':'<x>'}");

    asks(*clients[1]); // counts as a new client
    EXPECT_EQ(lines().back(), "{'client':66,'answer':'<x>'}");
    EXPECT_EQ(recorder->has_ended(), false);
}

TEST_F(RecordCommand, GoesOnWhileNobodyListens)
{
    start_recorder();
    Client client(port);
    for (size_t i = 1; i <= 3; i++) {
        client.send("lost");
        ASSERT_TRUE(records(i));
    }

    const fake_server camera(echo);
    client.send("heard");

    EXPECT_EQ(client.receive(), "<heard>");
    EXPECT_EQ(lines().size(), 5u);
    EXPECT_EQ(end_recorder(), 0);
}

TEST_F(RecordCommand, AnEarlierRecordingIsReplaced)
{
    write_file(file, std::string(1000, 'x'));
    start_recorder();

    EXPECT_EQ(read_file(file), "");
}

TEST_F(RecordCommand, OnlyTheOwnerMayReadTheFile)
{
    start_recorder();
    EXPECT_EQ(mode_of(file), 0600u);
    EXPECT_EQ(end_recorder(), 0);

    chmod(file.c_str(), 0644);
    start_recorder();
    EXPECT_EQ(mode_of(file), 0600u);
}

TEST_F(RecordCommand, AFileThatCannotBeWrittenIsReportedBeforeItListens)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {data + "/none/file", "No such file or directory"},
        {data, "Is a directory"},
    };
    for (const auto &[path, reason] : cases) {
        const run_result got = run({"record", path});
        EXPECT_EQ(got.status, 1);
        EXPECT_EQ(got.errors, "camparam: cannot write " + path + ": " + reason + "\n");
    }
}

TEST_F(RecordCommand, AFullDiskEndsIt)
{
    const fake_server camera(echo);
    file = "/dev/full";
    start_recorder();

    Client(port).send("one");

    EXPECT_EQ(recorder->wait_for_end(), 1);
    EXPECT_NE(recorder->errors().find("camparam: cannot write /dev/full: No space left on device"),
              std::string::npos)
        << recorder->errors();
}

TEST_F(RecordCommand, APortThatIsTakenIsReportedAndTheFileIsKept)
{
    const fake_server camera(echo);
    write_file(file, "kept");

    const run_result got = run({"record", file, "--listen", "6800", "--port", "6900"});

    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, "camparam: cannot listen on port 6800: Address already in use\n");
    EXPECT_EQ(read_file(file), "kept");
}

TEST_F(RecordCommand, RefusesToRecordItself)
{
    for (const char *name : {"127.0.0.1", "localhost"}) {
        const run_result got =
            run({"record", file, "--listen", "6900", "--port", "6900", "--host", name});
        EXPECT_EQ(got.status, 2);
        EXPECT_EQ(got.errors, "camparam: --listen names the port of the host\n");
    }
}

TEST_F(RecordCommand, HelpWarnsOfSecrets)
{
    std::string help = run({"record", "--help"}).output;

    help.erase(std::remove_if(help.begin(), help.end(), isspace), help.end());
    EXPECT_NE(help.find("holdseveryvaluethatissent,secretstoo"), std::string::npos) << help;
}

} // namespace
