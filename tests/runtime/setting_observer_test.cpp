// What the store tells of each accepted change: the setting, both values, and who asked.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "camparam/camparam.h"
#include "support/every_kind.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

std::mutex lock_of_lines;
std::vector<std::string> told_lines; // "module.member: old -> new, sender"

std::string text_of(const para_value &value)
{
    if (value.exists == 0)
        return "nothing";
    return value.text != nullptr ? "'" + std::string(value.text) + "'"
                                 : std::to_string(value.number);
}

void keep_line(const para_setting_change *change)
{
    char address[INET_ADDRSTRLEN] = "host";
    if (change->sender != nullptr)
        inet_ntop(AF_INET, &change->sender->sin_addr, address, sizeof address);
    const std::string instance = change->instance != 0 ? std::to_string(change->instance) : "";
    const std::lock_guard<std::mutex> guard(lock_of_lines);
    told_lines.push_back(change->module + (instance.empty() ? "" : "/" + instance) + "." +
                         change->member + ": " + text_of(change->old_value) + " -> " +
                         text_of(change->new_value) + ", " + address);
}

std::vector<std::string> lines()
{
    const std::lock_guard<std::mutex> guard(lock_of_lines);
    return std::exchange(told_lines, {});
}

std::string member_of(const module_kind &kind)
{
    const std::string text = kind.text;
    for (const char *name :
         {"zoom_value", "audioInputVol", "gop", "brightness", "bright", "vi_framerate", "mine"}) {
        if (text.find(name) != std::string::npos)
            return name;
    }
    return "port";
}

} // namespace

class SettingObserver : public EveryKind {
protected:
    void start()
    {
        start_store();
        platformparam_set_setting_observer(keep_line);
        lines();
    }
};

class SettingObserverOf : public SettingObserver, public testing::WithParamInterface<module_kind> {
protected:
    SettingObserverOf()
    {
        if (kind.name == "LegacyMisc")
            use_legacy_misc();
    }

    const module_kind &kind = GetParam();
};
INSTANTIATE_TEST_SUITE_P(, SettingObserverOf, testing::ValuesIn(all_kinds), name_of_kind);

TEST_P(SettingObserverOf, GetsOldAndNewValue)
{
    start();
    const std::string name = std::string(kind.row) + "." + member_of(kind) + ": ";
    const std::string quote = kind.name == "Conf" ? "'" : "";
    const std::string before = kind.name == "Odm" ? "nothing" : quote + "40" + quote;
    const std::string nine = quote + "9" + quote, ten = quote + "10" + quote;
    kind.set(9);
    kind.set(9); // no change
    kind.set(10);
    EXPECT_THAT(lines(), ElementsAre(name + before + " -> " + nine + ", host",
                                     name + nine + " -> " + ten + ", host"));
}

TEST_F(SettingObserver, GetsTheClientOfARequest)
{
    start();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'set','video1':{'gop':8},'netport':{'port':'x','new':''}}"),
              "{}");
    EXPECT_THAT(lines(),
                ElementsAre("video1.gop: 1 -> 8, 127.0.0.1", "netport.port: '40' -> 'x', 127.0.0.1",
                            "netport.new: nothing -> '', 127.0.0.1"));
}

TEST_F(SettingObserver, GetsNamesWhereRequestsUseThem)
{
    write_home("audio_range.json", "{'aeFormat':['AAC','G711A'],'audioInputVol':[0,100]}");
    write_home("audio_def.json", "{'aeFormat':'AAC','audioInputVol':40}");
    start();
    para_set_audio_aeFormat_cur(para_get_audio_aeFormat_num("G711A"));
    EXPECT_THAT(lines(), ElementsAre("audio.aeFormat: 'AAC' -> 'G711A', host"));
}

TEST_F(SettingObserver, GetsNamesOfPatternModules)
{
    write_home("panel_range.json", "{'mode':['dim','full'],'brightness':[0,100]}");
    write_home("panel.conf", "mode = 'dim'\nbrightness = '40'\n");
    start();
    para_set_json_cur("panel", "mode", 1);
    EXPECT_THAT(lines(), ElementsAre("panel.mode: 'dim' -> 'full', host"));
}

TEST_F(SettingObserver, GetsTheInstanceOfTheImageProcessor)
{
    start();
    para_isp_max[1].bright = 100; // no file fills the second
    para_isp_exist[1].bright = PARA_PRESENT;
    isp_num = 2;
    para_set_isp_bright_cur(1, 7);
    EXPECT_THAT(lines(), ElementsAre("isp0/1.bright: 0 -> 7, host"));
}

TEST_F(SettingObserver, GetsEachMemberThatIsRestored)
{
    start();
    para_set_isp_bright_cur(0, 9);
    lines();
    para_isp_cur_restore_isp_def();
    EXPECT_THAT(lines(), ElementsAre("isp0.bright: 9 -> 40, host"));
    para_isp_cur_restore_isp_def();
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(SettingObserver, GetsTextsOfTheOdmStore)
{
    start();
    para_set_odm_string("maker", "A");
    para_set_odm_string("maker", "B");
    para_set_odm_string("maker", nullptr); // counts, and stores nothing
    _para_set_odm_int("mine", 4);
    EXPECT_THAT(lines(), ElementsAre("odmInter.maker: nothing -> 'A', host",
                                     "odmInter.maker: 'A' -> 'B', host",
                                     "odmInter.maker: 'B' -> nothing, host",
                                     "odmInter.mine: nothing -> 4, host"));
}

TEST_F(SettingObserver, IsNotToldOfWhatIsRefusedOrReloaded)
{
    start();
    para_set_af_zoom_value_cur(101);
    para_set_json_cur("panel", "none", 1);
    para_conf_set_member("overlay", "a", "b");
    write_data("netport.conf", "port = '9'\n");
    para_conf_need_update("netport");
    EXPECT_STREQ(para_conf_get_member("netport", "port"), "9");
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(SettingObserver, ComesAfterTheChangeObserver)
{
    start();
    platformparam_set_change_observer([](const char *row, const sockaddr_in *) {
        const std::lock_guard<std::mutex> guard(lock_of_lines);
        told_lines.emplace_back(row);
    });
    para_set_af_zoom_value_cur(9);
    EXPECT_THAT(lines(), ElementsAre("af", "af.zoom_value: 40 -> 9, host"));
    platformparam_set_setting_observer(nullptr);
    para_set_af_zoom_value_cur(8);
    EXPECT_THAT(lines(), ElementsAre("af"));
}

// A lock that is held would end this in a deadlock.
TEST_F(SettingObserver, MaySetValues)
{
    start();
    platformparam_set_setting_observer([](const para_setting_change *change) {
        keep_line(change);
        para_conf_set_member("netport", "port", "9");
        para_set_odm_int("mine", 9);
        para_set_json_cur("panel", "brightness", 9);
        para_set_af_zoom_value_cur(9);
    });
    para_conf_set_member("netport", "port", "41");
    EXPECT_THAT(lines(), UnorderedElementsAre(
                             "netport.port: '40' -> '41', host", "netport.port: '41' -> '9', host",
                             "odmInter.mine: nothing -> 9, host", "panel.brightness: 40 -> 9, host",
                             "af.zoom_value: 40 -> 9, host"));
}
