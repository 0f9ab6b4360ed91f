#include "cli/run.h"
#include "host/host_process.h"

namespace {

class WebNames : public HostProcess {
protected:
    WebNames() { home = SAMPLE_HOME; }
};

class WebNamesOfItsOwn : public HostProcess {};

TEST_F(WebNames, APageIsAPairALine)
{
    start_host();

    const run_result page = run({"www", "get", "network"});

    EXPECT_EQ(page.status, 0);
    EXPECT_EQ(page.output, "dhcp=1\nip=192.168.1.88\nnetmask=255.255.255.0\ngateway=192.168.1.1\n"
                           "dns=192.168.1.1\nhttpport=80\nrtspport=554\nrtmpport=1935\n"
                           "onvifport=2000\ncontrolport=5678\n");
    EXPECT_EQ(run({"www", "get", "NDI"}).output.find("ndienable=1\nndiname=CAMERA-1\n"), 0u);
}

TEST_F(WebNames, EveryModifierIsShown)
{
    start_host();

    const std::string audio = run({"www", "get", "audio"}).output;
    EXPECT_NE(audio.find("\nsamplerate=48\nabitrate=128\n"), std::string::npos) << audio;
    const std::string system = run({"www", "get", "system"}).output;
    EXPECT_NE(system.find("\nfocuszone=2\n"), std::string::npos) << system;
    EXPECT_NE(system.find("\nzoom=0.00\n"), std::string::npos) << system;
    const std::string video = run({"www", "get", "video"}).output;
    EXPECT_NE(video.find("\nframerate=60\n"), std::string::npos) << video;
    EXPECT_NE(video.find("\nframerate=30\n"), std::string::npos) << video;
}

TEST_F(WebNames, APageIsPrintedAsJson)
{
    const fake_server camera(
        [](const std::string &) { return std::vector<std::string>{"&rate=4&name=a b&rate=5"}; });

    EXPECT_EQ(squeeze(run({"www", "get", "page", "--json"}).output),
              "[{'name':'rate','value':'4'},{'name':'name','value':'a b'},"
              "{'name':'rate','value':'5'}]");
}

TEST_F(WebNames, ValuesAreSetAndReadBack)
{
    start_host();

    const run_result set = run({"www", "set", "image", "hue=5&gamma=2&colortemp=5.5"});

    EXPECT_EQ(set.status, 0);
    EXPECT_EQ(set.output, "hue=5\ngamma=2\ncolortemp=5.5\n");
    EXPECT_EQ(set.errors, "");
    EXPECT_EQ(run({"get", "isp0.hue", "isp0.gamma", "isp0.temperature"}).output,
              "isp0.hue=5\nisp0.gamma=2\nisp0.temperature=5500\n");
    EXPECT_EQ(run({"www", "set", "system", "hdmiformat=720P50&title=Hall"}).output,
              "hdmiformat=720P50\ntitle=Hall\n");
    EXPECT_EQ(run({"www", "set", "exposure", "shutter=12"}).output, "shutter=12\n");
}

TEST_F(WebNames, AGreedyNameSetsEveryModuleThatHasIt)
{
    start_host();

    EXPECT_EQ(run({"www", "set", "video", "framerate=25"}).output, "framerate=25\n");
    EXPECT_EQ(run({"get", "video0.frameRate", "video1.frameRate", "video2.frameRate"}).output,
              "video0.frameRate=25\nvideo1.frameRate=25\nvideo2.frameRate=25\n");
}

TEST_F(WebNames, AnyOfTheValuesUnderANameCounts)
{
    const fake_server camera([](const std::string &request) {
        if (is_for(request, "pages"))
            return std::vector<std::string>{reply_to(request, "'err':'Invalid API command'")};
        const bool sets = is_for(request, "set");
        return std::vector<std::string>{sets ? "result=success" : "&rate=4&rate=5&rate=6"};
    });

    for (const char *rate : {"rate=4", "rate=5", "rate=6"})
        EXPECT_EQ(run({"www", "set", "page", rate}).output, std::string(rate) + "\n");
    EXPECT_EQ(run({"www", "set", "page", "rate=7"}).status, 4);
}

TEST_F(WebNames, WhatThePageShowsOtherwiseIsNamed)
{
    start_host();

    const run_result partly = run({"www", "set", "image", "hue=99&huee=2&gamma=3"});
    EXPECT_EQ(partly.status, 6);
    EXPECT_EQ(partly.output, "gamma=3\n");
    EXPECT_EQ(partly.errors, "camparam: hue: \"99\" would not be taken (number, 0 to 14)\n"
                             "camparam: the page \"image\" shows no \"huee\"\n");
    EXPECT_EQ(run({"www", "set", "image", "hue=99"}).status, 4);
    EXPECT_EQ(run({"www", "set", "image", "huee=9"}).status, 5);
    EXPECT_EQ(run({"www", "set", "image", "hue=99&huee=9"}).status, 4);
    EXPECT_EQ(run({"www", "set", "image", "huee=9&hue=99"}).status, 4);
}

TEST_F(WebNames, WhatTheStoreWouldTakeForAnotherValueIsNotSent)
{
    start_host();

    for (const char *pair : {"hue=abc", "hue=5.7", "hue=", "hue=5x", "hue=99", "colortemp=warm",
                             "colortemp=99", "colortemp=1e1", "hdmiformat=99P", "hdmiformat=720"}) {
        const std::string before = run({"www", "get", "image"}).output;
        EXPECT_EQ(run({"www", "set", "image", pair}).output, "") << pair;
        EXPECT_EQ(run({"www", "get", "image"}).output, before) << pair;
    }
    EXPECT_EQ(run({"www", "set", "image", "hue=abc"}).errors,
              "camparam: hue: \"abc\" is no number\n");
}

TEST_F(WebNames, ThousandsAreShownByTheirRule)
{
    start_host();

    EXPECT_EQ(run({"www", "set", "image", "colortemp=5.525"}).output, "colortemp=5.5\n");
    EXPECT_EQ(run({"get", "isp0.temperature"}).output, "isp0.temperature=5525\n");
    EXPECT_EQ(run({"www", "set", "image", "colortemp=5.5499"}).output, "colortemp=5.5\n");
    EXPECT_EQ(run({"get", "isp0.temperature"}).output, "isp0.temperature=5549\n");
    EXPECT_EQ(run({"www", "set", "image", "colortemp=6"}).output, "colortemp=6\n");
}

TEST_F(WebNamesOfItsOwn, ModifiersHaveTheirRules)
{
    write_home("panel_range.json", "{'plus':[0,9],'fine':[0,9]}");
    write_home("panel.conf", "plus = '3'\nfine = '4'\n");
    write_home("www2json.json", "{'json_pattern_list':['panel'],'front':['panel'],"
                                "'panel':{'plus':['plus','N','P'],'fine':['fine','N','F']}}");
    start_host();

    const run_result plus = run({"www", "set", "front", "plus=5"});
    EXPECT_EQ(plus.errors, "camparam: plus: the host stores 0 for any value that is sent\n");
    EXPECT_EQ(run({"get", "panel.plus"}).output, "panel.plus=3\n");
    EXPECT_EQ(run({"www", "set", "front", "fine=5.0"}).output, "fine=5.00\n");
    EXPECT_EQ(run({"www", "set", "front", "fine=5.5"}).status, 4);
    EXPECT_EQ(run({"get", "panel.fine"}).output, "panel.fine=5\n");
}

TEST_F(WebNames, WhatThePageDoesNotShowIsNotSent)
{
    start_host();

    EXPECT_EQ(run({"www", "set", "image", "gamma=3&httpport=91"}).status, 6);
    EXPECT_EQ(run({"get", "isp0.gamma", "netport.http_port"}).output,
              "isp0.gamma=3\nnetport.http_port=80\n");
}

TEST_F(WebNames, OfANameThatIsGivenTwiceTheLastValueStands)
{
    start_host();

    EXPECT_EQ(run({"www", "set", "image", "hue=5&hue=6&"}).output, "hue=6\n");
}

TEST_F(WebNames, AnUnknownPageIsNamed)
{
    start_host();

    for (const std::string &page :
         {std::string("nosuch"), std::string("isp0"), std::string(), std::string(1500, 'x')}) {
        const run_result got = run({"www", "get", page});
        EXPECT_EQ(got.status, 5) << page;
        EXPECT_EQ(got.output, "");
        EXPECT_EQ(got.errors, "camparam: no page \"" + page + "\"\n");
    }
}

TEST_F(WebNames, NeedAWebNameFile)
{
    start_host({"--www2json", "nosuch.json"});

    for (const std::vector<std::string> &words : std::vector<std::vector<std::string>>{
             {"www", "get", "image"}, {"www", "set", "image", "hue=5"}}) {
        const run_result got = run(words);
        EXPECT_EQ(got.status, 1);
        EXPECT_EQ(got.errors, "camparam: the host has no web-name file, or one that is not JSON\n");
    }
}

TEST_F(WebNames, AQueryWithoutEqualsSignIsNotSent)
{
    const fake_server camera([](const std::string &) { return std::vector<std::string>(); });

    for (const char *query : {"", "hue", "hue&gamma", "&"}) {
        const run_result got = run({"www", "set", "image", query});
        EXPECT_EQ(got.status, 2) << query;
        EXPECT_EQ(got.errors, "camparam: \"" + std::string(query) +
                                  "\" is not of the form NAME=VALUE&NAME=VALUE...\n");
    }
    EXPECT_TRUE(camera.requests().empty());
}

TEST_F(WebNames, TheHostThatDoesNotUnderstandSaysSo)
{
    const fake_server camera(
        [](const std::string &) { return std::vector<std::string>{"cJSON_Parse=null"}; });

    const run_result got = run({"www", "get", "image"});
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.errors, "camparam: the host does not understand the request\n");
}

TEST_F(WebNames, AnAnswerThatIsNoQueryIsNoAnswer)
{
    const fake_server camera([](const std::string &) {
        return std::vector<std::string>{"{}", ""};
    });

    const run_result got = run_until_reported({"www", "get", "image"}, "2 not understood");
    EXPECT_EQ(got.status, 3);
    EXPECT_NE(got.errors.find("2 not understood"), std::string::npos) << got.errors;
}

TEST_F(WebNames, APageWithoutValuesIsEmpty)
{
    const fake_server camera(
        [](const std::string &) { return std::vector<std::string>{"result=success"}; });

    const run_result got = run({"www", "get", "image"});
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.output, "");
}

} // namespace
