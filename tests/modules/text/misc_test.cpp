// The module "misc": both of its file sets, and its typed accessors.
#include "camparam/misc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <map>
#include <set>
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

struct accessors {
    const char *key;
    int (*min)(), (*max)(), (*def)(), (*cur)();
    int (*set)(int);
};

const accessors all_members[] = {
#define MISC_MEMBER(name)                                                                          \
    {#name,                                                                                        \
     para_get_misc_##name##_min,                                                                   \
     para_get_misc_##name##_max,                                                                   \
     para_get_misc_##name##_def,                                                                   \
     para_get_misc_##name##_cur,                                                                   \
     para_set_misc_##name##_cur},
#include "camparam/misc_members.def"
};

struct enum_accessors {
    const char *key;
    std::vector<std::string> names;
    const char *(*str)(int);
    int (*num)(const char *);
    int (*set)(int);
    int (*set_by_text)(const char *);
    int (*cur)();
};

const enum_accessors enum_members[] = {
#define MISC_ENUM_MEMBER(name)                                                                     \
    {#name,                                                                                        \
     {std::begin(name), std::end(name)},                                                           \
     para_get_misc_##name##_str,                                                                   \
     para_get_misc_##name##_num,                                                                   \
     para_set_misc_##name##_cur,                                                                   \
     para_set_misc_##name##_cur_bystr,                                                             \
     para_get_misc_##name##_cur},
#include "camparam/misc_members.def"
};

bool is_enum(const std::string &key)
{
    for (const enum_accessors &member : enum_members) {
        if (key == member.key)
            return true;
    }
    return false;
}

struct notified {
    std::string module;
    para_entry_point setter;
    std::string member;
    int value;
};
std::vector<notified> notifications;
void notify(const char *module, para_entry_point setter, const char *member, int value)
{
    notifications.push_back({module, setter, member, value});
}

std::vector<std::string> requests;
void request(const char *module, const cJSON *item)
{
    requests.push_back(module + compact(item));
}

const char versioned_range[] =
    "{'version':2,'ViStrategy':['50','60','dial','osd'],"
    "'ndi_mode':['off','low','medium','high','264P50','264P60','265P50','265P60'],"
    "'hdmivideoformat':['1080P60','1080P50','720P60'],'mirror':[0,1],'flip':[0,1],"
    "'vi_framerate':[1,60],'ezoom_limit':[1,16],'lock':[0,1],'privacyCover':[0,1],"
    "'netStream':[0,3],'trackMode':[0,4],'telnetEn':[0,1]}";
const char versioned_defaults[] =
    "ViStrategy = '60'\nndi_mode = 'high'\nhdmivideoformat = '1080P60'\nmirror = '0'\n"
    "flip = '1'\nvi_framerate = '50'\nezoom_limit = '4'\nlock = '0'\nprivacyCover = '1'\n"
    "netStream = '2'\ntrackMode = '3'\ntelnetEn = '0'\n";
const char legacy_range[] =
    "{'ViStrategy':['50','osd'],'ndi_mode':['off','high'],'hdmivideoformat':['4KP30','4KP60'],"
    "'mirror':[0,1],'flip':[0,1],'vi_framerate':[1,60],'ezoom_limit':[1,16],'lock':[0,1],"
    "'privacyCover':[0,1],'netStream':[0,3],'trackMode':[0,4],'telnetEn':[0,1]}";
const char legacy_defaults[] =
    "{'ViStrategy':'60','ndi_mode':'high','hdmivideoformat':'4KP25','mirror':0,'flip':1,"
    "'vi_framerate':50,'ezoom_limit':4,'lock':0,'privacyCover':1,'netStream':2,'trackMode':3,"
    "'telnetEn':0}";

const std::map<std::string, int> number_defaults = {
    {"mirror", 0},   {"flip", 1},         {"vi_framerate", 50}, {"ezoom_limit", 4}, {"lock", 0},
    {"telnetEn", 0}, {"privacyCover", 1}, {"netStream", 2},     {"trackMode", 3},
};
const std::map<std::string, std::pair<int, int>> number_ranges = {
    {"mirror", {0, 1}},    {"flip", {0, 1}},         {"vi_framerate", {1, 60}},
    {"lock", {0, 1}},      {"ezoom_limit", {1, 16}}, {"telnetEn", {0, 1}},
    {"netStream", {0, 3}}, {"privacyCover", {0, 1}}, {"trackMode", {0, 4}},
};

// A legacy range member as it is in memory.
std::string widen(const std::string &member)
{
    const json old = parse("{" + member + "}");
    const json range(fix_old_misc_range_conf(old.get()));
    return compact(range.get());
}

std::string widened_list(const std::string &key, const std::string &first, const std::string &last)
{
    const json old = parse("{'" + key + "':['" + first + "','" + last + "']}");
    const json range(fix_old_misc_range_conf(old.get()));
    return compact(cJSON_GetObjectItem(range.get(), key.c_str()));
}

std::string list_of(const std::vector<std::string> &names, size_t first, size_t last)
{
    std::string list = "[";
    for (size_t i = first; i <= last; i++)
        list += (i > first ? ",'" : "'") + names[i] + "'";
    return list + "]";
}

} // namespace

class Misc : public Store {
protected:
    Misc()
    {
        para_profile.misc_set_notify_hook = notify;
        para_profile.misc_set_request_hook = request;
    }

    void write_versioned()
    {
        write_home("misc_range.json", versioned_range);
        write_home("misc.conf", versioned_defaults);
    }
    void write_legacy()
    {
        write_home("misc_range.json", legacy_range);
        write_home("misc_def.json", legacy_defaults);
    }

    void init()
    {
        EXPECT_EQ(para_init_misc("json"), 0);
        EXPECT_EQ(para_init_misc("misc"), 0);
    }
    void init_versioned()
    {
        write_versioned();
        init();
    }
    void init_legacy()
    {
        write_legacy();
        init();
    }

    std::string value(const char *member)
    {
        char text[300];
        return para_get_json_string("misc", member, text, sizeof text) == 0 ? text : "none";
    }

    bool change_pending()
    {
        move_clock(10000);
        return para_need_save_misc("misc") == 1;
    }

    // Names of the files in the data folder.
    std::set<std::string> data_files()
    {
        std::set<std::string> names;
        for (const auto &file : std::filesystem::directory_iterator(data))
            names.insert(file.path().filename().string());
        return names;
    }

    void expect_number_members()
    {
        for (const accessors &member : all_members) {
            if (is_enum(member.key))
                continue;
            EXPECT_EQ(member.min(), number_ranges.at(member.key).first) << member.key;
            EXPECT_EQ(member.max(), number_ranges.at(member.key).second) << member.key;
            EXPECT_EQ(member.def(), number_defaults.at(member.key)) << member.key;
            EXPECT_EQ(member.cur(), number_defaults.at(member.key)) << member.key;
        }
    }

    // What the next start of the device would find in the current values.
    std::string after_restart(const char *member)
    {
        configure *cur = nullptr, *def = nullptr;
        cJSON *range = nullptr;
        EXPECT_EQ(para_init_misc_legacy("misc", &cur, &def, &range), 0);
        restarted.emplace_back(range); // the store keeps a look at its version
        char text[300];
        const bool found = cur->conf_get(cur, member, text, sizeof text) == 0;
        configure_free(cur);
        configure_free(def);
        return found ? text : "none";
    }

    void expect_no_values()
    {
        for (const accessors &member : all_members) {
            EXPECT_EQ(member.def(), -1) << member.key;
            EXPECT_EQ(member.cur(), -1) << member.key;
            for (const int number : {0, 1})
                EXPECT_EQ(member.set(number), 0) << member.key;
        }
        for (const enum_accessors &member : enum_members) {
            for (const std::string &name : member.names)
                EXPECT_EQ(member.set_by_text(name.c_str()), 0) << member.key;
        }
        EXPECT_THAT(notifications, IsEmpty());
        EXPECT_FALSE(change_pending());
    }

private:
    std::vector<json> restarted;
};

using MiscStart = Misc;
using MiscWidening = Misc;
using MiscLegacyValues = Misc;
using MiscAccessors = Misc;
using MiscSetter = Misc;
using MiscSave = Misc;
using MiscRequest = Misc;

// --- Start-up ---

TEST_F(MiscStart, AVersionInTheRangeMeansTheCurrentSet)
{
    write_legacy();
    write_data("misc_cur.json", "{'mirror':7}");
    write_data("misc.conf", "mirror = '1'\nndi_mode = 'low'\n");
    init_versioned();
    EXPECT_EQ(para_get_misc_mirror_def(), 0);
    EXPECT_EQ(para_get_misc_mirror_cur(), 1);
    EXPECT_EQ(para_get_misc_flip_cur(), 1) << "not in the current file";
    EXPECT_EQ(para_get_misc_ndi_mode_def(), 3);
    EXPECT_EQ(para_get_misc_ndi_mode_cur(), 1);
    EXPECT_THAT(traces_of("para_init_misc_legacy"),
                ElementsAre("enter\n", "enter misc version:2\n"));
    EXPECT_EQ(count_traces("misc cur:", "dump_conf"), 1);
    EXPECT_FALSE(change_pending());
}

TEST_F(MiscStart, NoVersionMeansTheLegacySet)
{
    write_home("misc.conf", "mirror = '7'\n");
    write_data("misc.conf", "mirror = '8'\n");
    write_data("misc_cur.json", "{'mirror':1,'ndi_mode':'low'}");
    init_legacy();
    EXPECT_EQ(para_get_misc_mirror_def(), 0);
    EXPECT_EQ(para_get_misc_mirror_cur(), 1);
    EXPECT_EQ(para_get_misc_flip_cur(), 1) << "not in the current file";
    EXPECT_EQ(para_get_misc_ndi_mode_def(), 3);
    EXPECT_EQ(para_get_misc_ndi_mode_cur(), 1);
    EXPECT_EQ(para_get_misc_hdmivideoformat_def(), 1);
    const std::vector<std::string> lines = traces_of("para_init_misc_legacy");
    EXPECT_THAT(lines, ElementsAre("enter\n", "enter misc version:0\n"));
    EXPECT_EQ(count_traces("misc cur:", "dump_conf"), 1);
}

TEST_F(MiscStart, OnlyANonzeroIntegerIsAVersion)
{
    const std::vector<std::pair<const char *, const char *>> versions = {
        {"1", "{'version':1,'a':[1,2]}"},     {"-3", "{'version':-3,'a':[1,2]}"},
        {"0.5", "{'version':0,'a':[1,2]}"},   {"0", "{'version':0,'a':[1,2]}"},
        {"'1'", "{'version':0,'a':[1,2]}"},   {"null", "{'version':0,'a':[1,2]}"},
        {"false", "{'version':0,'a':[1,2]}"},
    };
    write_home("misc.conf", "");
    for (const auto &[version, expected] : versions) {
        write_home("misc_range.json", std::string("{'version':") + version + ",'a':[1,2]}");
        configure *cur = nullptr, *def = nullptr;
        cJSON *range = nullptr;
        EXPECT_EQ(para_init_misc_legacy("misc", &cur, &def, &range), 0) << version;
        EXPECT_EQ(compact(range), expected);
        const json owner(range);
        configure_free(cur);
        configure_free(def);
    }
}

TEST_F(MiscStart, TheRangeIsPrintedToTheTrace)
{
    write_home("misc_range.json", "{'lock':[0,1]}");
    init();
    std::vector<std::string> functions;
    for (const trace_line &line : traces()) {
        EXPECT_EQ(line.level, 6) << line.text;
        functions.push_back(line.function);
    }
    EXPECT_THAT(functions, ElementsAre("para_init_misc_legacy", "fix_old_misc_range_conf",
                                       "cJSON_Print_safe", "para_init_misc_legacy", "dump_conf"));
    EXPECT_EQ(count_traces("type:0x40,{\n\t\"version\":\t0,\n\t\"lock\":\t[0, 1]\n}"), 1);
}

TEST_F(MiscStart, WithoutARangeFileThereIsNothing)
{
    write_versioned();
    write_data("misc.conf", "mirror = '1'\n");
    unlink((home + "/misc_range.json").c_str());
    init();
    EXPECT_THAT(traces_of("para_init_misc_legacy"),
                ElementsAre("enter\n", "Error range def buf\n"));
    EXPECT_THAT(levels_of("Error range def buf", "para_init_misc_legacy"), ElementsAre(3));
    EXPECT_EQ(count_traces("misc cur:", "dump_conf"), 1) << "it is dumped all the same";
    EXPECT_EQ(peek_json_enum_type("misc", "mirror"), 0) << "the module is known";
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.min(), -1) << member.key;
        EXPECT_EQ(member.max(), -1) << member.key;
    }
    for (const enum_accessors &member : enum_members) {
        EXPECT_EQ(member.str(0), nullptr) << member.key;
        EXPECT_EQ(member.num(member.names[0].c_str()), -1) << member.key;
    }
    expect_no_values();
    EXPECT_EQ(para_save_misc("misc"), 0);
    EXPECT_EQ(read_data("misc.conf"), "mirror = \"1\"\n") << "nothing is written";
    EXPECT_THAT(data_files(), ElementsAre("misc.conf"));
}

TEST_F(MiscStart, ABrokenRangeFileIsTraced)
{
    write_versioned();
    write_home("misc_range.json", "rubbish");
    init();
    EXPECT_THAT(traces_of("para_init_misc_legacy"),
                ElementsAre("enter\n", "Error before: [rubbish]\n"));
    EXPECT_THAT(levels_of("Error before: [rubbish]", "para_init_misc_legacy"), ElementsAre(3));
    expect_no_values();
    EXPECT_EQ(para_save_misc("misc"), 0);
    EXPECT_THAT(data_files(), IsEmpty());
}

TEST_F(MiscStart, WithoutVersionedDefaultsTheRangeAloneIsThere)
{
    write_versioned();
    write_data("misc.conf", "mirror = '1'\nndi_mode = 'low'\n");
    unlink((home + "/misc.conf").c_str());
    init();
    EXPECT_EQ(para_get_misc_vi_framerate_max(), 60);
    EXPECT_EQ(para_get_misc_ndi_mode_num("low"), 1);
    expect_no_values();
}

TEST_F(MiscStart, WithoutAVersionedCurrentFileTheDefaultsStand)
{
    init_versioned();
    for (const accessors &member : all_members)
        EXPECT_EQ(member.cur(), member.def()) << member.key;
    EXPECT_THAT(data_files(), IsEmpty());
}

TEST_F(MiscStart, WithoutLegacyDefaultsTheCurrentFileCounts)
{
    for (const char *broken : {"", "rubbish"}) {
        write_home("misc_range.json", legacy_range);
        write_data("misc_cur.json", "{'mirror':1}");
        if (broken[0] != '\0')
            write_home("misc_def.json", broken);
        configure *cur = nullptr, *def = nullptr;
        cJSON *range = nullptr;
        EXPECT_EQ(para_init_misc_legacy("misc", &cur, &def, &range), 0);
        char text[32];
        EXPECT_EQ(cur->conf_get(cur, "mirror", text, sizeof text), 0);
        EXPECT_STREQ(text, "1");
        EXPECT_EQ(def->conf_find(def, "mirror"), nullptr);
        const json owner(range);
        configure_free(cur);
        configure_free(def);
    }
    EXPECT_EQ(count_traces("Error before: [rubbish]", "fix_old_misc_def_cur_conf"), 2)
        << "for defaults and current values; a missing file is not traced";
    EXPECT_THAT(traces_of("fix_old_misc_def_cur_conf"), SizeIs(2));
}

TEST_F(MiscStart, WithoutALegacyCurrentFileTheDefaultsStand)
{
    init_legacy();
    for (const accessors &member : all_members)
        EXPECT_EQ(member.cur(), member.def()) << member.key;
    EXPECT_THAT(traces_of("fix_old_misc_def_cur_conf"), IsEmpty());
}

TEST_F(MiscStart, ABrokenLegacyCurrentFileIsTracedAndTheDefaultsStand)
{
    write_data("misc_cur.json", "{'mirror':1,");
    init_legacy();
    EXPECT_EQ(para_get_misc_mirror_cur(), 0);
    EXPECT_THAT(traces_of("fix_old_misc_def_cur_conf"), ElementsAre(StartsWith("Error before: [")));
}

TEST_F(MiscStart, TheObjectsExistAlsoWhenLoadingFails)
{
    configure *cur = nullptr, *def = nullptr;
    cJSON *range = nullptr;
    EXPECT_EQ(para_init_misc_legacy("misc", &cur, &def, &range), -1);
    ASSERT_NE(cur, nullptr);
    ASSERT_NE(def, nullptr);
    EXPECT_NE(cur, def);
    EXPECT_EQ(range, nullptr);
    configure_free(cur);
    configure_free(def);

    write_home("misc_range.json", versioned_range);
    EXPECT_EQ(para_init_misc_legacy("any name", &cur, &def, &range), -1);
    EXPECT_EQ(compact(range), versioned_range);
    EXPECT_EQ(cur->conf_find(cur, "mirror"), nullptr);
    const json owner(range);
    configure_free(cur);
    configure_free(def);
}

TEST_F(MiscStart, TheFileNamesAreFixed)
{
    write_versioned();
    configure *cur = nullptr, *def = nullptr;
    cJSON *range = nullptr;
    EXPECT_EQ(para_init_misc_legacy("another name", &cur, &def, &range), 0);
    EXPECT_NE(def->conf_find(def, "mirror"), nullptr);
    const json owner(range);
    configure_free(cur);
    configure_free(def);
    EXPECT_EQ(para_init_misc_legacy_test(), 0);
}

TEST_F(MiscStart, AlwaysKeepsItsSlot)
{
    write_home("panel_range.json", "{'a':[0,1]}");
    write_home("panel.conf", "a = '1'\n");
    init();
    para_init_misc("panel");
    EXPECT_EQ(peek_json_enum_type("misc", "mirror"), 0);
    EXPECT_EQ(para_get_json_cur("panel", "a"), 1);
}

TEST_F(MiscStart, IsTheOneModuleOfTheDefaultList)
{
    write_versioned();
    write_home("misc2_range.json", "{'a':[0,1]}");
    write_home("misc2.conf", "a = '1'\n");
    start_store();
    EXPECT_EQ(count_traces("add json_pattern:misc", "register_para_handle_json_pattern"), 1);
    EXPECT_EQ(para_get_misc_flip_cur(), 1);
    for (const char *name : {"json", "misc2", "json_pattern"})
        EXPECT_EQ(peek_json_enum_type(name, "a"), -1) << name;
}

TEST_F(MiscStart, OtherModulesThatBeginWithItsNameAreNot)
{
    write_home("misc2_range.json", "{'version':0,'ndi_mode':['off','high']}");
    write_home("misc2.conf", "ndi_mode = 'high'\n");
    para_init_misc("json");
    para_init_misc("misc2");
    EXPECT_EQ(para_get_json_max("misc2", "ndi_mode"), 1) << "nothing is widened";
}

// --- Legacy ranges ---

TEST_F(MiscWidening, TablesAreInTheLegacyOrder)
{
    EXPECT_THAT(
        hdmivideoformat,
        ElementsAre(testing::StrEq("1080P60"), testing::StrEq("1080P50"), testing::StrEq("1080I60"),
                    testing::StrEq("1080I50"), testing::StrEq("720P60"), testing::StrEq("720P50"),
                    testing::StrEq("1080P30"), testing::StrEq("1080P25"), testing::StrEq("720P30"),
                    testing::StrEq("720P25"), testing::StrEq("1080P59.94"),
                    testing::StrEq("1080I59.94"), testing::StrEq("4KP30"), testing::StrEq("4KP25"),
                    testing::StrEq("4KP50"), testing::StrEq("4KP60"), testing::StrEq("4KP29.97"),
                    testing::StrEq("4KP59.94"), testing::StrEq("480P59.94"),
                    testing::StrEq("480I59.94"), testing::StrEq("480P60"), testing::StrEq("576P50"),
                    testing::StrEq("576I50")));
    EXPECT_THAT(ViStrategy, ElementsAre(testing::StrEq("50"), testing::StrEq("60"),
                                        testing::StrEq("dial"), testing::StrEq("osd")));
    EXPECT_THAT(ndi_mode, ElementsAre(testing::StrEq("off"), testing::StrEq("low"),
                                      testing::StrEq("medium"), testing::StrEq("high"),
                                      testing::StrEq("264P50"), testing::StrEq("264P60"),
                                      testing::StrEq("265P50"), testing::StrEq("265P60")));
}

TEST_F(MiscWidening, AStretchBecomesTheFullList)
{
    EXPECT_EQ(widened_list("hdmivideoformat", "4KP30", "4KP60"),
              "['4KP30','4KP25','4KP50','4KP60']");
    EXPECT_EQ(widened_list("ViStrategy", "50", "osd"), "['50','60','dial','osd']");
    EXPECT_EQ(widened_list("ndi_mode", "off", "high"), "['off','low','medium','high']");
}

TEST_F(MiscWidening, EveryPairOfNamesGivesItsStretchOrNothing)
{
    for (const enum_accessors &member : enum_members) {
        const std::vector<std::string> &names = member.names;
        for (size_t first = 0; first < names.size(); first++) {
            for (size_t last = 0; last < names.size(); last++) {
                EXPECT_EQ(widened_list(member.key, names[first], names[last]),
                          first <= last ? list_of(names, first, last) : "[]")
                    << names[first] << " to " << names[last];
            }
        }
    }
}

TEST_F(MiscWidening, TheLastNameEndsTheWalkAlsoBeforeTheFirst)
{
    EXPECT_EQ(widened_list("ndi_mode", "high", "low"), "[]");
    EXPECT_EQ(widened_list("ViStrategy", "osd", "50"), "[]");
    EXPECT_EQ(widened_list("ndi_mode", "264P50", "26"), "['264P50']");
    EXPECT_EQ(widened_list("ndi_mode", "265P50", "26"), "[]") << "264P50 begins with 26";
    EXPECT_EQ(widened_list("hdmivideoformat", "4KP30", "1080P60"), "[]");
}

TEST_F(MiscWidening, AShortNameIsTheFirstThatBeginsWithIt)
{
    EXPECT_EQ(widened_list("ndi_mode", "l", "h"), "['low','medium','high']");
    EXPECT_EQ(widened_list("ndi_mode", "26", "265"), "['264P50','264P60','265P50']");
    EXPECT_EQ(widened_list("hdmivideoformat", "1080P5", "720P6"),
              "['1080P50','1080I60','1080I50','720P60']");
    EXPECT_EQ(widened_list("hdmivideoformat", "1080P50", "1080P"), "[]");
    EXPECT_EQ(widened_list("ViStrategy", "", ""), "['50']");
    EXPECT_EQ(widened_list("ViStrategy", "60", ""), "[]");
    EXPECT_EQ(widened_list("ViStrategy", "", "60"), "['50','60']");
}

TEST_F(MiscWidening, UnknownNamesNeitherStartNorEndIt)
{
    EXPECT_EQ(widened_list("ViStrategy", "none", "osd"), "[]");
    EXPECT_EQ(widened_list("ViStrategy", "60", "none"), "['60','dial','osd']");
    EXPECT_EQ(widened_list("ViStrategy", "50x", "osd"), "[]") << "longer than the name";
}

TEST_F(MiscWidening, OnlyTheFirstTwoElementsCount)
{
    EXPECT_EQ(widen("'ViStrategy':['60','dial','50','osd']"),
              "{'version':0,'ViStrategy':['60','dial']}");
}

TEST_F(MiscWidening, MembersWithoutTwoElementsAreDropped)
{
    EXPECT_EQ(widen("'ViStrategy':['50'],'ndi_mode':[],'hdmivideoformat':'1080P60','mirror':[1],"
                    "'flip':[],'lock':5,'version':0,'telnetEn':'x','trackMode':null,'a':[0,1]"),
              "{'version':0,'a':[0,1]}");
}

TEST_F(MiscWidening, NumbersAreNoNames)
{
    EXPECT_EQ(widen("'ViStrategy':[0,3],'ndi_mode':['off',1],'hdmivideoformat':[null,true]"),
              "{'version':0}");
}

TEST_F(MiscWidening, OtherMembersAreCopiedInOrder)
{
    EXPECT_EQ(widen("'mirror':[0,1],'ViStrategy':['dial','osd'],'modes':['a','z'],"
                    "'three':[1,2,3],'nested':[[1],{'b':2}],'vistrategy':['50','osd']"),
              "{'version':0,'mirror':[0,1],'ViStrategy':['dial','osd'],'modes':['a','z'],"
              "'three':[1,2,3],'nested':[[1],{'b':2}],'vistrategy':['50','osd']}");
}

TEST_F(MiscWidening, TheOldRangeIsLeftAlone)
{
    const json old = parse(legacy_range);
    json range(fix_old_misc_range_conf(old.get()));
    EXPECT_EQ(compact(old.get()), legacy_range);
    range.reset();
    EXPECT_EQ(compact(old.get()), legacy_range) << "nothing is shared";
}

TEST_F(MiscWidening, TracesEachMemberWithItsSize)
{
    widen("'ViStrategy':['50','osd'],'mirror':[0,1,2],'lock':[1],'plain':5");
    EXPECT_THAT(traces_of("fix_old_misc_range_conf"),
                ElementsAre("element is ViStrategy,size:2\n", "element is mirror,size:3\n",
                            "element is lock,size:1\n", "element is plain,size:0\n"));
}

TEST_F(MiscWidening, WhatIsNoObjectGivesAnEmptyRange)
{
    for (const char *old : {"[]", "[['50','osd']]", "5", "'text'", "null"}) {
        const json range(fix_old_misc_range_conf(parse(old).get()));
        EXPECT_EQ(compact(range.get()), "{'version':0}") << old;
    }
}

// --- Legacy values ---

class MiscLegacyFile : public Misc {
protected:
    ~MiscLegacyFile() override { configure_free(values); }

    int load(const std::string &text)
    {
        write_data("values.json", text);
        return fix_old_misc_def_cur_conf((data + "/values.json").c_str(), values);
    }
    // All entries, one a line.
    std::string dump()
    {
        char text[4096] = "";
        conf_buffer_state state = {text, sizeof text, 0, 0};
        values->conf_loop(values, loop_2_buf, &state);
        return text;
    }

    configure *const values = configure_init();
};

TEST_F(MiscLegacyFile, EveryTypeBecomesText)
{
    EXPECT_EQ(load("{'text':'two words','empty':'','number':5,'negative':-7,'fraction':3.9,"
                   "'large':1e20,'small':-1e20,'yes':true,'no':false,'nothing':null,'list':[5],"
                   "'object':{'a':5},'utf8':'gr\xc3\xbc\xc3\x9f'}"),
              0);
    EXPECT_EQ(dump(), "text = \"two words\"\nempty = \"\"\nnumber = \"5\"\nnegative = \"-7\"\n"
                      "fraction = \"3\"\nlarge = \"2147483647\"\nsmall = \"-2147483648\"\n"
                      "yes = \"1\"\nno = \"0\"\nnothing = \"0\"\nlist = \"0\"\nobject = \"0\"\n"
                      "utf8 = \"gr\xc3\xbc\xc3\x9f\"\n");
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(MiscLegacyFile, OverwritesAndAdds)
{
    load("{'a':1,'b':2}");
    EXPECT_EQ(load("{'b':'x','c':3}"), 0);
    EXPECT_EQ(dump(), "a = \"1\"\nb = \"x\"\nc = \"3\"\n");
}

TEST_F(MiscLegacyFile, TextsOfAnyLengthAreKept)
{
    const std::string longer(1000, 'l');
    EXPECT_EQ(load("{'a':'" + longer + "'}"), 0);
    EXPECT_EQ(dump(), "a = \"" + longer + "\"\n");
}

TEST_F(MiscLegacyFile, AMissingFileIsNotTraced)
{
    EXPECT_EQ(fix_old_misc_def_cur_conf((data + "/none.json").c_str(), values), -1);
    EXPECT_THAT(traces(), IsEmpty());
    EXPECT_EQ(dump(), "");
}

TEST_F(MiscLegacyFile, ABrokenFileIsTracedAndChangesNothing)
{
    load("{'a':1}");
    EXPECT_EQ(load("rubbish"), -1);
    EXPECT_THAT(traces_of("fix_old_misc_def_cur_conf"), ElementsAre("Error before: [rubbish]\n"));
    EXPECT_THAT(levels_of("Error before: [rubbish]", "fix_old_misc_def_cur_conf"), ElementsAre(3));
    EXPECT_EQ(dump(), "a = \"1\"\n");
}

TEST_F(MiscLegacyFile, WhatIsNoObjectHoldsNothing)
{
    for (const char *text : {"[]", "[1,'a']", "5", "'a'", "null"})
        EXPECT_EQ(load(text), 0) << text;
    EXPECT_EQ(dump(), "");
}

// --- Typed accessors ---

TEST_F(MiscAccessors, ReadTheCurrentSet)
{
    init_versioned();
    expect_number_members();
}

TEST_F(MiscAccessors, ReadTheLegacySet)
{
    init_legacy();
    expect_number_members();
}

TEST_F(MiscAccessors, EnumMembersAreReadAsPositions)
{
    init_versioned();
    EXPECT_EQ(para_get_misc_ViStrategy_min(), 0);
    EXPECT_EQ(para_get_misc_ViStrategy_max(), 3);
    EXPECT_EQ(para_get_misc_ViStrategy_def(), 1);
    EXPECT_EQ(para_get_misc_ndi_mode_max(), 7);
    EXPECT_EQ(para_get_misc_ndi_mode_cur(), 3);
    EXPECT_EQ(para_get_misc_hdmivideoformat_max(), 2);
    EXPECT_EQ(para_get_misc_hdmivideoformat_cur(), 0);
}

TEST_F(MiscAccessors, NamesAndPositionsGoByTheRangeOfTheDevice)
{
    init_legacy();
    EXPECT_STREQ(para_get_misc_hdmivideoformat_str(0), "4KP30");
    EXPECT_STREQ(para_get_misc_hdmivideoformat_str(3), "4KP60");
    EXPECT_EQ(para_get_misc_hdmivideoformat_str(4), nullptr);
    EXPECT_EQ(para_get_misc_hdmivideoformat_str(-1), nullptr);
    EXPECT_EQ(para_get_misc_hdmivideoformat_num("4KP50"), 2);
    EXPECT_EQ(para_get_misc_hdmivideoformat_num("1080P60"), -1);
    EXPECT_EQ(para_get_misc_hdmivideoformat_num("4KP5"), -1);
    EXPECT_EQ(para_get_misc_hdmivideoformat_num(nullptr), -1);
    EXPECT_EQ(para_get_misc_ndi_mode_num("264P50"), -1);
}

TEST_F(MiscAccessors, EveryNameOfEveryEnumMemberGoesThereAndBack)
{
    std::string range = "{'version':1", defaults;
    for (const enum_accessors &member : enum_members) {
        range += std::string(",'") + member.key +
                 "':" + list_of(member.names, 0, member.names.size() - 1);
        defaults += std::string(member.key) + " = '" + member.names[0] + "'\n";
    }
    write_home("misc_range.json", range + "}");
    write_home("misc.conf", defaults);
    init();
    for (const enum_accessors &member : enum_members) {
        const int count = static_cast<int>(member.names.size());
        for (int i = count - 1; i >= 0; i--) {
            const std::string &name = member.names[static_cast<size_t>(i)];
            EXPECT_EQ(member.str(i), name);
            EXPECT_EQ(member.num(name.c_str()), i);
            EXPECT_EQ(member.set(i), 1) << name;
            EXPECT_EQ(value(member.key), name);
            EXPECT_EQ(member.cur(), i);
        }
        for (int i = count - 1; i >= 0; i--) {
            EXPECT_EQ(member.set_by_text(member.names[static_cast<size_t>(i)].c_str()), 1);
            EXPECT_EQ(member.cur(), i);
        }
        EXPECT_EQ(member.str(count), nullptr);
        EXPECT_EQ(member.set(count), 0);
        EXPECT_EQ(member.set(-1), 0);
    }
}

TEST_F(MiscAccessors, WithoutAStoreThereIsNoModule)
{
    for (const accessors &member : all_members) {
        for (const int result : {member.min(), member.max(), member.def(), member.cur()})
            EXPECT_EQ(result, -1) << member.key;
        EXPECT_EQ(member.set(1), -1) << member.key;
    }
    EXPECT_EQ(para_get_misc_ndi_mode_str(0), nullptr);
    EXPECT_EQ(para_get_misc_ndi_mode_num("off"), -1);
    EXPECT_EQ(para_set_misc_ndi_mode_cur_bystr("off"), 0);
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(MiscSetter, StoresAndTellsTheHookWithItself)
{
    init_versioned();
    for (const accessors &member : all_members) {
        const int other = member.cur() == 0 ? 1 : 0;
        notifications.clear();
        EXPECT_EQ(member.set(other), 1) << member.key;
        EXPECT_EQ(member.cur(), other) << member.key;
        ASSERT_THAT(notifications, SizeIs(1)) << member.key;
        EXPECT_EQ(notifications[0].module, "misc");
        EXPECT_EQ(notifications[0].setter, reinterpret_cast<para_entry_point>(member.set));
        EXPECT_EQ(notifications[0].member, member.key);
        EXPECT_EQ(notifications[0].value, other) << member.key;
        EXPECT_EQ(member.set(other), 0) << member.key;
        EXPECT_THAT(notifications, SizeIs(1)) << "the same value again";
    }
    EXPECT_TRUE(change_pending());
    EXPECT_THAT(requests, IsEmpty());
}

TEST_F(MiscSetter, StoresTheTextOfAPosition)
{
    init_versioned();
    EXPECT_EQ(para_set_misc_ndi_mode_cur(4), 1);
    EXPECT_EQ(value("ndi_mode"), "264P50");
    ASSERT_THAT(notifications, SizeIs(1));
    EXPECT_EQ(notifications[0].value, 4);
}

TEST_F(MiscSetter, ByTextTellsNoHook)
{
    init_versioned();
    EXPECT_EQ(para_set_misc_ndi_mode_cur_bystr("264P50"), 1);
    EXPECT_EQ(value("ndi_mode"), "264P50");
    EXPECT_EQ(para_set_misc_ndi_mode_cur_bystr("264P50"), 0);
    EXPECT_EQ(para_set_misc_ndi_mode_cur_bystr("264"), 0);
    EXPECT_EQ(para_set_misc_ndi_mode_cur_bystr(nullptr), 0);
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_TRUE(change_pending());
}

TEST_F(MiscSetter, DoesNotEnforceTheRangeOfNumbers)
{
    init_legacy();
    for (const int number : {99, -1, INT_MAX, INT_MIN}) {
        EXPECT_EQ(para_set_misc_mirror_cur(number), 1);
        EXPECT_EQ(para_get_misc_mirror_cur(), number);
    }
    EXPECT_THAT(notifications, SizeIs(4));
}

TEST_F(MiscSetter, APositionOutsideTheListIsRefused)
{
    init_legacy();
    for (const int position : {-1, 4, INT_MAX})
        EXPECT_EQ(para_set_misc_ndi_mode_cur(position), 0);
    EXPECT_EQ(value("ndi_mode"), "high");
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(MiscSetter, WorksWithoutAHook)
{
    para_profile.misc_set_notify_hook = nullptr;
    init_versioned();
    EXPECT_EQ(para_set_misc_mirror_cur(1), 1);
    EXPECT_EQ(para_get_misc_mirror_cur(), 1);
}

// --- Requests ---

TEST_F(MiscRequest, IsServedOverUdp)
{
    write_versioned();
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_id':3,'misc':{'hdmivideoformat':'1080P50',"
                         "'mirror':1,'flip':'0','ndi_mode':0,'version':9}}"),
              "{'msg_id':3}");
    EXPECT_EQ(client.ask("{'msg_type':'get','misc':['hdmivideoformat','mirror','flip','ndi_mode',"
                         "'version']}"),
              "{'misc':{'hdmivideoformat':'1080P50','mirror':1,'flip':1,'ndi_mode':'high'}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','misc_def':['hdmivideoformat','mirror']}"),
              "{'misc_def':{'hdmivideoformat':'1080P60','mirror':0}}");
    EXPECT_THAT(requests, ElementsAre("misc{'hdmivideoformat':'1080P50','mirror':1,'flip':'0',"
                                      "'ndi_mode':0,'version':9}"));
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(MiscRequest, AllAnswersEveryEntry)
{
    write_legacy();
    start_store();
    para_set_misc_mirror_cur(1);
    para_set_misc_ViStrategy_cur_bystr("dial");
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'get','misc':['all']}"),
              "{'misc':{'ViStrategy':'dial','ndi_mode':'high','hdmivideoformat':'4KP25','mirror':1,"
              "'flip':1,'vi_framerate':50,'ezoom_limit':4,'lock':0,'privacyCover':1,"
              "'netStream':2,'trackMode':3,'telnetEn':0}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','misc_def':['all']}"),
              std::string("{'misc_def':") + legacy_defaults + "}");
    EXPECT_EQ(client.ask("{'msg_type':'get','misc':['all','mirror']}"), "{'misc':{'mirror':1}}");
}

// --- Saving ---

TEST_F(MiscSave, TheCurrentSetIsWrittenAsConfLines)
{
    init_versioned();
    para_set_misc_ndi_mode_cur(4);
    para_set_misc_mirror_cur(1);
    EXPECT_EQ(para_save_misc("misc"), 0);
    EXPECT_EQ(read_data("misc.conf"),
              "ViStrategy = \"60\"\nndi_mode = \"264P50\"\nhdmivideoformat = \"1080P60\"\n"
              "mirror = \"1\"\nflip = \"1\"\nvi_framerate = \"50\"\nezoom_limit = \"4\"\n"
              "lock = \"0\"\nprivacyCover = \"1\"\nnetStream = \"2\"\ntrackMode = \"3\"\n"
              "telnetEn = \"0\"\n");
    EXPECT_THAT(data_files(), ElementsAre("misc.conf"));
    EXPECT_FALSE(change_pending());
}

TEST_F(MiscSave, TheCurrentSetIsWrittenWithoutALock)
{
    init_versioned();
    EXPECT_EQ(para_save_misc("misc"), 0);
    EXPECT_EQ(lock_attempts(), 0);
}

TEST_F(MiscSave, TheLegacySetIsWrittenAsJson)
{
    write_data("misc_cur.json", "{'unknown':'12 apples','more':true}" + std::string(2000, ' '));
    init_legacy();
    para_set_misc_ViStrategy_cur(3);
    para_set_misc_mirror_cur(-5);
    EXPECT_EQ(para_save_misc("misc"), 0);
    EXPECT_EQ(read_data("misc_cur.json"), std::string("{\n"
                                                      "\t\"ViStrategy\":\t\"osd\",\n"
                                                      "\t\"ndi_mode\":\t\"high\",\n"
                                                      "\t\"hdmivideoformat\":\t\"4KP25\",\n"
                                                      "\t\"mirror\":\t-5,\n"
                                                      "\t\"flip\":\t1,\n"
                                                      "\t\"vi_framerate\":\t50,\n"
                                                      "\t\"ezoom_limit\":\t4,\n"
                                                      "\t\"lock\":\t0,\n"
                                                      "\t\"privacyCover\":\t1,\n"
                                                      "\t\"netStream\":\t2,\n"
                                                      "\t\"trackMode\":\t3,\n"
                                                      "\t\"telnetEn\":\t0,\n"
                                                      "\t\"unknown\":\t12,\n"
                                                      "\t\"more\":\t1\n"
                                                      "}") +
                                              '\0');
    EXPECT_THAT(data_files(), ElementsAre("misc_cur.json"));
    EXPECT_FALSE(change_pending());
}

TEST_F(MiscSave, TheFilesOfTheHomeFolderStay)
{
    init_legacy();
    para_set_misc_mirror_cur(1);
    para_save_misc("misc");
    const auto as_written = [this](const char *name) {
        return compact(parse(read_file(home + "/" + name).value_or("none")).get());
    };
    EXPECT_EQ(as_written("misc_range.json"), legacy_range);
    EXPECT_EQ(as_written("misc_def.json"), legacy_defaults);
}

TEST_F(MiscSave, ASavedCurrentSetIsLoadedAgain)
{
    init_versioned();
    para_set_misc_ndi_mode_cur(4);
    para_set_misc_vi_framerate_cur(INT_MIN);
    para_save_misc("misc");
    EXPECT_EQ(after_restart("ndi_mode"), "264P50");
    EXPECT_EQ(after_restart("vi_framerate"), "-2147483648");
    EXPECT_EQ(after_restart("trackMode"), "3");
}

TEST_F(MiscSave, ASavedLegacySetIsLoadedAgain)
{
    init_legacy();
    para_set_misc_ndi_mode_cur(0);
    para_set_misc_vi_framerate_cur(INT_MAX);
    para_save_misc("misc");
    EXPECT_EQ(after_restart("ndi_mode"), "off");
    EXPECT_EQ(after_restart("vi_framerate"), "2147483647");
    EXPECT_EQ(after_restart("trackMode"), "3");
}

TEST_F(MiscSave, LegacyTextsOfAnyBytesAreWrittenWhole)
{
    const std::string longer(1000, 'l');
    write_home("misc_range.json", "{'e':['a','b'],'f':['a','b']}");
    write_home("misc_def.json", "{'e':'gr\xc3\xbc\xc3\x9f dich','f':'" + longer + "'}");
    init();
    para_save_misc("misc");
    EXPECT_EQ(read_data("misc_cur.json"),
              "{\n\t\"e\":\t\"gr\xc3\xbc\xc3\x9f dich\",\n\t\"f\":\t\"" + longer + "\"\n}" + '\0');
    EXPECT_EQ(after_restart("e"), "gr\xc3\xbc\xc3\x9f dich");
}

TEST_F(MiscSave, NothingIsWrittenBeforeItIsLoaded)
{
    configure *const values = configure_init();
    values->conf_set(values, "mirror", "1");
    EXPECT_EQ(para_save_misc_legacy("misc", values), 0);
    EXPECT_THAT(data_files(), IsEmpty());
    configure_free(values);
}

TEST_F(MiscSave, ABadStartDoesNotCostTheSavedSettings)
{
    write_home("misc_range.json", versioned_range);
    write_data("misc.conf", "mirror = '1'\n"); // without the defaults file in the home folder
    init();
    EXPECT_EQ(para_save_misc("misc"), 0);
    EXPECT_EQ(read_data("misc.conf"), "mirror = \"1\"\n");
}

TEST_F(MiscSave, AFileThatDoesNotOpenIsNoErrorAndNotRetried)
{
    init_versioned();
    para_set_misc_mirror_cur(1);
    mkdir((data + "/misc.conf").c_str(), 0755);
    EXPECT_EQ(para_save_misc("misc"), 0);
    EXPECT_FALSE(change_pending());
}

TEST_F(MiscSave, ALegacyFileThatDoesNotOpenIsNoErrorAndNotRetried)
{
    init_legacy();
    para_set_misc_mirror_cur(1);
    mkdir((data + "/misc_cur.json").c_str(), 0755);
    EXPECT_EQ(para_save_misc("misc"), 0);
    EXPECT_FALSE(change_pending());
}

TEST_F(MiscSave, AFullDiskIsReported)
{
    init_versioned();
    ASSERT_EQ(symlink("/dev/full", (data + "/misc.conf").c_str()), 0);
    EXPECT_NE(para_save_misc("misc"), 0);
}

TEST_F(MiscSave, AFullDiskIsReportedForTheLegacySetToo)
{
    init_legacy();
    ASSERT_EQ(symlink("/dev/full", (data + "/misc_cur.json").c_str()), 0);
    EXPECT_NE(para_save_misc("misc"), 0);
}

TEST_F(MiscSave, IsDueTwoSecondsAfterTheLastChange)
{
    init_legacy();
    stop_clock();
    EXPECT_EQ(para_need_save_misc("misc"), 0);
    para_set_misc_mirror_cur(1);
    move_clock(1500);
    para_set_misc_mirror_cur(1);
    para_set_misc_ndi_mode_cur(99);
    move_clock(499);
    EXPECT_EQ(para_need_save_misc("misc"), 0);
    move_clock(1);
    EXPECT_EQ(para_need_save_misc("misc"), 1);
    para_save_misc("misc");
    EXPECT_EQ(para_need_save_misc("misc"), 0);
}

TEST_F(MiscSave, TheThreadSavesARequestedChange)
{
    write_legacy();
    start_store();
    Client client;
    client.ask("{'msg_type':'set','misc':{'ndi_mode':'low'}}");
    EXPECT_FALSE(read_data("misc_cur.json"));
    move_clock(2000);
    EXPECT_TRUE(wait_until([this] {
        const std::string text = read_data("misc_cur.json").value_or("");
        return text.find("\"ndi_mode\":\t\"low\"") != std::string::npos && text.back() == '\0';
    }));
    stop_store();
    EXPECT_THAT(data_files(), testing::Not(testing::Contains("misc.conf")));
}

TEST_F(Misc, MayBeUsedByManyThreadsAtOnce)
{
    para_profile.misc_set_notify_hook = nullptr; // the test's own record one thread's changes
    para_profile.misc_set_request_hook = nullptr;
    set_trace_level(3);
    write_legacy();
    start_store();
    std::vector<std::thread> hosts;
    for (int first = 0; first < 3; first++) {
        hosts.emplace_back([first] {
            for (int i = 0; i < 200; i++) {
                para_set_misc_vi_framerate_cur(first * 1000 + i);
                para_set_misc_ndi_mode_cur(i % 4);
                para_set_misc_ViStrategy_cur_bystr(i % 2 == 0 ? "dial" : "osd");
                EXPECT_GE(para_get_misc_vi_framerate_cur(), 0);
                EXPECT_GE(para_get_misc_ndi_mode_cur(), 0);
            }
        });
    }
    hosts.emplace_back([] {
        for (int i = 0; i < 20; i++)
            platformparam_save();
    });
    Client client;
    for (int i = 0; i < 60; i++) {
        client.ask("{'msg_type':'set','misc':{'lock':" + std::to_string(i) + "}}");
        EXPECT_THAT(client.ask("{'msg_type':'get','misc':['all']}"), StartsWith("{'misc':{"));
        move_clock(700);
    }
    for (std::thread &host : hosts)
        host.join();
    stop_store();
    EXPECT_THAT(read_data("misc_cur.json").value_or(""), HasSubstr("\"lock\":\t59,\n"));
}
