// Settings in ".conf" files that other programs own.
#include "camparam/conf.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "modules/text/file_lock.h"
#include "support/store.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

std::vector<std::string> members_told; // "<module> <key>"
void tell_member(const char *module, const char *key)
{
    members_told.push_back(std::string(module) + " " + key);
}

std::vector<std::string> updates_told;
int tell_update(const char *module)
{
    updates_told.push_back(module);
    return -1; // ignored
}

int switch_calls = 0;
void save_switch()
{
    switch_calls++;
}

const char port_defaults[] = "port = '80'\nrtsp=554\nname = 'front door'\nempty = ''\n";
const char *const unknown_modules[] = {"netpor", "netports", "Netport", "conf", "", nullptr};

std::string text_or_none(const char *text)
{
    return text != nullptr ? text : "none";
}

} // namespace

class ConfModule : public Store {
protected:
    ConfModule()
    {
        para_profile.conf_member_notify_hook = tell_member;
        para_profile.conf_update_hook = tell_update;
        para_profile.conf_save_hook = save_switch;
    }

    void init(const std::string &defaults = port_defaults, const std::string &current = "")
    {
        write_home("netport.conf", defaults);
        if (!current.empty())
            write_data("netport.conf", current);
        init_without_files();
    }
    void init_without_files()
    {
        EXPECT_EQ(para_init_conf("conf"), 0);
        EXPECT_EQ(para_init_conf("netport"), 0);
    }

    std::string value(const char *key)
    {
        return text_or_none(para_conf_get_member("netport", key));
    }
    std::string default_value(const char *key)
    {
        char text[300];
        return para_conf_get_def_member_safe("netport", key, text, sizeof text) == 0 ? text
                                                                                     : "none";
    }

    bool change_pending()
    {
        move_clock(10000);
        return para_need_save_conf("netport") == 1;
    }

    std::string query(const std::string &item, const std::string &key = "netport",
                      const char *row = "netport")
    {
        const json tree = parse("{'" + key + "':" + item + "}");
        cJSON *answer = nullptr;
        EXPECT_EQ(para_get_conf_opt(key.c_str(), tree->child, &answer, row), 0);
        const json owner(answer);
        return answer != nullptr ? compact(answer) : "none";
    }

    void change(const std::string &item, const char *row = "netport")
    {
        const json tree = parse("{'netport':" + item + "}");
        EXPECT_EQ(para_set_conf_opt("netport", tree->child, row), 0);
    }

    std::string saved()
    {
        EXPECT_EQ(para_save_conf("netport"), 0);
        return read_data("netport.conf").value_or("none");
    }

    // A module without values: unknown, or one whose defaults could not be read.
    void expect_nothing(const char *module)
    {
        SCOPED_TRACE(text_or_none(module));
        char buffer[32] = "untouched";
        const char *const keys[] = {"port"};
        EXPECT_EQ(para_conf_get_member(module, "port"), nullptr);
        EXPECT_EQ(para_conf_get_member_safe(module, "port", buffer, sizeof buffer), -1);
        EXPECT_EQ(para_conf_get_def_member_safe(module, "port", buffer, sizeof buffer), -1);
        EXPECT_EQ(_para_conf_set_member(module, "port", "1"), -1);
        EXPECT_EQ(para_conf_set_member(module, "port", "1"), -1);
        EXPECT_EQ(para_conf_key_IsChanged(module, keys, 1), -1);
        EXPECT_EQ(para_save_conf_2_buf(module, buffer, sizeof buffer), -1);
        EXPECT_STREQ(buffer, "untouched");
        EXPECT_EQ(query("['all']", "x", module), "{}");
        EXPECT_EQ(query("['all']", "x_def", module), "{}");
        EXPECT_EQ(query("['port','rtsp']", "x", module), "{}");
        change("{'port':'1'}", module);
        EXPECT_EQ(para_save_conf(module), -1);
        EXPECT_THAT(members_told, IsEmpty());
        EXPECT_THAT(updates_told, IsEmpty());
    }

    int changed(const std::vector<const char *> &keys)
    {
        return para_conf_key_IsChanged("netport", keys.data(),
                                       static_cast<unsigned char>(keys.size()));
    }
};

using ConfStart = ConfModule;
using ConfReload = ConfModule;
using ConfValue = ConfModule;
using ConfSetter = ConfModule;
using ConfSetRequest = ConfModule;
using ConfQuery = ConfModule;
using ConfSave = ConfModule;
using ConfDump = ConfModule;
using ConfKeyChange = ConfModule;

// --- Start-up ---

TEST_F(ConfStart, TheFirstCallStartsTheStoreAndLoadsNothing)
{
    write_home("netport.conf", port_defaults);
    EXPECT_EQ(para_init_conf("netport"), 0);
    EXPECT_THAT(traces(), IsEmpty());
    expect_nothing("netport");
    EXPECT_EQ(para_need_save_conf("netport"), -1);
    EXPECT_EQ(para_init_single_conf("netport"), -1);

    EXPECT_EQ(para_init_conf("netport"), 0);
    EXPECT_EQ(value("port"), "80");
}

TEST_F(ConfStart, RegistersTheNetportWorkOnce)
{
    init();
    para_init_conf("overlay");
    ASSERT_THAT(registered_work(), SizeIs(1));
    ASSERT_THAT(registered_work()[0], SizeIs(1));
    const fifo_work work = registered_work()[0][0];
    EXPECT_STREQ(work.name, "netport");
    EXPECT_EQ(work.type, nullptr);
    EXPECT_STREQ(static_cast<const char *>(work.argument), "netport");
    EXPECT_NE(work.handler, nullptr);
}

TEST_F(ConfStart, LoadsDefaultsAndCurrentValues)
{
    init(port_defaults, "port = '8080'\nmore=1\n");
    EXPECT_EQ(value("port"), "8080");
    EXPECT_EQ(default_value("port"), "80");
    EXPECT_EQ(value("rtsp"), "554") << "not in the current file";
    EXPECT_EQ(value("name"), "front door");
    EXPECT_EQ(value("empty"), "");
    EXPECT_EQ(value("more"), "1");
    EXPECT_EQ(default_value("more"), "none");
    EXPECT_FALSE(change_pending());
}

TEST_F(ConfStart, WithoutACurrentFileTheDefaultsStand)
{
    init();
    for (const char *key : {"port", "rtsp", "name", "empty"})
        EXPECT_EQ(value(key), default_value(key)) << key;
    EXPECT_FALSE(read_data("netport.conf"));
}

TEST_F(ConfStart, WithoutADefaultsFileThereIsNothing)
{
    write_data("netport.conf", "port = '8080'\n");
    init_without_files();
    expect_nothing("netport");
    EXPECT_EQ(para_need_save_conf("netport"), 0) << "the module is known";
    EXPECT_EQ(read_data("netport.conf"), "port = \"8080\"\n");
    EXPECT_EQ(para_init_single_conf("netport"), -1);
}

TEST_F(ConfStart, AFailedModuleKeepsItsRecord)
{
    write_home("overlay.conf", "text = 'hello'\n");
    init_without_files();
    para_init_conf("overlay");
    EXPECT_STREQ(para_conf_get_member("overlay", "text"), "hello");
    EXPECT_EQ(para_need_save_conf("netport"), 0);

    write_home("netport.conf", port_defaults);
    EXPECT_EQ(para_init_single_conf("netport"), 0);
    EXPECT_EQ(value("port"), "80");
    EXPECT_STREQ(para_conf_get_member("overlay", "text"), "hello");
}

TEST_F(ConfStart, ThereAreSixtyFourRecords)
{
    para_init_conf("conf");
    for (int i = 0; i < 65; i++) {
        const std::string name = "m" + std::to_string(i);
        if (i % 2 == 0)
            write_home(name + ".conf", "a = '" + std::to_string(i) + "'\n");
        EXPECT_EQ(para_init_conf(name.c_str()), 0) << name;
    }
    for (int i = 0; i < 64; i++) {
        const std::string name = "m" + std::to_string(i);
        EXPECT_EQ(para_need_save_conf(name.c_str()), 0) << name;
        EXPECT_EQ(text_or_none(para_conf_get_member(name.c_str(), "a")),
                  i % 2 == 0 ? std::to_string(i) : "none");
    }
    expect_nothing("m64");
    EXPECT_EQ(para_need_save_conf("m64"), -1);
}

TEST_F(ConfStart, NamesAreKeptToSixtyThreeCharacters)
{
    const std::string fits(63, 'f'), longer(64, 'l');
    write_home(fits + ".conf", port_defaults);
    write_home(longer + ".conf", port_defaults);
    para_init_conf("conf");
    para_init_conf(fits.c_str());
    para_init_conf(longer.c_str());
    EXPECT_STREQ(para_conf_get_member(fits.c_str(), "port"), "80");
    expect_nothing(longer.c_str());
}

TEST_F(ConfStart, APathThatDoesNotFitIsNoFile)
{
    write_home("netport.conf", port_defaults);
    const std::string long_home = home + "/" + std::string(115 - home.size(), 'h');
    std::filesystem::create_directory(long_home);
    write_file(long_home + "/netport.con", "port = 1\n"); // the path cut to 127 characters
    write_file(long_home + "/netport.conf", "port = 2\n");
    para_profile.home_dir = long_home.c_str();
    init_without_files();
    EXPECT_EQ(value("port"), "none");
    para_profile.home_dir = home.c_str();
}

TEST_F(ConfStart, TheDefaultListsHoldThreeModules)
{
    for (const char *name : {"netport", "overlay", "ndi_config", "devinfo"})
        write_home(std::string(name) + ".conf", std::string("name = ") + name + "\n");
    start_store();
    EXPECT_STREQ(para_get_netport_member("name"), "netport");
    EXPECT_STREQ(para_get_overlay_member("name"), "overlay");
    EXPECT_STREQ(para_get_ndi_config_member("name"), "ndi_config");
    EXPECT_EQ(para_need_save_conf("devinfo"), -1);
    const char *const keys[] = {"name"};
    EXPECT_EQ(para_key_IsChanged_netport(keys, 1), 0);
    EXPECT_EQ(para_key_IsChanged_ndi(keys, 1), 0);
    EXPECT_EQ(para_key_IsChanged_devinfo(keys, 1), -1);
}

TEST_F(ConfStart, TheWebNameFileMayListOthers)
{
    write_home("www2json.json", "{'conf_pattern_list':['devinfo']}");
    write_home("devinfo.conf", "name = one\n");
    write_home("netport.conf", port_defaults);
    start_store();
    const char *const keys[] = {"name"};
    EXPECT_EQ(para_key_IsChanged_devinfo(keys, 1), 0);
    para_conf_set_member("devinfo", "name", "two");
    EXPECT_EQ(para_key_IsChanged_devinfo(keys, 1), 1);
    EXPECT_EQ(para_get_netport_member("port"), nullptr);
    EXPECT_EQ(para_key_IsChanged_netport(keys, 1), -1);
    EXPECT_EQ(para_key_IsChanged_ndi(keys, 1), -1);
    EXPECT_EQ(para_get_overlay_member("port"), nullptr);
    EXPECT_EQ(para_get_ndi_config_member("port"), nullptr);
}

// --- Reload ---

TEST_F(ConfReload, ReadsTheFilesAgain)
{
    init(port_defaults, "port = '8080'\n");
    write_home("netport.conf", "port = '81'\nadded = '1'\n");
    write_data("netport.conf", "rtsp = '555'\n");
    para_conf_need_update("netport");
    EXPECT_EQ(default_value("port"), "81");
    EXPECT_EQ(value("port"), "81") << "the current file does not have it any more";
    EXPECT_EQ(value("rtsp"), "555");
    EXPECT_EQ(default_value("rtsp"), "554") << "the objects are kept";
    EXPECT_EQ(value("added"), "1");
    EXPECT_EQ(value("name"), "front door");
    EXPECT_FALSE(change_pending());
}

TEST_F(ConfReload, TellsTheUpdateHook)
{
    init();
    forget_traces();
    para_conf_need_update("netport");
    EXPECT_THAT(updates_told, ElementsAre("netport"));
    EXPECT_THAT(traces_of("para_conf_need_update"), ElementsAre("enter\n", "leave\n"));
    EXPECT_THAT(members_told, IsEmpty());

    para_profile.conf_update_hook = nullptr;
    para_conf_need_update("netport");
    EXPECT_THAT(updates_told, SizeIs(1));
}

TEST_F(ConfReload, TellsTheUpdateHookAlsoWhenItFails)
{
    init();
    unlink((home + "/netport.conf").c_str());
    para_conf_need_update("netport");
    para_conf_need_update("never heard of");
    EXPECT_THAT(updates_told, ElementsAre("netport", "never heard of"));
}

TEST_F(ConfReload, TheHookSeesTheNewValues)
{
    init();
    static std::string seen;
    para_profile.conf_update_hook = [](const char *module) {
        seen = text_or_none(para_conf_get_member(module, "port"));
        para_conf_set_member(module, "rtsp", "1");
        return 0;
    };
    write_data("netport.conf", "port = '8080'\n");
    para_conf_need_update("netport");
    EXPECT_EQ(seen, "8080");
    EXPECT_EQ(value("rtsp"), "1") << "it may set values";
}

TEST_F(ConfReload, WithoutADefaultsFileTheValuesAreGoneUntilOneSucceeds)
{
    init(port_defaults, "port = '8080'\n");
    std::filesystem::rename(home + "/netport.conf", home + "/away.conf");
    EXPECT_EQ(para_init_single_conf("netport"), -1);
    expect_nothing("netport");

    std::filesystem::rename(home + "/away.conf", home + "/netport.conf");
    EXPECT_EQ(para_init_single_conf("netport"), 0);
    EXPECT_EQ(value("port"), "8080");
    EXPECT_EQ(default_value("port"), "80");
}

TEST_F(ConfReload, OverwritesWhatWasNotSaved)
{
    init(port_defaults, "port = '8080'\n");
    para_conf_set_member("netport", "port", "1");
    para_conf_set_member("netport", "added", "2");
    EXPECT_EQ(para_init_single_conf("netport"), 0);
    EXPECT_EQ(value("port"), "8080");
    EXPECT_EQ(value("added"), "2") << "no file has it";
}

TEST_F(ConfReload, TheNetportWorkReloadsNetport)
{
    init();
    write_data("netport.conf", "port = '8080'\n");
    const fifo_work work = registered_work().at(0).at(0);
    work.handler(work.argument);
    EXPECT_EQ(value("port"), "8080");
    EXPECT_THAT(updates_told, ElementsAre("netport"));

    write_data("netport.conf", "port = '8081'\n");
    para_need_update_netport();
    EXPECT_EQ(value("port"), "8081");
    EXPECT_THAT(updates_told, ElementsAre("netport", "netport"));
}

TEST_F(ConfReload, AnUnknownModuleCannotBeLoaded)
{
    init();
    for (const char *module : unknown_modules)
        EXPECT_EQ(para_init_single_conf(module), -1) << text_or_none(module);
}

// --- Values ---

TEST_F(ConfValue, UnknownModulesHaveNone)
{
    init();
    for (const char *module : unknown_modules) {
        expect_nothing(module);
        EXPECT_EQ(para_need_save_conf(module), -1) << text_or_none(module);
    }
}

TEST_F(ConfValue, UnknownKeysHaveNone)
{
    init();
    char text[32] = "untouched";
    for (const char *key : {"por", "ports", "Port", "", static_cast<const char *>(nullptr)}) {
        EXPECT_EQ(para_conf_get_member("netport", key), nullptr);
        EXPECT_NE(para_conf_get_member_safe("netport", key, text, sizeof text), 0);
        EXPECT_NE(para_conf_get_def_member_safe("netport", key, text, sizeof text), 0);
    }
    EXPECT_STREQ(text, "untouched");
}

TEST_F(ConfValue, TheMemberIsTheStoredTextItself)
{
    init();
    const char *const text = para_conf_get_member("netport", "port");
    EXPECT_STREQ(text, "80");
    EXPECT_EQ(para_conf_get_member("netport", "port"), text);
    EXPECT_EQ(para_get_netport_member("port"), text);
}

TEST_F(ConfValue, TheTextIsCopiedWhenItFits)
{
    init(port_defaults, "port = '12345'\n");
    char text[8] = "xxxxxxx";
    EXPECT_EQ(para_conf_get_member_safe("netport", "port", text, 6), 0);
    EXPECT_STREQ(text, "12345");
    EXPECT_EQ(text[6], 'x');
    for (const int size : {5, 1, 0, -1})
        EXPECT_NE(para_conf_get_member_safe("netport", "port", text, size), 0) << size;
    EXPECT_EQ(para_conf_get_def_member_safe("netport", "port", text, 3), 0);
    EXPECT_STREQ(text, "80");
    EXPECT_NE(para_conf_get_def_member_safe("netport", "port", text, 2), 0);
}

TEST_F(ConfValue, TextsOfAnyLengthAreKept)
{
    const std::string fits(255, 'f'), longer(256, 'l'), huge(10000, 'h');
    init("fits = '" + fits + "'\nlonger = '" + longer + "'\nhuge = '" + huge + "'\n");
    EXPECT_EQ(value("fits"), fits);
    EXPECT_EQ(value("longer"), longer);
    EXPECT_EQ(value("huge"), huge);
    EXPECT_EQ(query("['fits','longer','huge']"), "{'fits':'" + fits + "'}");
    EXPECT_EQ(query("['all']"),
              "{'fits':'" + fits + "','longer':'" + longer + "','huge':'" + huge + "'}");
    EXPECT_EQ(para_conf_set_member("netport", "fits", longer.c_str()), 1);
    EXPECT_EQ(value("fits"), longer);
    EXPECT_EQ(saved(),
              "fits = \"" + longer + "\"\nlonger = \"" + longer + "\"\nhuge = \"" + huge + "\"\n");
}

// --- Setters ---

TEST_F(ConfSetter, StoresAndTellsTheHook)
{
    init();
    EXPECT_EQ(para_conf_set_member("netport", "port", "8080"), 1);
    EXPECT_EQ(value("port"), "8080");
    EXPECT_EQ(default_value("port"), "80");
    EXPECT_THAT(members_told, ElementsAre("netport port"));
    EXPECT_THAT(updates_told, IsEmpty());
    EXPECT_TRUE(change_pending());
}

TEST_F(ConfSetter, TheInternalSetterTellsNoHook)
{
    init();
    EXPECT_EQ(_para_conf_set_member("netport", "port", "8080"), 1);
    EXPECT_EQ(value("port"), "8080");
    EXPECT_THAT(members_told, IsEmpty());
    EXPECT_TRUE(change_pending());
}

TEST_F(ConfSetter, TheSameValueChangesNothing)
{
    init();
    EXPECT_EQ(para_conf_set_member("netport", "port", "80"), 0);
    EXPECT_EQ(_para_conf_set_member("netport", "empty", ""), 0);
    EXPECT_THAT(members_told, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(ConfSetter, ANewKeyIsAdded)
{
    init();
    EXPECT_EQ(para_conf_set_member("netport", "new", ""), 1);
    EXPECT_EQ(value("new"), "");
    EXPECT_EQ(default_value("new"), "none");
    EXPECT_THAT(members_told, ElementsAre("netport new"));
}

TEST_F(ConfSetter, NullTextsAreRefused)
{
    init();
    EXPECT_NE(para_conf_set_member("netport", "port", nullptr), 1);
    EXPECT_NE(para_conf_set_member("netport", nullptr, "1"), 1);
    EXPECT_EQ(value("port"), "80");
    EXPECT_THAT(members_told, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(ConfSetter, WorksWithoutAHook)
{
    para_profile.conf_member_notify_hook = nullptr;
    init();
    EXPECT_EQ(para_conf_set_member("netport", "port", "1"), 1);
    EXPECT_EQ(value("port"), "1");
}

TEST_F(ConfSetter, ARepeatedValueDoesNotPostponeTheSave)
{
    init();
    stop_clock();
    para_conf_set_member("netport", "port", "1");
    move_clock(1999);
    EXPECT_EQ(para_need_save_conf("netport"), 0);
    para_conf_set_member("netport", "port", "1");
    move_clock(1);
    EXPECT_EQ(para_need_save_conf("netport"), 1);
    para_conf_set_member("netport", "port", "2");
    EXPECT_EQ(para_need_save_conf("netport"), 0) << "a change restarts the delay";
}

// --- Set requests ---

TEST_F(ConfSetRequest, AppliesTexts)
{
    init();
    forget_traces();
    change("{'port':'8080','new':'1','rtsp':'554','name':''}");
    EXPECT_EQ(value("port") + value("new") + value("rtsp") + value("name"), "80801554");
    EXPECT_THAT(traces_of("para_set_conf_opt"), ElementsAre("need_to_notify\n"));
    EXPECT_TRUE(change_pending());
}

TEST_F(ConfSetRequest, TellsTheUpdateHookOnceWithTheRow)
{
    init();
    change("{'port':'8080','rtsp':'1','name':'x'}");
    EXPECT_THAT(updates_told, ElementsAre("netport"));
    EXPECT_THAT(members_told, IsEmpty());
}

TEST_F(ConfSetRequest, OtherTypesAreSkippedWithoutATrace)
{
    init();
    forget_traces();
    change("{'port':8080,'rtsp':true,'name':null,'empty':['x'],'new':{'a':'b'}}");
    EXPECT_EQ(query("['all']"), query("['all']", "netport_def"));
    EXPECT_THAT(traces_of("para_set_conf_opt"), IsEmpty());
    EXPECT_THAT(updates_told, IsEmpty());
    EXPECT_FALSE(change_pending());

    change("{'port':8080,'rtsp':'555'}");
    EXPECT_EQ(value("port") + " " + value("rtsp"), "80 555");
}

TEST_F(ConfSetRequest, TellsNothingWhenNothingChanged)
{
    init();
    forget_traces();
    change("{'port':'80','rtsp':'554'}");
    for (const char *item : {"{}", "[]", "['a']", "'text'", "5", "null"})
        change(item);
    EXPECT_THAT(traces(), IsEmpty());
    EXPECT_THAT(updates_told, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(ConfSetRequest, WorksWithoutAHook)
{
    para_profile.conf_update_hook = nullptr;
    init();
    change("{'port':'1'}");
    EXPECT_EQ(value("port"), "1");
}

// --- Get requests ---

TEST_F(ConfQuery, AnswersTextsInTheOrderAsked)
{
    init(port_defaults, "port = '8080'\n");
    EXPECT_EQ(query("['rtsp','port','nothing','empty',5,null,[]]"),
              "{'rtsp':'554','port':'8080','empty':''}");
    EXPECT_EQ(query("['port']"), "{'port':'8080'}");
}

TEST_F(ConfQuery, AnItemThatIsNoListIsAnsweredEmpty)
{
    init();
    for (const char *item : {"'all'", "5", "null", "[]", "{}", "[[]]", "[null]", "['al']"})
        EXPECT_EQ(query(item), "{}") << item;
}

TEST_F(ConfQuery, AllAnswersEveryEntry)
{
    init(port_defaults, "port = '8080'\nmore = 'm'\n");
    const char *const current =
        "{'port':'8080','rtsp':'554','name':'front door','empty':'','more':'m'}";
    const char *const defaults = "{'port':'80','rtsp':'554','name':'front door','empty':''}";
    for (const char *item : {"['all']", "['allegro']"}) {
        EXPECT_EQ(query(item), current) << item;
        EXPECT_EQ(query(item, "netport_def"), defaults) << item;
        EXPECT_EQ(query(item, "undefined"), defaults) << item;
    }
    EXPECT_EQ(query("['all','port']"), "{'port':'8080'}");
}

TEST_F(ConfQuery, OnlyAllGivesDefaults)
{
    init(port_defaults, "port = '8080'\nrtsp = '555'\n");
    EXPECT_EQ(query("['port','rtsp']", "netport_def"), "{'port':'8080','rtsp':'555'}");
    EXPECT_EQ(query("['port']", "netport_def"), "{'port':'8080'}");
}

TEST_F(ConfQuery, AnUnknownRowIsAnsweredEmpty)
{
    init();
    EXPECT_EQ(query("['port']", "x", "netports"), "{}");
    EXPECT_EQ(query("['all']", "x", "netports"), "{}");
}

TEST_F(ConfQuery, TracesItsBeginningAndItsEnd)
{
    init();
    forget_traces();
    query("['port']");
    EXPECT_THAT(traces_of("para_get_conf_opt"), ElementsAre("inter\n", "leave\n"));
    EXPECT_THAT(levels_of("inter", "para_get_conf_opt"), ElementsAre(7));
    EXPECT_THAT(levels_of("leave", "para_get_conf_opt"), ElementsAre(7));
    forget_traces();
    query("['all']");
    EXPECT_THAT(traces_of("para_get_conf_opt"), ElementsAre("inter\n"));
}

TEST_F(ConfQuery, IsServedOverUdp)
{
    write_home("netport.conf", port_defaults);
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_id':1,'netport':{'port':'8080','rtsp':555}}"),
              "{'msg_id':1}");
    EXPECT_EQ(client.ask("{'msg_type':'get','netport':['port','rtsp'],'overlay':['all']}"),
              "{'netport':{'port':'8080','rtsp':'554'},'overlay':{}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','netport_def':['all']}"),
              "{'netport_def':{'port':'80','rtsp':'554','name':'front door','empty':''}}");
    EXPECT_THAT(updates_told, ElementsAre("netport"));
    EXPECT_THAT(members_told, IsEmpty());
}

TEST_F(ConfQuery, LongTextsTravelOverUdp)
{
    const std::string fits(255, 'f'), longer(256, 'l'), huge(3000, 'h');
    write_home("netport.conf", port_defaults);
    start_store();
    Client client;
    client.ask("{'msg_type':'set','netport':{'port':'" + fits + "'}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','netport':['port']}"),
              "{'netport':{'port':'" + fits + "'}}");
    for (const std::string &text : {longer, huge}) {
        client.ask("{'msg_type':'set','netport':{'port':'" + text + "'}}");
        EXPECT_EQ(client.ask("{'msg_type':'get','netport':['port']}"), "{'netport':{}}");
        EXPECT_THAT(client.ask("{'msg_type':'get','netport':['all']}"),
                    StartsWith("{'netport':{'port':'" + text + "'"));
    }
}

// --- Saving ---

TEST_F(ConfSave, NothingIsWrittenWhileTheSwitchIsOff)
{
    para_profile.conf_save_hook = nullptr;
    init();
    para_conf_set_member("netport", "port", "8080");
    move_clock(2000);
    EXPECT_EQ(para_save_conf("netport"), 0);
    EXPECT_EQ(para_save_conf("never heard of"), 0);
    EXPECT_FALSE(read_data("netport.conf"));
    EXPECT_EQ(para_need_save_conf("netport"), 1) << "it stays due";

    para_profile.conf_save_hook = save_switch;
    EXPECT_THAT(saved(), StartsWith("port = \"8080\"\n"));
    EXPECT_EQ(para_need_save_conf("netport"), 0);
}

TEST_F(ConfSave, TheSwitchIsNeverCalled)
{
    init();
    para_conf_set_member("netport", "port", "8080");
    saved();
    EXPECT_EQ(switch_calls, 0);
}

TEST_F(ConfSave, WritesTheCurrentValuesAlone)
{
    init(port_defaults, "# a comment\nrtsp=555\n" + std::string(5000, '#') + "\n");
    const std::optional<std::string> defaults = read_file(home + "/netport.conf");
    para_conf_set_member("netport", "new", "a=b");
    EXPECT_EQ(saved(), "port = \"80\"\nrtsp = \"555\"\nname = \"front door\"\nempty = \"\"\n"
                       "new = \"a=b\"\n");
    EXPECT_EQ(read_file(home + "/netport.conf"), defaults);
}

TEST_F(ConfSave, WhatIsSavedReadsBackEqual)
{
    const std::vector<std::string> texts = {"",
                                            " ",
                                            "two words",
                                            " blanks around ",
                                            "gr\xc3\xbc\xc3\x9f dich",
                                            "a=b",
                                            "= ",
                                            "#x",
                                            "tab\there",
                                            "\xff\xfe",
                                            "100%s",
                                            "\\n",
                                            std::string(255, 'f'),
                                            std::string(5000, 'l')};
    init();
    for (size_t i = 0; i < texts.size(); i++)
        para_conf_set_member("netport", ("key" + std::to_string(i)).c_str(), texts[i].c_str());
    saved();

    write_home("copy.conf", "a = 1\n");
    std::filesystem::copy(data + "/netport.conf", data + "/copy.conf");
    para_init_conf("copy");
    for (size_t i = 0; i < texts.size(); i++) {
        const std::string key = "key" + std::to_string(i);
        EXPECT_EQ(text_or_none(para_conf_get_member("copy", key.c_str())), texts[i]) << key;
    }
    EXPECT_STREQ(para_conf_get_member("copy", "empty"), "");
}

TEST_F(ConfSave, AFileThatDoesNotOpenIsNoErrorAndNotRetried)
{
    init();
    para_conf_set_member("netport", "port", "1");
    mkdir((data + "/netport.conf").c_str(), 0755);
    EXPECT_EQ(para_save_conf("netport"), 0);
    EXPECT_FALSE(change_pending());
}

TEST_F(ConfSave, AFullDiskIsNotReported)
{
    init();
    ASSERT_EQ(symlink("/dev/full", (data + "/netport.conf").c_str()), 0);
    EXPECT_EQ(para_save_conf("netport"), 0);
}

TEST_F(ConfSave, APathThatDoesNotFitIsNoFile)
{
    init();
    const std::string long_data = data + "/" + std::string(115 - data.size(), 'd');
    ASSERT_EQ(mkdir(long_data.c_str(), 0755), 0);
    para_profile.data_dir = long_data.c_str();
    EXPECT_EQ(para_save_conf("netport"), 0);
    EXPECT_EQ(rmdir(long_data.c_str()), 0) << "it is empty";
    para_profile.data_dir = data.c_str();
}

TEST_F(ConfSave, WaitsForAnotherProcessThatHasTheFileLocked)
{
    const std::string path = data + "/netport.conf";
    init();
    para_conf_set_member("netport", "port", "8080");
    lock_holder other(path);
    write_file(path, "what the other one writes\n");

    std::atomic<bool> done{false};
    std::thread saver([&] {
        EXPECT_EQ(para_save_conf("netport"), 0);
        done = true;
    });
    EXPECT_TRUE(wait_until([] { return lock_attempts() == 1; }));
    EXPECT_EQ(read_file(path), "what the other one writes\n");
    EXPECT_FALSE(done);
    EXPECT_EQ(value("port"), "8080") << "getters do not wait";
    EXPECT_EQ(para_conf_set_member("netport", "rtsp", "555"), 1) << "nor do setters";

    other.release();
    saver.join();
    EXPECT_THAT(read_file(path).value_or(""), StartsWith("port = \"8080\"\nrtsp = "));
    EXPECT_TRUE(change_pending()) << "the change meanwhile";
    EXPECT_THAT(saved(), StartsWith("port = \"8080\"\nrtsp = \"555\"\n"));
}

TEST_F(ConfSave, ReleasesTheLock)
{
    init();
    saved();
    lock_holder other(data + "/netport.conf");
    EXPECT_EQ(lock_attempts(), 1);
}

TEST_F(ConfSave, AReloadWaitsForTheWriterOfTheFile)
{
    const std::string path = data + "/netport.conf";
    init();
    lock_holder other(path);
    write_file(path, "port = \"half writ");
    std::thread reloader([] { para_conf_need_update("netport"); });
    EXPECT_TRUE(wait_until([] { return count_traces("enter", "para_conf_need_update") == 1; }));
    write_file(path, "port = \"8080\"\n");
    other.release();
    reloader.join();
    EXPECT_EQ(value("port"), "8080");
}

TEST_F(ConfSave, NobodyMeetsADefaultDuringAReload)
{
    write_data("netport.conf", "port = '8080'\n");
    init();
    const char *const text = para_conf_get_member("netport", "port");
    lock_holder other(data + "/netport.conf"); // the reload has read the defaults, and waits here
    std::atomic<bool> reloaded{false};
    std::thread reloader([&reloaded] {
        para_conf_need_update("netport");
        reloaded = true;
    });
    EXPECT_TRUE(wait_until([] { return count_traces("enter", "para_conf_need_update") == 1; }));
    for (int i = 0; i < 1000; i++)
        ASSERT_EQ(value("port"), "8080");
    EXPECT_FALSE(reloaded);
    other.release();
    reloader.join();
    EXPECT_EQ(para_conf_get_member("netport", "port"), text)
        << "a value that stays is not replaced";
}

TEST_F(ConfSave, TheThreadSavesARequestedChange)
{
    write_home("netport.conf", port_defaults);
    start_store();
    Client client;
    client.ask("{'msg_type':'set','netport':{'port':'8080'}}");
    EXPECT_FALSE(read_data("netport.conf"));
    move_clock(2000);
    EXPECT_TRUE(wait_until([this] {
        return read_data("netport.conf").value_or("").find("empty = \"\"\n") != std::string::npos;
    }));
    EXPECT_THAT(read_data("netport.conf").value_or(""), StartsWith("port = \"8080\"\n"));
}

TEST_F(ConfSave, WithTheSwitchOffEveryPassAsksAgainAndWritesNothing)
{
    para_profile.conf_save_hook = nullptr;
    write_home("netport.conf", port_defaults);
    start_store();
    para_conf_set_member("netport", "port", "8080");
    move_clock(2000);
    EXPECT_TRUE(wait_until([] { return count_traces("netport save...", "save_param") >= 2; }));
    EXPECT_FALSE(read_data("netport.conf"));
    stop_store();
    EXPECT_FALSE(read_data("netport.conf"));
}

// --- Text dump ---

TEST_F(ConfDump, WritesTheCurrentValues)
{
    init("port = '80'\nname = 'front'\n", "port = '81'\n");
    const std::string lines = "port = \"81\"\nname = \"front\"\n";
    char buffer[64];
    memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(para_save_conf_2_buf("netport", buffer, sizeof buffer),
              static_cast<int>(lines.size()) + 1);
    EXPECT_EQ(buffer, lines);
    for (size_t i = lines.size(); i < sizeof buffer; i++)
        EXPECT_EQ(buffer[i], '\0') << "the whole buffer is cleared";
}

TEST_F(ConfDump, NeedsRoomForTheFinalZero)
{
    init("a = '1'\nb = '2'\n");
    const int needed = 17; // two lines of eight
    std::vector<char> buffer(needed);
    EXPECT_EQ(para_save_conf_2_buf("netport", buffer.data(), needed), needed);
    EXPECT_THAT(traces_of("para_save_conf_2_buf"), IsEmpty());
    for (const int size : {needed - 1, 8, 1, 0}) {
        forget_traces();
        std::vector<char> small(static_cast<size_t>(size) + 1, 'x');
        EXPECT_EQ(para_save_conf_2_buf("netport", small.data(), size), 0) << size;
        EXPECT_EQ(small.back(), 'x') << "never overrun";
        EXPECT_THAT(traces_of("para_save_conf_2_buf"), ElementsAre("netport buf is not enough\n"));
        EXPECT_THAT(levels_of("netport buf is not enough", "para_save_conf_2_buf"), ElementsAre(3));
    }
}

// --- Changed keys ---

TEST_F(ConfKeyChange, TellsAChangeOnce)
{
    init();
    EXPECT_EQ(changed({"port", "rtsp"}), 0);
    para_conf_set_member("netport", "rtsp", "555");
    forget_traces();
    EXPECT_EQ(changed({"port", "rtsp"}), 1);
    EXPECT_THAT(traces_of("para_conf_key_IsChanged"), ElementsAre("key id 1 changed\n"));
    forget_traces();
    EXPECT_EQ(changed({"port", "rtsp"}), 0);
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(ConfKeyChange, LooksAtTheListedKeysAlone)
{
    init();
    para_conf_set_member("netport", "rtsp", "555");
    EXPECT_EQ(changed({"port", "name", "nothing"}), 0);
    const char *const none[] = {nullptr};
    EXPECT_EQ(para_conf_key_IsChanged("netport", none, 0), 0);
    EXPECT_EQ(changed({"rtsp"}), 1);
    EXPECT_EQ(count_traces("key id 0 changed", "para_conf_key_IsChanged"), 1);
}

TEST_F(ConfKeyChange, SeesWhatAReloadBrings)
{
    init();
    write_data("netport.conf", "port = '8080'\n");
    para_conf_need_update("netport");
    EXPECT_EQ(changed({"port"}), 1);
    para_conf_need_update("netport");
    EXPECT_EQ(changed({"port"}), 0);
}

TEST_F(ConfKeyChange, ANullListIsRefused)
{
    init();
    EXPECT_NE(para_conf_key_IsChanged("netport", nullptr, 3), 1);
    EXPECT_NE(para_key_IsChanged_netport(nullptr, 3), 1);
}

TEST_F(ConfKeyChange, TheNamedCallsCutTheCountToEightBits)
{
    init();
    const char *const keys[] = {"port", "rtsp"};
    para_conf_set_member("netport", "port", "1");
    para_conf_set_member("netport", "rtsp", "2");
    EXPECT_EQ(para_key_IsChanged_netport(keys, 256), 0) << "no key";
    EXPECT_EQ(para_key_IsChanged_netport(keys, 257), 1) << "one key";
    EXPECT_EQ(para_key_IsChanged_netport(keys, 257), 0);
    EXPECT_EQ(para_key_IsChanged_netport(keys, 2), 1) << "the second was not asked about";
}

// --- Threads ---

TEST_F(ConfModule, MayBeUsedByManyThreadsWhileReloadsFail)
{
    para_profile.conf_member_notify_hook = nullptr; // the test's own record one thread's changes
    para_profile.conf_update_hook = nullptr;
    set_trace_level(3);
    write_home("netport.conf", port_defaults);
    start_store();
    const std::string here = home + "/netport.conf", away = home + "/away.conf";

    std::atomic<bool> stop{false};
    std::vector<std::thread> hosts;
    for (int first = 0; first < 2; first++) {
        hosts.emplace_back([&stop, first] {
            const char *const keys[] = {"port", "rtsp"};
            char text[400];
            for (int i = 0; !stop; i++) {
                const std::string number = std::to_string(first * 100000 + i);
                para_conf_set_member("netport", "port", number.c_str());
                para_conf_get_member_safe("netport", "rtsp", text, sizeof text);
                para_conf_get_def_member_safe("netport", "port", text, sizeof text);
                para_conf_get_member("netport", "name");
                para_key_IsChanged_netport(keys, 2);
                para_save_conf_2_buf("netport", text, sizeof text);
                para_need_save_conf("netport");
            }
        });
    }
    for (int i = 0; i < 2; i++) {
        hosts.emplace_back([&stop] {
            while (!stop)
                para_need_update_netport();
        });
    }
    hosts.emplace_back([&] {
        while (!stop) {
            rename(here.c_str(), away.c_str());
            platformparam_save();
            rename(away.c_str(), here.c_str());
            platformparam_save();
        }
    });
    Client client;
    for (int i = 0; i < 60; i++) {
        client.ask("{'msg_type':'set','netport':{'rtsp':'" + std::to_string(i) + "'}}");
        EXPECT_THAT(client.ask("{'msg_type':'get','netport':['all'],'netport_def':['port']}"),
                    StartsWith("{'netport':{"));
        move_clock(700);
    }
    stop = true;
    for (std::thread &host : hosts)
        host.join();

    EXPECT_EQ(para_init_single_conf("netport"), 0);
    client.ask("{'msg_type':'set','netport':{'rtsp':'last'}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','netport':['rtsp']}"), "{'netport':{'rtsp':'last'}}");
    stop_store();
    EXPECT_THAT(read_data("netport.conf").value_or(""), HasSubstr("rtsp = \"last\"\n"));
}
