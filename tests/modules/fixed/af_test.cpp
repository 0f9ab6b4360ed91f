// Focus and zoom, and with them the model of every module with fixed members.
#include "camparam/af.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <string>
#include <thread>
#include <vector>

#include "support/store.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

struct accessors {
    int slot;
    const char *key;
    int (*def)(), (*min)(), (*max)(), (*init)(), (*cur)();
    int (*set)(int);
};

const accessors all_members[] = {
#define AF_MEMBER(slot, name)                                                                      \
    {slot,                                                                                         \
     #name,                                                                                        \
     para_get_af_##name##_def,                                                                     \
     para_get_af_##name##_min,                                                                     \
     para_get_af_##name##_max,                                                                     \
     para_get_af_##name##_init,                                                                    \
     para_get_af_##name##_cur,                                                                     \
     para_set_af_##name##_cur},
#include "camparam/af_members.def"
};

struct notified {
    int (*setter)(int);
    int value;
};
std::vector<notified> notifications;

void notify(int (*setter)(int), int value)
{
    notifications.push_back({setter, value});
}

} // namespace

class Af : public Store {
protected:
    Af()
    {
        write_home("af_range.json", "{'focus_mode':[0,3],'focus_zone':[0,4],'focus_sens':[1,9],"
                                    "'focus_value':[-500,500],'focus_lock':[0,1],"
                                    "'zoom_value':[0,16384]}");
        write_home("af_def.json", "{'focus_mode':1,'focus_zone':2,'focus_sens':5,'focus_value':-7,"
                                  "'focus_lock':0,'zoom_value':100}");
        para_profile.af_set_notify_hook = notify;
    }

    int init() { return para_init_af("af"); }

    bool change_pending()
    {
        move_clock(10000);
        return para_need_save_af("af") == 1;
    }

    // What a query with this item answers; "none" for no answer.
    std::string query(const std::string &item, const std::string &key = "af")
    {
        const json request = parse("{'" + key + "':" + item + "}");
        cJSON *answer = nullptr;
        EXPECT_EQ(para_get_af_opt(key.c_str(), request->child, &answer, "af"), 0);
        const json owner(answer);
        return answer != nullptr ? compact(answer) : "none";
    }
};

using AfStart = Af;
using AfSetter = Af;
using AfQuery = Af;
using AfSave = Af;
using SavedFile = Af;

TEST_F(AfStart, EveryMemberHasTheValuesOfItsFiles)
{
    write_home("af_range.json", "{'focus_mode':[1,21],'focus_zone':[2,22],'focus_sens':[3,23],"
                                "'focus_value':[4,24],'focus_lock':[5,25],'zoom_value':[6,26]}");
    write_home("af_def.json", "{'focus_mode':11,'focus_zone':12,'focus_sens':13,'focus_value':14,"
                              "'focus_lock':15,'zoom_value':16}");
    write_data("af_cur.json", "{'focus_mode':1,'focus_zone':2,'focus_sens':3,'focus_value':4,"
                              "'focus_lock':5,'zoom_value':6}");
    EXPECT_EQ(init(), 0);
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.min(), member.slot) << member.key;
        EXPECT_EQ(member.max(), member.slot + 20) << member.key;
        EXPECT_EQ(member.def(), member.slot + 10) << member.key;
        EXPECT_EQ(member.cur(), member.slot) << member.key;
        EXPECT_EQ(member.init(), member.slot) << member.key;
        EXPECT_EQ(para_af_exist[member.slot], 1) << member.key;
        EXPECT_EQ(&para_af_cur[member.slot] - para_af_cur, member.slot);
    }
    EXPECT_THAT(para_af_cur, ElementsAre(0, 1, 2, 3, 4, 5, 6));
}

TEST_F(AfStart, TheReservedSlotIsCopiedAndOtherwiseLeftAlone)
{
    para_af_cur[0] = 77;
    init();
    for (const accessors &member : all_members)
        member.set(member.max());
    EXPECT_EQ(para_af_init[0], 77);
    EXPECT_EQ(para_af_cur[0], 77);
    EXPECT_EQ(para_af_min[0] + para_af_max[0] + para_af_def[0] + para_af_exist[0], 0);
}

TEST_F(AfStart, BeginsWithTheDefaultsWhenThereIsNoCurrentFile)
{
    EXPECT_EQ(init(), 0);
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.cur(), member.def()) << member.key;
        EXPECT_EQ(member.init(), member.def()) << member.key;
    }
    EXPECT_EQ(count_traces("parse_ok:0", "para_init_af"), 1);
}

TEST_F(AfStart, TheCurrentFileOverridesTheDefaultsMemberByMember)
{
    write_data("af_cur.json", "{'zoom_value':4000,'unknown':3}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(para_get_af_zoom_value_cur(), 4000);
    EXPECT_EQ(para_get_af_zoom_value_init(), 4000);
    EXPECT_EQ(para_get_af_zoom_value_def(), 100);
    EXPECT_EQ(para_get_af_focus_zone_cur(), 2);
    EXPECT_EQ(count_traces("parse_ok:1", "para_init_af"), 1);
}

TEST_F(AfStart, TheCurrentFileIsNotHeldAgainstTheRange)
{
    write_data("af_cur.json", "{'zoom_value':99999}");
    init();
    EXPECT_EQ(para_get_af_zoom_value_cur(), 99999);
}

TEST_F(AfStart, AMissingRangeOrDefaultsFileFailsSilently)
{
    unlink((home + "/af_def.json").c_str());
    EXPECT_EQ(init(), -1);
    EXPECT_EQ(para_get_af_zoom_value_max(), 16384) << "what was read before the failure stays";

    unlink((home + "/af_range.json").c_str());
    EXPECT_EQ(init(), -1);
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(AfStart, WithoutARangeFileNoSetterAcceptsAnything)
{
    unlink((home + "/af_range.json").c_str());
    EXPECT_EQ(init(), -1);
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.set(1), 0);
        EXPECT_EQ(member.set(0), 0);
        EXPECT_EQ(member.cur(), 0);
    }
    EXPECT_FALSE(change_pending());
}

TEST_F(AfStart, ABrokenRangeOrDefaultsFileFailsWithATrace)
{
    write_home("af_def.json", "{'focus_mode':");
    EXPECT_EQ(init(), -1);
    ASSERT_THAT(traces_of("para_init_af"), testing::SizeIs(1));
    EXPECT_THAT(traces_of("para_init_af")[0], testing::MatchesRegex("Error before: \\[.*\\]\n\n"));
    EXPECT_EQ(traces().front().level, 6);

    write_home("af_range.json", "rubbish");
    EXPECT_EQ(init(), -1);
    EXPECT_EQ(traces_of("para_init_af")[1], "Error before: [rubbish]\n\n");
}

TEST_F(AfStart, ABrokenCurrentFileIsTracedAndTheDefaultsStand)
{
    write_data("af_cur.json", "rubbish");
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_af"),
                ElementsAre("Error before: [rubbish]\n\n", "parse_ok:0\n"));
    EXPECT_EQ(para_get_af_zoom_value_cur(), 100);
}

TEST_F(AfStart, AnUnreadableCurrentFileIsPassedOver)
{
    mkdir((data + "/af_cur.json").c_str(), 0755);
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_af"), ElementsAre("parse_ok:0\n"));
}

TEST_F(AfStart, KeysAreReadWithoutRegardToCase)
{
    write_home("af_def.json", "{'ZOOM_Value':7}");
    init();
    EXPECT_EQ(para_get_af_zoom_value_def(), 7);
    EXPECT_EQ(para_af_exist[6], 1);
}

TEST_F(AfStart, RangesNeedTwoElementsAndMayHaveMore)
{
    write_home("af_range.json", "{'focus_mode':[5],'focus_zone':[],'focus_sens':7,"
                                "'focus_value':[1,2,3],'focus_lock':{'a':3,'b':4},"
                                "'zoom_value':['x',2.9]}");
    init();
    EXPECT_THAT(para_af_min, ElementsAre(0, 0, 0, 0, 1, 3, 0));
    EXPECT_THAT(para_af_max, ElementsAre(0, 0, 0, 0, 2, 4, 2));
}

TEST_F(AfStart, ADefaultThatIsNoNumberIsZeroAndPresent)
{
    write_home("af_def.json", "{'focus_mode':'auto','zoom_value':null,'focus_value':2.9,"
                              "'focus_lock':true}");
    init();
    EXPECT_THAT(para_af_def, ElementsAre(0, 0, 0, 0, 2, 1, 0)) << "true is 1, as cJSON has it";
    EXPECT_THAT(para_af_exist, ElementsAre(0, 1, 0, 0, 1, 1, 1));
}

TEST_F(AfStart, StartingAgainForgetsWhoWasPresent)
{
    para_af_exist[0] = 1;
    init();
    write_home("af_def.json", "{'zoom_value':7}");
    init();
    EXPECT_THAT(para_af_exist, ElementsAre(0, 0, 0, 0, 0, 0, 1));
}

TEST_F(AfStart, DumpsItsTable)
{
    write_data("af_cur.json", "{'zoom_value':4000}");
    init();
    EXPECT_THAT(traces_of("af_page"),
                ElementsAre("----------AF PARAM-----------\n\n",
                            "      focus_mode : cur:[1],\tdef:[1],\trange:[0,3]\n",
                            "      focus_zone : cur:[2],\tdef:[2],\trange:[0,4]\n",
                            "      focus_sens : cur:[5],\tdef:[5],\trange:[1,9]\n",
                            "     focus_value : cur:[-7],\tdef:[-7],\trange:[-500,500]\n",
                            "      focus_lock : cur:[0],\tdef:[0],\trange:[0,1]\n",
                            "      zoom_value : cur:[4000],\tdef:[100],\trange:[0,16384]\n",
                            "--------------------------------\n\n"));
    for (const trace_line &line : traces())
        EXPECT_EQ(line.level, 6);
    set_trace_level(5);
    forget_traces();
    af_page();
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(AfStart, RunsAsAModuleOfTheTable)
{
    start_store();
    EXPECT_EQ(para_get_af_zoom_value_cur(), 100);
    EXPECT_EQ(count_traces("af init err"), 0);
}

TEST_F(AfStart, AFailureIsTracedByTheTable)
{
    unlink((home + "/af_range.json").c_str());
    start_store();
    EXPECT_EQ(count_traces("af init err", "platformparam_init"), 1);
}

TEST_F(AfSetter, TakesEveryValueOfTheRangeAndTellsTheHook)
{
    init();
    for (const accessors &member : all_members) {
        for (const int value : {member.max(), member.min()}) {
            notifications.clear();
            EXPECT_EQ(member.set(value), 0);
            EXPECT_EQ(member.cur(), value) << member.key;
            ASSERT_EQ(notifications.size(), 1U) << member.key;
            EXPECT_EQ(notifications[0].setter, member.set) << member.key;
            EXPECT_EQ(notifications[0].value, value) << member.key;
        }
    }
}

TEST_F(AfSetter, RefusesWhatIsOutsideTheRange)
{
    init();
    const std::vector<int> before(para_af_cur, para_af_cur + 7);
    for (const accessors &member : all_members) {
        for (const int value : {member.min() - 1, member.max() + 1, INT_MIN, INT_MAX})
            EXPECT_EQ(member.set(value), 0);
    }
    EXPECT_EQ(std::vector<int>(para_af_cur, para_af_cur + 7), before);
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(AfSetter, TheCurrentValueAgainIsNoChange)
{
    init();
    for (const accessors &member : all_members)
        EXPECT_EQ(member.set(member.cur()), 0);
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(AfSetter, TheCurrentValueAgainDoesNotPostponeTheSave)
{
    init();
    para_set_af_zoom_value_cur(200);
    move_clock(1500);
    para_set_af_zoom_value_cur(200);
    move_clock(501);
    EXPECT_EQ(para_need_save_af("af"), 1);
}

TEST_F(AfSetter, RefusedValueDoesNotPostponeTheSave)
{
    init();
    para_set_af_zoom_value_cur(200);
    move_clock(1500);
    para_set_af_focus_mode_cur(para_get_af_focus_mode_max() + 1);
    move_clock(501);
    EXPECT_EQ(para_need_save_af("af"), 1);
}

TEST_F(AfSetter, WorksWithoutAHook)
{
    para_profile.af_set_notify_hook = nullptr;
    init();
    EXPECT_EQ(para_set_af_zoom_value_cur(200), 0);
    EXPECT_EQ(para_get_af_zoom_value_cur(), 200);
}

TEST_F(AfSetter, AMemberWithoutRangeTakesOnlyZero)
{
    write_home("af_range.json", "{}");
    init();
    para_set_af_zoom_value_cur(1);
    EXPECT_EQ(para_get_af_zoom_value_cur(), 100);
    para_set_af_zoom_value_cur(0);
    EXPECT_EQ(para_get_af_zoom_value_cur(), 0);
    EXPECT_EQ(notifications.size(), 1U);
}

TEST_F(AfSetter, AnAbsentMemberCanBeSetButIsNeitherSavedNorReported)
{
    write_home("af_def.json", "{'focus_mode':1}");
    init();
    para_set_af_zoom_value_cur(200);
    EXPECT_EQ(para_get_af_zoom_value_cur(), 200);
    EXPECT_EQ(notifications.size(), 1U);
    EXPECT_EQ(query("['zoom_value','focus_mode']"), "{'focus_mode':1}");
    EXPECT_EQ(query("['all']"), "{'focus_mode':1}");
    para_save_af("af");
    EXPECT_EQ(read_data("af_cur.json"), "{\n\t\"focus_mode\":\t1\n}" + std::string(1, '\0'));
}

TEST_F(AfSetter, StampsTheMonotonicTime)
{
    init();
    timespec before = {}, after = {};
    clock_gettime(CLOCK_MONOTONIC, &before);
    para_set_af_zoom_value_cur(200);
    clock_gettime(CLOCK_MONOTONIC, &after);
    EXPECT_GE(lib_common_diff_msec_timespec(&before, &af_item_start_time), 0);
    EXPECT_GE(lib_common_diff_msec_timespec(&af_item_start_time, &after), 0);
}

TEST_F(AfQuery, MemberLookUpIsExact)
{
    init();
    int value = 77;
    const char *text = "untouched";
    EXPECT_NE(para_get_af_member_json("zoom_value", &value, &text), 0);
    EXPECT_EQ(value, 100);
    EXPECT_STREQ(text, "untouched");
    EXPECT_NE(para_get_af_member_json("focus_value", &value, nullptr), 0);
    EXPECT_EQ(value, -7);
    for (const char *name : {"zoom", "zoom_values", "Zoom_value", "", "all"}) {
        value = 77;
        EXPECT_EQ(para_get_af_member_json(name, &value, nullptr), 0) << name;
        EXPECT_EQ(value, 77) << name;
    }
}

TEST_F(AfQuery, MemberLookUpStoresAnAbsentMembersValueToo)
{
    write_home("af_def.json", "{}");
    init();
    para_set_af_zoom_value_cur(5);
    int value = 77;
    EXPECT_EQ(para_get_af_member_json("zoom_value", &value, nullptr), 0);
    EXPECT_EQ(value, 5);
}

TEST_F(AfQuery, AnswersTheListedMembersInTheirOrder)
{
    init();
    EXPECT_EQ(query("['zoom_value','nothing','focus_mode','zoom_value',5,null]"),
              "{'zoom_value':100,'focus_mode':1,'zoom_value':100}");
    EXPECT_THAT(traces_of("para_get_af_opt"), ElementsAre("inter\n", "leave\n"));
}

TEST_F(AfQuery, AllMeansEveryPresentMember)
{
    init();
    const char *const everything = "{'focus_mode':1,'focus_zone':2,'focus_sens':5,"
                                   "'focus_value':-7,'focus_lock':0,'zoom_value':100}";
    EXPECT_EQ(query("['all']"), everything);
    EXPECT_THAT(traces_of("para_get_af_opt"), ElementsAre("inter\n"));
    EXPECT_EQ(query("['allegro']"), everything);
}

TEST_F(AfQuery, AllAmongOthersIsAnUnknownName)
{
    init();
    EXPECT_EQ(query("['all','zoom_value']"), "{'zoom_value':100}");
    EXPECT_EQ(query("['al']"), "{}");
    EXPECT_EQ(query("['All']"), "{}");
}

TEST_F(AfQuery, AnItemThatIsNoListIsAnsweredEmpty)
{
    init();
    for (const char *item : {"'all'", "5", "null", "true", "[]", "{}", "[[]]", "[5]"})
        EXPECT_EQ(query(item), "{}") << item;
}

TEST_F(AfQuery, TheMembersOfAnObjectCountAsAList)
{
    init();
    EXPECT_EQ(query("{'x':'zoom_value','y':'focus_mode'}"), "{'zoom_value':100,'focus_mode':1}");
    EXPECT_EQ(query("{'x':'all'}"), query("['all']"));
}

TEST_F(AfQuery, KeyMayBeCutShort)
{
    init();
    EXPECT_EQ(query("['zoom_value']", "a"), "{'zoom_value':100}");
    EXPECT_EQ(query("['zoom_value']", ""), "{'zoom_value':100}");
}

TEST_F(AfQuery, AnotherKeyIsNotAnswered)
{
    init();
    for (const char *key : {"afx", "f", "AF", "isp0"})
        EXPECT_EQ(query("['zoom_value']", key), "none") << key;
    EXPECT_THAT(traces_of("para_get_af_opt"),
                ElementsAre("inter\n", "leave\n", "inter\n", "leave\n", "inter\n", "leave\n",
                            "inter\n", "leave\n"));
}

TEST_F(AfQuery, IsServedOverUdp)
{
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'get','msg_name':'n','msg_id':5,'af':['zoom_value']}"),
              "{'msg_name':'n','msg_id':5,'af':{'zoom_value':100}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','afx':['all']}"), "{}") << "the module refuses the key";
}

TEST_F(AfQuery, CannotBeChangedByASetRequest)
{
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_id':5,'af':{'zoom_value':200}}"), "{'msg_id':5}");
    EXPECT_EQ(para_get_af_zoom_value_cur(), 100);
}

TEST_F(AfSave, IsDueAtTwoThousandMilliseconds)
{
    init();
    stop_clock();
    para_set_af_zoom_value_cur(200);
    move_clock(1999);
    EXPECT_EQ(para_need_save_af("af"), 0);
    move_clock(1);
    EXPECT_EQ(para_need_save_af("af"), 1);
}

TEST_F(AfSave, IsDueTwoSecondsAfterTheLastChange)
{
    init();
    EXPECT_EQ(para_need_save_af("af"), 0);
    move_clock(5000);
    EXPECT_EQ(para_need_save_af("af"), 0) << "nothing has changed";

    para_set_af_zoom_value_cur(200);
    EXPECT_EQ(para_need_save_af("af"), 0);
    move_clock(1500);
    para_set_af_zoom_value_cur(300);
    move_clock(1500);
    EXPECT_EQ(para_need_save_af("af"), 0) << "the second change begins the delay again";
    move_clock(501);
    EXPECT_EQ(para_need_save_af("af"), 1);
    EXPECT_EQ(para_need_save_af("af"), 1) << "until it is saved";
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_EQ(para_need_save_af("af"), 0);
}

TEST_F(AfSave, TheThreadSavesAndSyncsOnce)
{
    start_store();
    para_set_af_zoom_value_cur(200);
    move_clock(2000);
    ASSERT_TRUE(wait_until([] { return !shell_commands().empty(); }));
    EXPECT_THAT(read_data("af_cur.json").value_or(""), HasSubstr("\"zoom_value\":\t200"));
    EXPECT_EQ(count_traces("af save...", "save_param"), 1);
    EXPECT_THAT(shell_commands(), ElementsAre("sync"));
}

TEST_F(AfSave, StoppingSavesWhatIsNotDueYet)
{
    start_store();
    para_set_af_zoom_value_cur(200);
    stop_store();
    EXPECT_THAT(read_data("af_cur.json").value_or(""), HasSubstr("\"zoom_value\":\t200"));
}

TEST_F(AfSave, WhatIsSavedIsLoadedAgain)
{
    init();
    for (const accessors &member : all_members)
        member.set(member.max());
    para_save_af("af");
    for (int &value : para_af_cur)
        value = 0;
    EXPECT_EQ(init(), 0);
    for (const accessors &member : all_members)
        EXPECT_EQ(member.cur(), member.max()) << member.key;
}

TEST_F(SavedFile, HoldsThePresentMembersInSlotOrder)
{
    write_home("af_def.json", "{'zoom_value':100,'focus_zone':2,'focus_mode':0}");
    init();
    EXPECT_EQ(para_save_af("af"), 0);
    const std::string expected = "{\n\t\"focus_mode\":\t0,\n\t\"focus_zone\":\t2,\n"
                                 "\t\"zoom_value\":\t100\n}";
    EXPECT_EQ(read_data("af_cur.json"), expected + '\0');
}

TEST_F(SavedFile, EndsWithOneZeroByte)
{
    init();
    para_save_af("af");
    const std::string bytes = read_data("af_cur.json").value_or("");
    ASSERT_GT(bytes.size(), 2U);
    EXPECT_EQ(bytes.substr(bytes.size() - 2), std::string("}\0", 2));
    EXPECT_EQ(bytes.find('\0'), bytes.size() - 1);
}

TEST_F(SavedFile, IsReplacedWhole)
{
    init();
    write_data("af_cur.json", std::string(5000, 'x'));
    para_save_af("af");
    EXPECT_LT(read_data("af_cur.json").value_or("").size(), 200U);
}

TEST_F(SavedFile, OfAModuleWithoutMembersIsTheEmptyObject)
{
    write_home("af_def.json", "{}");
    init();
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_EQ(read_data("af_cur.json"), std::string("{\n}\0", 4));
}

// Called by cJSON while it prints the file: a change that comes in just then.
static void *change_and_allocate(size_t size)
{
    para_set_af_zoom_value_cur(4321);
    return malloc(size);
}

TEST_F(SavedFile, AChangeDuringTheSaveMayMissIt)
{
    init();
    para_set_af_focus_mode_cur(2);
    cJSON_Hooks hooks = {change_and_allocate, free};
    cJSON_InitHooks(&hooks);
    para_save_af("af");
    cJSON_InitHooks(nullptr);
    EXPECT_EQ(para_get_af_zoom_value_cur(), 4321);
    EXPECT_FALSE(change_pending()) << "the mark is cleared when all is written";
    para_set_af_focus_mode_cur(1);
    EXPECT_TRUE(change_pending()) << "the next change saves both";
}

TEST_F(SavedFile, AFullDiskIsTheResult)
{
    init();
    ASSERT_EQ(symlink("/dev/full", (data + "/af_cur.json").c_str()), 0);
    EXPECT_EQ(para_save_af("af"), -1);
}

TEST_F(SavedFile, FailedSaveIsNotRetried)
{
    init();
    para_set_af_zoom_value_cur(200);
    const std::string missing = data + "/missing";
    para_profile.data_dir = missing.c_str();
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_FALSE(change_pending());
}

TEST_F(SavedFile, StandsInTheWorkingDirectoryWithoutADataDirectory)
{
    init();
    para_profile.data_dir = nullptr;
    ASSERT_EQ(chdir(data.c_str()), 0);
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_THAT(read_data("af_cur.json").value_or(""), StartsWith("{"));
}

TEST_F(SavedFile, ADirectoryMayEndWithASlash)
{
    init();
    const std::string slashed = data + "/";
    para_profile.data_dir = slashed.c_str();
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_THAT(read_data("af_cur.json").value_or(""), StartsWith("{"));
}

TEST_F(SavedFile, AnOverlongPathIsNeverCut)
{
    init();
    std::string deep = data + "/";
    deep += std::string(127 - deep.size() - strlen("/af_cur.json"), 'd');
    mkdir(deep.c_str(), 0755);
    para_profile.data_dir = deep.c_str();
    para_save_af("af");
    EXPECT_TRUE(read_file(deep + "/af_cur.json")) << "127 characters fit";

    deep += 'e';
    mkdir(deep.c_str(), 0755);
    para_profile.data_dir = deep.c_str();
    EXPECT_EQ(para_save_af("af"), 0);
    EXPECT_FALSE(read_file(deep + "/af_cur.json")) << "128 do not";
    EXPECT_EQ(rmdir(deep.c_str()), 0) << "nothing was written under a cut name either";
}

TEST_F(Af, MayBeUsedByManyThreadsAtOnce)
{
    para_profile.af_set_notify_hook = nullptr; // the test's own records one thread's changes
    start_store();
    std::vector<std::thread> hosts;
    for (int first = 0; first < 4; first++) {
        hosts.emplace_back([first] {
            for (int i = 0; i < 400; i++) {
                para_set_af_zoom_value_cur(first * 1000 + i);
                para_set_af_focus_value_cur(i % 500);
                if (i % 100 == 0)
                    platformparam_save();
            }
        });
    }
    Client client;
    for (int i = 0; i < 100; i++) {
        if (i % 10 == 0)
            move_clock(2000);
        EXPECT_THAT(client.ask("{'msg_type':'get','af':['all']}"), StartsWith("{'af':{"));
    }
    for (std::thread &host : hosts)
        host.join();
}
