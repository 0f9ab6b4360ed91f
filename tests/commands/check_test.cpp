// The command "check".
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "commands/kit.h"
#include "host/fake_server.h"
#include "support/own_module.h"

class CheckCommand : public Kit {
protected:
    CheckCommand()
    {
        write_home("audio_range.json",
                   "{'aeFormat':['AAC','G711A'],'audioOut':[0,1],'audioInputVol':[0,100]}");
        write_home("audio_def.json", "{'aeFormat':'AAC','audioOut':0,'audioInputVol':40}");
        add_own_module("lamp", answer, take);
        lamp = "{'level':5,'state':'on','list':[1]}";
        platformparam_set_setting_observer([](const para_setting_change *) { changes++; });
        start_store();
    }

    // Of one value: "taken", or why it is refused.
    std::string check(const std::string &module, const std::string &member,
                      const std::string &value)
    {
        const json reply = asked("check", "{'" + module + "':{'" + member + "':" + value + "}}");
        const cJSON *const refused = cJSON_GetObjectItem(reply.get(), "refused");
        const cJSON *const accepted = cJSON_GetObjectItem(reply.get(), "accepted");
        const std::string name = module + "." + member;
        if (cJSON_GetArraySize(refused) == 1 && cJSON_GetArraySize(accepted) == 0 &&
            refused->child->string == name)
            return refused->child->valuestring;
        if (cJSON_GetArraySize(refused) == 0 && cJSON_GetArraySize(accepted) == 1 &&
            accepted->child->valuestring == name)
            return "taken";
        return compact(reply.get());
    }

    static inline shared_text lamp;
    static inline std::atomic<int> changes{0};

private:
    static int answer(const char *, const cJSON *, cJSON **reply, const char *)
    {
        *reply = parse(lamp).release();
        return 0;
    }
    static int take(const char *, const cJSON *, const char *)
    {
        ADD_FAILURE() << "nothing is to be set";
        return 0;
    }
};

TEST_F(CheckCommand, LooksAtNumbers)
{
    for (const char *value : {"0", "100", "1e2"})
        EXPECT_EQ(check("af", "zoom_value", value), "taken") << value;
    for (const char *value : {"-1", "101", "2147483647"})
        EXPECT_EQ(check("af", "zoom_value", value), "out of range, 0 to 100") << value;
    for (const char *value : {"1.5", "4294967296", "'5'", "null", "true", "[5]"})
        EXPECT_EQ(check("af", "zoom_value", value), "not a 32-bit integer") << value;
    EXPECT_EQ(check("misc", "vi_framerate", "101"), "out of range, 0 to 100")
        << "that the store takes it is no reason to offer it";
}

TEST_F(CheckCommand, LooksAtNames)
{
    EXPECT_EQ(check("audio", "aeFormat", "'G711A'"), "taken");
    for (const char *value : {"'G711'", "'aac'", "''", "0", "null", "['AAC']"})
        EXPECT_EQ(check("audio", "aeFormat", value), "none of its names") << value;
}

TEST_F(CheckCommand, LooksAtTexts)
{
    EXPECT_EQ(check("netport", "port", "''"), "taken");
    EXPECT_EQ(check("netport", "port", "'" + std::string(255, 'x') + "'"), "taken");
    EXPECT_EQ(check("netport", "port", "'" + std::string(256, 'x') + "'"), "longer than 255 bytes");
    for (const char *value : {"80", "null", "{}"})
        EXPECT_EQ(check("netport", "port", value), "not a text") << value;
}

TEST_F(CheckCommand, KnowsWhatCannotBeSet)
{
    EXPECT_EQ(check("audio", "audioOut", "1"), "read-only");
    EXPECT_EQ(check("af", "none", "1"), "no such member");
    EXPECT_EQ(check("af", "zoom", "1"), "no such member");
    EXPECT_EQ(ask("check", "{'none':{'a':1,'b':2},'AF':{},'msg_id':{'a':1}}"),
              "{'accepted':[],'refused':{'none':'no such module','AF':'no such module',"
              "'msg_id':'no such module'}}");
    EXPECT_EQ(ask("check", "{'af':5,'netport':['port']}"),
              "{'accepted':[],'refused':{'af':'not an object of settings',"
              "'netport':'not an object of settings'}}");
}

TEST_F(CheckCommand, CutsLongNamesBetweenCharacters)
{
    std::string name = "af.x", whole = "x";
    for (int i = 0; i < 157; i++)
        name += "\u00fc";
    for (int i = 0; i < 200; i++)
        whole += "\u00fc";
    EXPECT_EQ(ask("check", "{'af':{'" + whole + "':1}}"),
              "{'accepted':[],'refused':{'" + name + "':'no such member'}}");
}

TEST_F(CheckCommand, LooksAtModulesOfTheHost)
{
    EXPECT_EQ(check("lamp", "level", "7.5"), "taken");
    EXPECT_EQ(check("lamp", "level", "'7'"), "not a number");
    EXPECT_EQ(check("lamp", "state", "'off'"), "taken");
    EXPECT_EQ(check("lamp", "list", "{'a':null}"), "taken");
    lamp = "5";
    EXPECT_EQ(ask("check", "{'lamp':7}"), "{'accepted':['lamp'],'refused':{}}");
    EXPECT_EQ(ask("check", "{'lamp':'7'}"), "{'accepted':[],'refused':{'lamp':'not a number'}}");
    lamp = "{}";
    EXPECT_EQ(check("lamp", "level", "1"), "no such member");
}

TEST_F(CheckCommand, TellsOfSeveralAndChangesNothing)
{
    EXPECT_EQ(ask("check", "{'af':{'zoom_value':9,'none':1},'netport':{'port':'9'}}"),
              "{'accepted':['af.zoom_value','netport.port'],"
              "'refused':{'af.none':'no such member'}}");
    EXPECT_EQ(ask("check", "{}"), "{'accepted':[],'refused':{}}");
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(kind_named("Af").get(), default_number);
}

TEST_F(CheckCommand, NeedsValuesToLookAt)
{
    EXPECT_EQ(ask("check"), invalid);
    EXPECT_EQ(ask("check", "[]"), invalid);
    EXPECT_EQ(ask("check", "{'af':{'zoom_value':9}}", "api_set"), invalid);
}
