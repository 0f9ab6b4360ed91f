#include "cli/run.h"
#include "host/host_process.h"

namespace {

class ListCommand : public HostProcess {};

TEST_F(ListCommand, ShowsALineForEachSetting)
{
    write_data("af_cur.json", "{'zoom_value':640}");
    start_host();

    const run_result listed = run({"list"});

    EXPECT_EQ(listed.status, 0);
    EXPECT_EQ(listed.output, "NAME           KIND    MIN   MAX   DEFAULT  VALUE\n"
                             "af.focus_mode  number  0     3     1        1\n"
                             "af.zoom_value  number  -100  1000  0        640    *\n");
    EXPECT_EQ(listed.errors, "");
}

TEST_F(ListCommand, ShowsAModule)
{
    start_host();

    EXPECT_EQ(run({"list", "af"}).output, run({"list"}).output);
}

TEST_F(ListCommand, ShowsOneSetting)
{
    start_host();

    EXPECT_EQ(run({"list", "af.zoom_value"}).output,
              "NAME           KIND    MIN   MAX   DEFAULT  VALUE\n"
              "af.zoom_value  number  -100  1000  0        0\n");
}

TEST_F(ListCommand, OffersASimilarName)
{
    start_host();

    const run_result member = run({"list", "af.zoom_valeu"});
    EXPECT_EQ(member.status, 5);
    EXPECT_EQ(member.output, "");
    EXPECT_EQ(member.errors,
              "camparam: no setting \"af.zoom_valeu\"; did you mean \"af.zoom_value\"?\n");

    const run_result beginning = run({"list", "af.zoom"});
    EXPECT_EQ(beginning.errors,
              "camparam: no setting \"af.zoom\"; did you mean \"af.zoom_value\"?\n");

    const run_result module = run({"list", "ag"});
    EXPECT_EQ(module.status, 5);
    EXPECT_EQ(module.errors, "camparam: no module \"ag\"; did you mean \"af\"?\n");

    const run_result nothing = run({"list", "af.brightness"});
    EXPECT_EQ(nothing.status, 5);
    EXPECT_EQ(nothing.errors, "camparam: no setting \"af.brightness\"\n");
}

TEST_F(ListCommand, OffersNoNameForAVeryLongOne)
{
    const std::string name(64, 'a');
    const fake_server camera(describing("'af':{'members':{'" + name + "':{'kind':'number'}}}", ""));

    EXPECT_EQ(run({"list", "af." + std::string(63, 'a') + "b"}).errors,
              "camparam: no setting \"af." + std::string(63, 'a') + "b\"; did you mean \"af." +
                  name + "\"?\n");
    EXPECT_EQ(run({"list", "af." + name + "b"}).errors,
              "camparam: no setting \"af." + name + "b\"\n");
}

TEST_F(ListCommand, PrintsJson)
{
    start_host();

    EXPECT_EQ(
        squeeze(run({"list", "--json", "af"}).output),
        "{'af':{'focus_mode':{'kind':'number','min':0,'max':3,'default':1,'start':1,'current':1},"
        "'zoom_value':{'kind':'number','min':-100,'max':1000,'default':0,'start':0,'current':0}}}");
    EXPECT_EQ(squeeze(run({"list", "--json", "af.focus_mode"}).output),
              "{'af':{'focus_mode':{'kind':'number','min':0,'max':3,'default':1,'start':1,'current'"
              ":1}}}");
}

TEST_F(ListCommand, ShowsNamesAndTexts)
{
    const fake_server camera(describing(
        "'audio':{'members':{"
        "'aeFormat':{'kind':'enum','names':['AAC','G711A'],'default':'AAC','current':'G711A'}}},"
        "'netport':{'members':{"
        "'host':{'kind':'text','default':'','current':''},"
        "'title':{'kind':'text','default':'Kamera','current':'Z\xc3\xbcrich\\n\\u001b[31m'},"
        "'port':{'kind':'text','default':'80','current':'80'}}}",
        ""));

    EXPECT_EQ(run({"list"}).output,
              "NAME            KIND  MIN  MAX  DEFAULT  VALUE\n"
              "audio.aeFormat  enum  -    -    AAC      G711A               *\n"
              "netport.host    text  -    -    \"\"       \"\"\n"
              "netport.title   text  -    -    Kamera   Z\xc3\xbcrich\\x0a\\x1b[31m  *\n"
              "netport.port    text  -    -    80       80\n");
    EXPECT_EQ(run({"list", "audio.aeFormat"}).output,
              "NAME            KIND  MIN  MAX  DEFAULT  VALUE\n"
              "audio.aeFormat  enum  -    -    AAC      G711A  *\n"
              "one of AAC, G711A\n");
    EXPECT_EQ(run({"list", "audio"}).output.find("one of"), std::string::npos);
}

TEST_F(ListCommand, ShowsValuesOfAHostThatDescribesNothing)
{
    start_store();

    EXPECT_EQ(run({"list", "af"}).output, "af.focus_mode=1\naf.zoom_value=0\n");
    EXPECT_EQ(run({"list", "af.zoom_value"}).output, "af.zoom_value=0\n");

    const run_result all = run({"list"});
    EXPECT_EQ(all.status, 1);
    EXPECT_EQ(all.errors, "camparam: the host does not describe its settings; name a module, such "
                          "as \"camparam list af\"\n");
}

} // namespace
