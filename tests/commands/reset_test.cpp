// The command "reset".
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "commands/kit.h"
#include "support/own_module.h"

class ResetCommand : public Kit {
protected:
    std::string reset(const std::string &details) { return ask("reset", details, "api_set"); }

    static void set_all(int number)
    {
        for (const char *name : {"Af", "Audio", "Video", "Isp", "Misc", "Pattern", "Conf"})
            kind_named(name).set(number);
    }
};

TEST_F(ResetCommand, SetsTheNamedMembersOfEachKindToTheirDefaults)
{
    start_store();
    set_all(9);
    const std::string settings = "'af.zoom_value','audio.audioInputVol','video0.gop',"
                                 "'isp0.bright','misc.vi_framerate','panel.brightness',"
                                 "'netport.port'";
    EXPECT_EQ(reset("{'af':['zoom_value'],'audio':['audioInputVol'],'video0':['gop'],"
                    "'isp0':['bright'],'misc':['vi_framerate'],'panel':['brightness'],"
                    "'netport':['port']}"),
              "{'accepted':[" + settings + "],'refused':{}}");
    for (const char *name : {"Af", "Audio", "Video", "Isp", "Misc", "Pattern", "Conf"})
        EXPECT_EQ(kind_named(name).get(), default_number) << name;
}

TEST_F(ResetCommand, OfAllTellsWhatHasChanged)
{
    write_home("audio_range.json", "{'audioInputVol':[0,100],'mute':[0,1]}");
    write_home("audio_def.json", "{'audioInputVol':40,'mute':0}");
    start_store();
    kind_named("Audio").set(9);
    EXPECT_EQ(reset("{'audio':['all'],'af':['all']}"),
              "{'accepted':['audio.audioInputVol'],'refused':{}}");
    EXPECT_EQ(kind_named("Audio").get(), default_number);
    EXPECT_EQ(reset("{'audio':['all']}"), "{'accepted':[],'refused':{}}");
}

TEST_F(ResetCommand, AcceptsWhatHasItsDefault)
{
    start_store();
    const unsigned before = status_of("af").changes;
    EXPECT_EQ(reset("{'af':['zoom_value']}"), "{'accepted':['af.zoom_value'],'refused':{}}");
    EXPECT_EQ(status_of("af").changes, before);
}

TEST_F(ResetCommand, NamesWhatItCannotReset)
{
    write_data("netport.conf", "port = '9'\nmore = 'x'\n"); // a key that has no default
    start_store();
    EXPECT_EQ(reset("{'af':['none',5],'none':['all'],'netport':['more','port']}"),
              "{'accepted':['netport.port'],'refused':{'af.none':'no such member',"
              "'af':'no such member','none':'no such module','netport.more':'has no default'}}");
    EXPECT_EQ(reset("{'netport':['all']}"), "{'accepted':[],'refused':{}}");
    EXPECT_STREQ(para_conf_get_member("netport", "more"), "x");
}

// A set request for "rgain_tuning" would change "rgain".
TEST_F(ResetCommand, LeavesReadOnlyMembersAlone)
{
    write_home("isp_range.json", "{'isp0':{'style':[0,0],'rgain':[0,9],'rgain_tuning':[0,9]}}");
    write_home("isp_def.json", "{'isp0_style_def':0,'isp0_style_list':['plain'],"
                               "'plain':{'style':0,'rgain':4,'rgain_tuning':1}}");
    start_store();
    para_set_isp_rgain_cur(0, 5);
    EXPECT_EQ(reset("{'isp0':['rgain_tuning']}"), "{'accepted':['isp0.rgain_tuning'],'refused':{}}")
        << "it has its default";
    para_set_isp_rgain_tuning_cur(0, 2);
    EXPECT_EQ(reset("{'isp0':['rgain_tuning']}"),
              "{'accepted':[],'refused':{'isp0.rgain_tuning':'read-only'}}");
    EXPECT_EQ(para_get_isp_rgain_cur(0), 5);
    EXPECT_EQ(reset("{'isp0':['all']}"), "{'accepted':['isp0.rgain'],'refused':{}}");
    EXPECT_EQ(para_get_isp_rgain_cur(0), 4);
    EXPECT_EQ(para_get_isp_rgain_tuning_cur(0), 2);
}

TEST_F(ResetCommand, TellsOfADefaultThatIsNotTaken)
{
    write_home("af_def.json", "{'zoom_value':300}");
    start_store();
    kind_named("Af").set(9);
    EXPECT_EQ(reset("{'af':['zoom_value']}"),
              "{'accepted':[],'refused':{'af.zoom_value':'not taken'}}");
    EXPECT_EQ(kind_named("Af").get(), 9);
}

TEST_F(ResetCommand, ResetsSecrets)
{
    write_home("descriptions.json", "{'netport':{'port':{'secret':true}}}");
    start_store();
    kind_named("Conf").set(9);
    EXPECT_EQ(reset("{'netport':['all']}"), "{'accepted':['netport.port'],'refused':{}}");
    EXPECT_EQ(kind_named("Conf").get(), default_number);
}

TEST_F(ResetCommand, SetsNothingWhereThereIsNothingToReset)
{
    static std::atomic<int> sets{0};
    add_own_module(
        "lamp",
        [](const char *, const cJSON *, cJSON **answer, const char *) {
            *answer = parse("{'level':5}").release();
            return 0;
        },
        [](const char *, const cJSON *, const char *) { return static_cast<int>(sets++); });
    start_store();
    EXPECT_EQ(reset("{'lamp':['level']}"),
              "{'accepted':[],'refused':{'lamp.level':'has no default'}}");
    EXPECT_EQ(reset("{'lamp':['all']}"), "{'accepted':[],'refused':{}}");
    EXPECT_EQ(sets, 0);
}

TEST_F(ResetCommand, RefusesOtherForms)
{
    start_store();
    kind_named("Af").set(9);
    for (const char *details : {"", "[]", "{'af':'all'}", "{'af':['all'],'netport':5}"})
        EXPECT_EQ(reset(details), invalid) << details;
    EXPECT_EQ(ask("reset", "{'af':['all']}"), invalid) << "api_get";
    EXPECT_EQ(kind_named("Af").get(), 9);
    EXPECT_EQ(reset("{}"), "{'accepted':[],'refused':{}}");
}
