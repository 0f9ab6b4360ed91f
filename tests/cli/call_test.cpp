#include <filesystem>

#include "cli/run.h"
#include "host/host_process.h"

namespace {

class CallCommand : public HostProcess {};

TEST_F(CallCommand, RunsACommandWithMembers)
{
    start_host();

    const run_result called = run({"call", "lens", "zoom_value=12"});

    EXPECT_EQ(called.status, 0);
    EXPECT_EQ(squeeze(called.output), "{'accepted':['zoom_value'],'refused':{}}");
    EXPECT_EQ(run({"get", "af.zoom_value"}).output, "af.zoom_value=12\n");
}

TEST_F(CallCommand, TellsByItsStatusWhatWasRefused)
{
    start_host();

    EXPECT_EQ(run({"call", "lens", "zoom_value=12", "focus_mode=9"}).status, 6);
    const run_result refused = run({"call", "lens", "focus_mode=9"});
    EXPECT_EQ(refused.status, 4);
    EXPECT_EQ(squeeze(refused.output),
              "{'accepted':[],'refused':{'focus_mode':'out of range, 0 to 3'}}");
}

TEST_F(CallCommand, PrintsNothingForAnAnswerWithoutContent)
{
    start_host();

    const run_result called = run({"call", "save"});
    EXPECT_EQ(called.status, 0);
    EXPECT_EQ(called.output, "");
    EXPECT_NE(read_data("af_cur.json"), std::nullopt);
    EXPECT_EQ(run({"call", "save", "--json"}).output, "{}\n");
}

TEST_F(CallCommand, TellsWhichModulesCouldNotBeSaved)
{
    start_host();
    std::filesystem::create_directory(data + "/af_cur.json");

    const run_result called = run({"call", "save"});

    EXPECT_EQ(called.status, 4);
    EXPECT_EQ(squeeze(called.output), "{'failed':{'af':'Is a directory'}}");
}

TEST_F(CallCommand, AsksWithoutMembers)
{
    start_host();

    EXPECT_EQ(squeeze(run({"call", "describe", "--json"}).output).find("{'modules':{"), 0u);
    EXPECT_EQ(run({"call", "describe", "--set"}).status, 4);
    EXPECT_EQ(run({"call", "lens", "zoom_value=1", "--get"}).status, 4);
}

TEST_F(CallCommand, TellsOfAnUnknownCommand)
{
    start_host();

    const run_result called = run({"call", "nosuch"});

    EXPECT_EQ(called.status, 4);
    EXPECT_EQ(called.output, "");
    EXPECT_EQ(called.errors, "camparam: the host does not know the command \"nosuch\", or refused "
                             "it; it was sent as api_get, see --set and --get\n");
}

TEST_F(CallCommand, ValuesTravelAsTheyReadOrAsTold)
{
    const fake_server camera([](const std::string &request) {
        const json tree(cJSON_Parse(request.c_str()));
        cJSON *const members = cJSON_DetachItemFromObject(tree.get(), "data");
        const std::string told = compact(members);
        cJSON_Delete(members);
        return std::vector<std::string>{reply_to(request, "'told':" + told)};
    });

    EXPECT_EQ(
        squeeze(run({"call", "x", "a=1", "b=-7", "c=1x", "d=", "e=3000000000", "f=p=q"}).output),
        "{'told':{'a':1,'b':-7,'c':'1x','d':'','e':'3000000000','f':'p=q'}}");
    EXPECT_EQ(squeeze(run({"call", "x", "a=1", "--text"}).output), "{'told':{'a':'1'}}");
    EXPECT_EQ(squeeze(run({"call", "x", "a=1", "--number"}).output), "{'told':{'a':1}}");
    EXPECT_EQ(run({"call", "x", "a=b", "--number"}).status, 4);
    EXPECT_EQ(run({"call", "x", "a"}).status, 2);
}

TEST_F(CallCommand, TakesAnAnswerWithoutIdentifier)
{
    const fake_server camera(
        [](const std::string &) { return std::vector<std::string>{"{\"uptime\":5}"}; });

    EXPECT_EQ(run({"call", "uptime", "--json"}).output, "{\"uptime\":5}\n");
}

TEST(CallValues, OfEachJsonTypeAreSentAsSuch)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{reply_to(request, "'done':1")};
    });
    EXPECT_EQ(run({"call", "x", "a=[1,2]", "b={\"c\":null}", "d=true", "e=false", "f=null", "g=5",
                   "h=text", "i=[1"})
                  .status,
              0);
    const json sent(cJSON_Parse(camera.requests().back().c_str()));
    EXPECT_EQ(compact(cJSON_GetObjectItem(sent.get(), "data")),
              "{'a':[1,2],'b':{'c':null},'d':true,'e':false,'f':'null','g':5,'h':'text','i':'[1'}");
    EXPECT_EQ(run({"call", "x", "--text", "a=[1,2]"}).status, 0);
    EXPECT_NE(camera.requests().back().find("\"[1,2]\""), std::string::npos);
}

} // namespace
