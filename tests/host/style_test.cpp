#include "host/host_process.h"

namespace {

class StyleCommand : public HostProcess {
protected:
    StyleCommand()
    {
        write_home("isp_range.json",
                   "{'isp0':{'style':[0,3],'hue':[0,10],'gamma':[0,4],'antiflicker':[0,2]}}");
        write_home("isp_def.json",
                   "{'isp0_style_def':0,'isp0_style_list':['day','lost','night','loud','far'],"
                   "'day':{'hue':5,'gamma':1,'antiflicker':1},"
                   "'night':{'hue':2,'antiflicker':2},'loud':{'hue':11,'gamma':3},"
                   "'far':{'hue':9,'gamma':4}}");
    }

    std::string list() { return client.ask("{'msg_type':'api_get','msg_name':'style'}"); }

    std::string set(const std::string &style_data)
    {
        return client.ask("{'msg_type':'api_set','msg_name':'style','data':" + style_data + "}");
    }

    std::string values() { return client.ask("{'msg_type':'get','isp0':['all']}"); }

    Client client;
};

std::string styles_with(const std::string &by_default, const std::string &current)
{
    return "{'msg_name':'style','styles':['day','night','loud','far'],'default':'" + by_default +
           "','current':'" + current + "'}";
}

std::string reply_with(const std::string &accepted, const std::string &refused)
{
    return "{'msg_name':'style','accepted':[" + accepted + "],'refused':{" + refused + "}}";
}

TEST_F(StyleCommand, ListsStylesThatHaveValues)
{
    start_host();

    EXPECT_EQ(list(), styles_with("day", "day"));
}

TEST_F(StyleCommand, AppliesWhatTheStyleNames)
{
    start_host();

    EXPECT_EQ(set("{'style':'night'}"), reply_with("'style','antiflicker','hue'", ""));

    EXPECT_EQ(values(), "{'isp0':{'style':2,'antiflicker':1,'hue':2,'gamma':1}}");
    EXPECT_EQ(list(), styles_with("day", "night"));
    EXPECT_TRUE(host_has_logged("isp_set_notify: para_set_isp_style_cur(0, 2)"));
    EXPECT_TRUE(host_has_logged("isp_set_notify: para_set_isp_hue_cur(0, 2)"));
}

TEST_F(StyleCommand, SurvivesARestart)
{
    start_host();
    set("{'style':'night'}");
    EXPECT_EQ(end_host(SIGTERM), 0);

    start_host();

    EXPECT_EQ(list(), styles_with("day", "night"));
    EXPECT_EQ(values(), "{'isp0':{'style':2,'antiflicker':1,'hue':2,'gamma':1}}");
}

TEST_F(StyleCommand, MakesAStyleTheDefaultForGood)
{
    start_host();
    EXPECT_EQ(set("{'style':'night','default':1}"),
              reply_with("'style','antiflicker','hue','default'", ""));
    EXPECT_EQ(list(), styles_with("night", "night"));
    EXPECT_EQ(set("{'style':'day'}"), reply_with("'style','antiflicker','hue','gamma'", ""));
    EXPECT_EQ(end_host(SIGTERM), 0);
    remove((data + "/isp_cur.json").c_str());

    start_host();

    EXPECT_EQ(list(), styles_with("night", "night"));
}

TEST_F(StyleCommand, MakesAStyleTheDefaultForEveryNumberButZero)
{
    start_host();

    for (const char *flag : {"-1", "2", "true"}) {
        const std::string on = "'default':" + std::string(flag);
        EXPECT_EQ(set("{'style':'night'," + on + "}"),
                  reply_with("'style','antiflicker','hue','default'", ""))
            << flag;
    }
}

TEST_F(StyleCommand, KeepsTheDefaultUnlessTold)
{
    start_host();

    EXPECT_EQ(set("{'style':'night','default':0}"), reply_with("'style','antiflicker','hue'", ""));
    EXPECT_EQ(set("{'style':'night','default':false}"),
              reply_with("'style','antiflicker','hue'", ""));
    EXPECT_EQ(list(), styles_with("day", "night"));
    EXPECT_FALSE(host_has_logged("odm_set_notify"));
}

TEST_F(StyleCommand, NamesValuesOutsideTheRange)
{
    start_host();

    EXPECT_EQ(set("{'style':'loud'}"),
              reply_with("'style','gamma'", "'hue':'out of range, 0 to 10'"));
}

TEST_F(StyleCommand, ChangesNothingWhenTheStyleIsRefused)
{
    start_host();
    const std::string before = values();

    for (const char *far : {"{'style':'far'}", "{'style':'far','default':1}"})
        EXPECT_EQ(set(far), reply_with("", "'style':'out of range, 0 to 3'")) << far;
    for (const char *name : {"lost", "dusk", "nigh", "NIGHT", ""})
        EXPECT_EQ(set("{'style':'" + std::string(name) + "','default':1}"),
                  reply_with("", "'style':'no such style'"))
            << name;

    EXPECT_EQ(values(), before);
    EXPECT_EQ(list(), styles_with("day", "day"));
    EXPECT_FALSE(host_has_logged("set_notify")) << host->errors();

    EXPECT_EQ(end_host(SIGTERM), 0);
    start_host();
    EXPECT_EQ(values(), before);
    EXPECT_EQ(list(), styles_with("day", "day"));
}

TEST_F(StyleCommand, RefusesWhatItDoesNotUnderstand)
{
    start_host();

    for (const char *wrong : {"{}", "{'style':1}", "{'style':null}", "{'default':1}", "'night'",
                              "{'style':'night','default':'1'}", "{'style':'night','default':[]}"})
        EXPECT_EQ(set(wrong), invalid_command) << wrong;
    EXPECT_EQ(client.ask("{'msg_type':'api_set','msg_name':'style'}"), invalid_command);
    EXPECT_EQ(list(), styles_with("day", "day"));
}

TEST_F(StyleCommand, ListsNothingWithoutAStyleFile)
{
    remove((home + "/isp_def.json").c_str());
    start_host();

    EXPECT_EQ(list(), "{'msg_name':'style','styles':[]}");
    EXPECT_EQ(set("{'style':'day'}"), reply_with("", "'style':'no such style'"));
}

TEST_F(StyleCommand, ListsStylesBeyondAGapAtTheEndOfTheRange)
{
    write_home("isp_def.json", "{'isp0_style_list':['day','night','dusk','gone','far'],"
                               "'day':{'hue':5},'night':{'hue':2},'dusk':{},'far':{}}");
    start_host();

    EXPECT_EQ(list(), "{'msg_name':'style','styles':['day','night','dusk','far'],"
                      "'default':'day','current':'day'}");
}

TEST_F(StyleCommand, ABogusRangeDoesNotHoldUpTheList)
{
    write_home("isp_range.json", "{'isp0':{'style':[0,2147483647],'hue':[0,10]}}");
    start_host();

    EXPECT_EQ(list(), styles_with("day", "day"));
}

TEST_F(StyleCommand, ListsANameThatIsGivenTwiceOnce)
{
    write_home("isp_def.json", "{'isp0_style_list':['day','day','Day'],'day':{'hue':5}}");
    start_host();

    EXPECT_EQ(list(), "{'msg_name':'style','styles':['day'],'default':'day','current':'day'}");
}

} // namespace
