#include <sys/stat.h>

#include "cli/run.h"
#include "host/host_process.h"

namespace {

class StyleOfTheClient : public HostProcess {
protected:
    StyleOfTheClient() { home = SAMPLE_HOME; }
};

TEST_F(StyleOfTheClient, ShowsStyles)
{
    start_host();

    EXPECT_EQ(run({"style"}).output, "standard    current, default\n"
                                     "vivid\nsoft\nlowlight\nmonochrome\n");
    EXPECT_EQ(squeeze(run({"style", "--json"}).output),
              "{'styles':['standard','vivid','soft','lowlight','monochrome'],"
              "'default':'standard','current':'standard'}");
}

TEST_F(StyleOfTheClient, AppliesOne)
{
    start_host();

    const run_result applied = run({"style", "vivid"});

    EXPECT_EQ(applied.status, 0);
    EXPECT_EQ(applied.output, "vivid  current\n");
    EXPECT_EQ(applied.errors, "");
    EXPECT_EQ(run({"get", "isp0.style", "isp0.saturation"}).output,
              "isp0.style=1\nisp0.saturation=70\n");
    EXPECT_NE(run({"style"}).output.find("standard    default\nvivid       current\n"),
              std::string::npos);
}

TEST_F(StyleOfTheClient, MakesOneTheDefaultForGood)
{
    start_host();
    EXPECT_EQ(run({"style", "soft", "--default"}).output, "soft  current, default\n");
    EXPECT_EQ(end_host(SIGTERM), 0);

    start_host();

    EXPECT_NE(run({"style"}).output.find("soft        current, default\n"), std::string::npos);
}

TEST_F(StyleOfTheClient, OffersASimilarName)
{
    start_host();

    const run_result unknown = run({"style", "vivd"});
    EXPECT_EQ(unknown.status, 5);
    EXPECT_EQ(unknown.errors, "camparam: no style \"vivd\"; did you mean \"vivid\"?\n");
    EXPECT_FALSE(host_has_logged("isp_set_notify"));
}

TEST_F(StyleOfTheClient, NamesWhatWasRefused)
{
    home = data + "/own";
    mkdir(home.c_str(), 0755);
    write_home("isp_range.json", "{'isp0':{'style':[0,1],'hue':[0,10]}}");
    write_home("isp_def.json",
               "{'isp0_style_list':['a','b','c'],'a':{'hue':1},'b':{'hue':11},'c':{'hue':2}}");
    start_host();

    const run_result partly = run({"style", "b"});
    EXPECT_EQ(partly.status, 6);
    EXPECT_EQ(partly.output, "b  current\n");
    EXPECT_EQ(partly.errors, "camparam: isp0.hue: out of range, 0 to 10\n");

    const run_result refused = run({"style", "c"});
    EXPECT_EQ(refused.status, 4);
    EXPECT_EQ(refused.output, "c\n");
    EXPECT_EQ(refused.errors, "camparam: isp0.style: out of range, 0 to 1\n");
}

TEST_F(StyleOfTheClient, NeedsAHostThatHasStyles)
{
    start_store();

    const run_result none = run({"style"});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.errors, "camparam: the host does not tell its picture styles\n");
    EXPECT_EQ(run({"style", "vivid"}).status, 1);
}

} // namespace
