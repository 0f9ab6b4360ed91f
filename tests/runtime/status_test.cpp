// What the store tells of its modules: their status, and each accepted change.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>

#include <ctime>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "camparam/camparam.h"
#include "support/every_kind.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct told_change {
    std::string row;
    std::string sender; // its address, or "host"
    std::thread::id thread;
};
std::mutex told_lock;
std::vector<told_change> told;

void observe(const char *row, const sockaddr_in *sender)
{
    char address[INET_ADDRSTRLEN] = "host";
    if (sender != nullptr)
        inet_ntop(AF_INET, &sender->sin_addr, address, sizeof address);
    const std::lock_guard<std::mutex> guard(told_lock);
    told.push_back({row, address, std::this_thread::get_id()});
}

void forget_told()
{
    const std::lock_guard<std::mutex> guard(told_lock);
    told.clear();
}

std::thread::id first_thread_told()
{
    const std::lock_guard<std::mutex> guard(told_lock);
    return told.empty() ? std::thread::id() : told[0].thread;
}

std::vector<std::string> told_rows()
{
    const std::lock_guard<std::mutex> guard(told_lock);
    std::vector<std::string> rows;
    for (const told_change &change : told)
        rows.push_back(change.row + " " + change.sender);
    return rows;
}

// The set request that gives a kind's number to its module; none for those without set requests.
std::string request_for(const module_kind &kind, int number)
{
    const std::string name = kind.name;
    std::string member = name == "Video"     ? "gop"
                         : name == "Isp"     ? "bright"
                         : name == "Audio"   ? "audioInputVol"
                         : name == "Pattern" ? "brightness"
                         : name == "Conf"    ? "port"
                                             : "vi_framerate";
    const std::string value =
        name == "Conf" ? "'" + std::to_string(number) + "'" : std::to_string(number);
    return "{'msg_type':'set','" + std::string(kind.row) + "':{'" + member + "':" + value + "}}";
}

} // namespace

class ModuleStatus : public EveryKind {};

class StatusOf : public EveryKind, public testing::WithParamInterface<module_kind> {
protected:
    StatusOf()
    {
        if (kind.name == "LegacyMisc")
            use_legacy_misc();
        platformparam_set_change_observer(observe);
    }

    const module_kind &kind = GetParam();
};
INSTANTIATE_TEST_SUITE_P(, StatusOf, testing::ValuesIn(all_kinds), name_of_kind);

class RequestOf : public StatusOf {};
static std::vector<module_kind> kinds_with_set_requests()
{
    std::vector<module_kind> kinds;
    for (const module_kind &kind : all_kinds) {
        if (kind.name != "Af" && kind.name != "Odm")
            kinds.push_back(kind);
    }
    return kinds;
}
INSTANTIATE_TEST_SUITE_P(, RequestOf, testing::ValuesIn(kinds_with_set_requests()), name_of_kind);

TEST_P(StatusOf, ChangesAreCountedAndSaved)
{
    start_store();
    const unsigned before = status_of(kind.row).changes;
    kind.set(9);
    kind.set(10);
    EXPECT_EQ(status_of(kind.row).changes, before + 2);
    EXPECT_EQ(status_of(kind.row).saved, 0U);
    EXPECT_EQ(status_of(kind.row).saved_at, 0);
    kind.set(10);
    EXPECT_EQ(status_of(kind.row).changes, before + 2) << "the same value is no change";

    const long long now = time(nullptr) * 1000LL;
    platformparam_save();
    const para_module_status after = status_of(kind.row);
    EXPECT_EQ(after.saved, after.changes);
    EXPECT_EQ(after.error, 0);
    EXPECT_EQ(after.flags, 0U);
    EXPECT_GE(after.saved_at, now);
    EXPECT_LT(after.saved_at, now + 60000);
}

TEST_P(StatusOf, TheObserverIsToldOfEachChangeByTheHost)
{
    start_store();
    forget_told();
    kind.set(9);
    kind.set(9);
    EXPECT_THAT(told_rows(), ElementsAre(std::string(kind.row) + " host"));
    EXPECT_EQ(first_thread_told(), std::this_thread::get_id());
}

TEST_P(RequestOf, TheObserverIsToldOfTheClient)
{
    start_store();
    forget_told();
    Client client;
    EXPECT_EQ(client.ask(request_for(kind, 9)), "{}");
    EXPECT_EQ(kind.get(), 9);
    EXPECT_THAT(told_rows(), ElementsAre(std::string(kind.row) + " 127.0.0.1"));
    EXPECT_NE(first_thread_told(), std::this_thread::get_id());
    EXPECT_EQ(client.ask(request_for(kind, 9)), "{}");
    EXPECT_EQ(told_rows().size(), 1U);
}

TEST_F(ModuleStatus, IsUnknownOfOtherNames)
{
    start_store();
    para_module_status status = {};
    status.error = 77;
    for (const char *name : {"", "a", "afx", "video", "AF"})
        EXPECT_EQ(platformparam_get_status(name, &status), -1) << name;
    EXPECT_EQ(platformparam_get_status(nullptr, &status), -1);
    EXPECT_EQ(platformparam_get_status("af", nullptr), -1);
    EXPECT_EQ(status.error, 77);
}

TEST_F(ModuleStatus, IsUnknownBeforeStartUp)
{
    para_module_status status = {};
    EXPECT_EQ(platformparam_get_status("af", &status), -1);
}

TEST_F(ModuleStatus, ARowWithoutValuesIsNotSaved)
{
    start_store();
    for (const char *name : {"json", "conf", "msg_id", "end"}) {
        EXPECT_EQ(status_of(name).flags, unsigned{PARA_STATUS_NOT_SAVED}) << name;
        EXPECT_EQ(status_of(name).changes, 0U) << name;
    }
}

TEST_F(ModuleStatus, StreamsShareOne)
{
    start_store();
    para_set_video_gop_cur(1, 9);
    EXPECT_EQ(status_of("video0").changes, 1U);
    EXPECT_EQ(status_of("video6").changes, 1U);
    EXPECT_EQ(status_of("audio").changes, 0U);
}

TEST_F(ModuleStatus, AConfModuleIsNotSavedWhileWritingIsOff)
{
    para_profile.conf_save_hook = nullptr;
    start_store();
    EXPECT_EQ(status_of("netport").flags, unsigned{PARA_STATUS_NOT_SAVED});
}

TEST_F(ModuleStatus, AReloadThatSucceedsEndsAFailedLoad)
{
    const std::string defaults = home + "/netport.conf";
    rename(defaults.c_str(), (defaults + ".away").c_str());
    start_store();
    EXPECT_EQ(status_of("netport").flags, unsigned{PARA_STATUS_LOAD_FAILED});
    rename((defaults + ".away").c_str(), defaults.c_str());
    ASSERT_EQ(para_init_single_conf("netport"), 0);
    EXPECT_EQ(status_of("netport").flags, 0U);
}

TEST_F(ModuleStatus, APatternModuleWhoseRecordIsReusedCouldNotBeLoaded)
{
    write_home("www2json.json", "{'json_pattern_list':['panel','misc']}");
    remove((home + "/panel_range.json").c_str());
    start_store();
    EXPECT_EQ(status_of("panel").flags, unsigned{PARA_STATUS_LOAD_FAILED | PARA_STATUS_NOT_SAVED});
    EXPECT_EQ(status_of("misc").flags, 0U);
}

TEST_F(ModuleStatus, RestoringDefaultsIsAChange)
{
    start_store();
    para_set_isp_bright_cur(0, 9);
    const unsigned before = status_of("isp0").changes;
    platformparam_set_change_observer(observe);
    para_isp_cur_restore_isp_def();
    EXPECT_EQ(status_of("isp0").changes, before + 1);
    EXPECT_THAT(told_rows(), ElementsAre("isp0 host"));
}

class ChangeObserver : public EveryKind {};

TEST_F(ChangeObserver, GetsTheRowOfTheStream)
{
    start_store();
    platformparam_set_change_observer(observe);
    para_set_video_gop_cur(1, 9);
    _para_set_video_gop_cur(0, 9);
    EXPECT_THAT(told_rows(), ElementsAre("video1 host", "video0 host"));
}

TEST_F(ChangeObserver, IsNotToldOfWhatIsRefused)
{
    start_store();
    platformparam_set_change_observer(observe);
    para_set_af_zoom_value_cur(101);
    para_set_af_focus_mode_cur(0);
    para_set_json_cur("panel", "none", 1);
    para_conf_set_member("overlay", "a", "b");
    para_set_odm_int(nullptr, 1);
    EXPECT_THAT(told_rows(), IsEmpty());
}

TEST_F(ChangeObserver, IsToldOfInternalSettersToo)
{
    start_store();
    platformparam_set_change_observer(observe);
    _para_set_odm_int("mine", 5);
    _para_conf_set_member("netport", "port", "5");
    _para_set_json_cur("panel", "brightness", 5);
    EXPECT_THAT(told_rows(), ElementsAre("odmInter host", "netport host", "panel host"));
    EXPECT_EQ(status_of("odmInter").changes, 1U);
    EXPECT_EQ(para_need_save_odm("odmInter"), 0);
}

TEST_F(ChangeObserver, MayBeTakenAway)
{
    start_store();
    platformparam_set_change_observer(observe);
    platformparam_set_change_observer(nullptr);
    para_set_af_zoom_value_cur(9);
    EXPECT_THAT(told_rows(), IsEmpty());
}

// A lock that is held would end this in a deadlock.
static void set_more(const char *row, const sockaddr_in *sender)
{
    observe(row, sender);
    EXPECT_GE(status_of(row).changes, 1U);
    para_conf_set_member("netport", "port", "9");
    para_set_odm_int("mine", 9);
    para_set_json_cur("panel", "brightness", 9);
}

TEST_F(ChangeObserver, MaySetValues)
{
    start_store();
    platformparam_set_change_observer(set_more);
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'set','netport':{'port':'41'}}"), "{}");
    EXPECT_STREQ(para_conf_get_member("netport", "port"), "9");
    for (const std::string &change : told_rows())
        EXPECT_EQ(change.substr(change.find(' ')), " 127.0.0.1") << change;
    EXPECT_GE(told_rows().size(), 4U);
}
