#include <regex>

#include "cli/run.h"
#include "host/host_process.h"

namespace {

class GetCommand : public HostProcess {};

TEST_F(GetCommand, PrintsOneValue)
{
    start_host();

    const run_result got = run({"get", "af.zoom_value"});

    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.output, "af.zoom_value=0\n");
    EXPECT_EQ(got.errors, "");
}

TEST_F(GetCommand, PrintsValuesInTheOrderAsked)
{
    start_host();

    EXPECT_EQ(run({"get", "af.zoom_value", "af.focus_mode", "af.zoom_value"}).output,
              "af.zoom_value=0\naf.focus_mode=1\naf.zoom_value=0\n");
}

TEST_F(GetCommand, PrintsAWholeModule)
{
    start_host();

    EXPECT_EQ(run({"get", "af"}).output, "af.focus_mode=1\naf.zoom_value=0\n");
    EXPECT_EQ(run({"get", "af.zoom_value", "af"}).output,
              "af.zoom_value=0\naf.focus_mode=1\naf.zoom_value=0\n");
}

TEST_F(GetCommand, MarksWhatCannotBeSet)
{
    home = SAMPLE_HOME;
    start_host();

    const std::string isp = run({"get", "isp0"}).output;
    for (const char *member : {"len_type", "ccm_style", "rgain_onepush"})
        EXPECT_TRUE(std::regex_search(
            isp, std::regex("isp0\\." + std::string(member) + "=[0-9]+ \\(read-only\\)\n")))
            << member << isp;
    EXPECT_NE(isp.find("\nisp0.gamma=1\n"), std::string::npos) << isp;
    EXPECT_EQ(run({"get", "isp0.rgain_onepush"}).output, "isp0.rgain_onepush=128\n");
    EXPECT_EQ(run({"get", "isp0", "--json"}).output.find("read-only"), std::string::npos);
}

TEST_F(GetCommand, PrintsJson)
{
    start_host();

    EXPECT_EQ(squeeze(run({"get", "--json", "af"}).output),
              "{'af':{'focus_mode':1,'zoom_value':0}}");
    EXPECT_EQ(squeeze(run({"--json", "get", "af.zoom_value"}).output), "{'af':{'zoom_value':0}}");
}

TEST_F(GetCommand, PrintsAValueOnceAsJson)
{
    start_host();

    EXPECT_EQ(squeeze(run({"get", "--json", "af.zoom_value", "af.zoom_value"}).output),
              "{'af':{'zoom_value':0}}");
}

TEST_F(GetCommand, TellsWhatIsMissing)
{
    start_host();

    const run_result member = run({"get", "af.focus_lock"});
    EXPECT_EQ(member.status, 5);
    EXPECT_EQ(member.output, "");
    EXPECT_EQ(member.errors, "camparam: no setting \"af.focus_lock\"; did you mean "
                             "\"af.focus_mode\"?\n");

    const run_result module = run({"get", "lens.zoom_value"});
    EXPECT_EQ(module.status, 5);
    EXPECT_EQ(module.errors, "camparam: no module \"lens\"\n");

    const run_result some = run({"get", "nosuch", "af.zoom_value"});
    EXPECT_EQ(some.status, 6);
    EXPECT_EQ(some.output, "af.zoom_value=0\n");
    EXPECT_EQ(some.errors, "camparam: no module \"nosuch\"\n");
}

TEST_F(GetCommand, MessageFieldsAreNoSettings)
{
    start_host();

    for (const char *field : {"msg_id", "msg_name.x", "msg_type", "msg_from"}) {
        const run_result got = run({"get", field});
        EXPECT_EQ(got.status, 5) << field;
        EXPECT_EQ(got.output, "");
    }
}

TEST_F(GetCommand, MessageFieldsAreNotAskedFor)
{
    for (const char *field : {"msg_id", "msg_name", "msg_type", "msg_from"}) {
        const run_result got = run({"get", field});
        EXPECT_EQ(got.status, 5) << field;
        EXPECT_EQ(got.errors, "camparam: no module \"" + std::string(field) + "\"\n");
    }
}

TEST_F(GetCommand, WorksWithAHostThatDescribesNothing)
{
    start_store();

    EXPECT_EQ(run({"get", "af"}).output, "af.focus_mode=1\naf.zoom_value=0\n");
    const run_result missing = run({"get", "af.nosuch"});
    EXPECT_EQ(missing.status, 5);
    EXPECT_EQ(missing.errors, "camparam: no setting \"af.nosuch\"\n");
}

TEST_F(GetCommand, AsksForMoreNamesThanADatagramHolds)
{
    start_host();
    std::vector<std::string> words = {"get"};
    for (int i = 0; i < 900; i++)
        words.push_back(i == 0 || i == 899 ? "af.zoom_value" : "af.focus_mode");

    const run_result got = run(words);

    EXPECT_EQ(got.status, 0) << got.errors;
    EXPECT_EQ(std::count(got.output.begin(), got.output.end(), '\n'), 900);
    EXPECT_EQ(got.output.rfind("\naf.zoom_value=0\n"), got.output.size() - 17);
}

TEST(GetValues, ShowNoControlCharacter)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{
            reply_to(request, "'x':{'a':'\xc2\x9b[31m\xc3\xbc\x7f\\u001b','b':'\xc2\xa0'}")};
    });
    EXPECT_EQ(run({"get", "x"}).output, "x.a=\\xc2\\x9b[31m\xc3\xbc\\x7f\\x1b\nx.b=\xc2\xa0\n");
}

TEST(GetValues, ShowAModuleThatIsItselfASetting)
{
    shared_text value;
    const fake_server camera([&](const std::string &request) {
        return std::vector<std::string>{reply_to(request, "'lamp':" + std::string(value))};
    });
    for (const char *each : {"5", "-1.5", "[1,2]", "true", "null"}) {
        value = each;
        EXPECT_EQ(run({"get", "lamp"}).output, "lamp=" + std::string(each) + "\n");
        EXPECT_EQ(squeeze(run({"get", "lamp", "--json"}).output),
                  "{'lamp':" + std::string(each) + "}");
    }
    value = "'on'";
    EXPECT_EQ(run({"get", "lamp"}).output, "lamp=on\n");
}

} // namespace
