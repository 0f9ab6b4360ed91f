// The image signal processor: members with columns of their own, whose defaults come from a style.
#include "camparam/isp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "support/store.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

// What a host relies on, member by member, whatever the list in the headers says.
struct expected_member {
    const char *name;
    bool loaded, accessor, by_name, written;
};
constexpr bool yes = true, no = false;

const expected_member expected_record[] = {
    {"style", yes, yes, yes, yes},
    {"exposure_mode_priority", yes, no, no, no},
    {"exposure_mode", yes, yes, yes, yes},
    {"shutter", yes, yes, yes, yes},
    {"iris", yes, yes, yes, yes},
    {"bright", yes, yes, yes, yes},
    {"expcomp_mode", yes, yes, yes, yes},
    {"expcomp_level", yes, yes, yes, yes},
    {"backlight", yes, yes, yes, yes},
    {"gain_limit", yes, yes, yes, yes},
    {"manual_gain", yes, yes, yes, yes},
    {"antiflicker", yes, yes, yes, yes},
    {"meter", yes, yes, yes, yes},
    {"wdr_strength", yes, yes, yes, yes},
    {"wb_mode", yes, yes, yes, yes},
    {"awb_sens", yes, yes, yes, yes},
    {"rgain", yes, yes, yes, yes},
    {"bgain", yes, yes, yes, yes},
    {"rgain_tuning", yes, yes, yes, yes},
    {"bgain_tuning", yes, yes, yes, yes},
    {"ggain_tuning", yes, yes, yes, yes},
    {"rgain_onepush", yes, yes, yes, yes},
    {"bgain_onepush", yes, yes, yes, yes},
    {"saturation", yes, yes, yes, yes},
    {"hue", yes, yes, yes, yes},
    {"temperature", yes, yes, yes, yes},
    {"len_type", yes, no, no, yes},
    {"luminance", yes, yes, yes, yes},
    {"contrast", yes, yes, yes, yes},
    {"sharpness", yes, yes, yes, yes},
    {"blackwhite_mode", yes, yes, yes, yes},
    {"gamma", yes, yes, yes, yes},
    {"drc", yes, yes, yes, yes},
    {"ccm_style", yes, no, no, yes},
    {"nr2d", yes, yes, yes, yes},
    {"nr3d", yes, yes, yes, yes},
    {"hotpixel", no, no, no, yes},
    {"skin_saturation", yes, yes, yes, yes},
};

std::vector<std::string> names(const std::string &text)
{
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

// In the order of files and answers; hotpixel, the last of them, is never present.
const std::vector<std::string> expected_json_order =
    names("style exposure_mode shutter iris bright expcomp_mode expcomp_level backlight "
          "gain_limit manual_gain antiflicker meter wdr_strength wb_mode awb_sens rgain "
          "bgain rgain_tuning bgain_tuning ggain_tuning rgain_onepush bgain_onepush "
          "saturation skin_saturation hue temperature len_type luminance contrast "
          "sharpness blackwhite_mode gamma drc ccm_style nr2d nr3d hotpixel");

// In the order in which a set request's key is tried.
const std::vector<std::string> expected_by_name_order =
    names("style exposure_mode shutter iris bright expcomp_mode expcomp_level backlight "
          "gain_limit manual_gain antiflicker meter wdr_strength drc wb_mode awb_sens "
          "rgain bgain rgain_tuning bgain_tuning ggain_tuning rgain_onepush bgain_onepush "
          "saturation skin_saturation hue temperature luminance contrast sharpness "
          "blackwhite_mode gamma nr2d nr3d");

struct accessors {
    int word;
    const char *key;
    int (*def)(int), (*min)(int), (*max)(int), (*init)(int), (*cur)(int);
    int (*set)(int, int), (*quiet_set)(int, int);
};

const accessors all_members[] = {
#define PICK_yes(word, name)                                                                       \
    {word,                                                                                         \
     #name,                                                                                        \
     para_get_isp_##name##_def,                                                                    \
     para_get_isp_##name##_min,                                                                    \
     para_get_isp_##name##_max,                                                                    \
     para_get_isp_##name##_init,                                                                   \
     para_get_isp_##name##_cur,                                                                    \
     para_set_isp_##name##_cur,                                                                    \
     _para_set_isp_##name##_cur},
#define PICK_no(word, name)
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written) PICK_##accessor(word, name)
#include "camparam/isp_members.def"
#undef PICK_yes
#undef PICK_no
};

struct converter {
    const char *key;
    int (*num)(const char *);
};

const converter all_converters[] = {
#define PICK_yes(name) {#name, para_get_isp_##name##_num},
#define PICK_no(name)
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written) PICK_##loaded(name)
#include "camparam/isp_members.def"
#undef PICK_yes
#undef PICK_no
};

int word_of(const std::string &name)
{
    for (size_t i = 0; i < std::size(expected_record); i++) {
        if (name == expected_record[i].name)
            return static_cast<int>(i) + 1;
    }
    ADD_FAILURE() << "no member " << name;
    return 0;
}

int word_at(const isp_record &record, int word)
{
    int words[sizeof(isp_record) / sizeof(int)];
    memcpy(words, &record, sizeof words);
    return words[word];
}

const accessors &member_named(const std::string &name)
{
    for (const accessors &member : all_members) {
        if (name == member.key)
            return member;
    }
    ADD_FAILURE() << "no accessors of " << name;
    return all_members[0];
}

// Every name of the record, hotpixel too: 'name':word + offset.
std::string values(int offset)
{
    std::string text;
    for (const expected_member &member : expected_record) {
        text += text.empty() ? "{'" : ",'";
        text += std::string(member.name) + "':" + std::to_string(word_of(member.name) + offset);
    }
    return text + "}";
}

// Every name of the record: 'name':[-word, 1000 + word].
std::string ranges()
{
    std::string text;
    for (const expected_member &member : expected_record) {
        const int word = word_of(member.name);
        text += text.empty() ? "{'" : ",'";
        text += std::string(member.name) + "':[" + std::to_string(-word) + "," +
                std::to_string(1000 + word) + "]";
    }
    return text + "}";
}

// What an answer with every member holds when each one's value is word + offset, but for the style.
std::string everything(int style, int offset)
{
    std::string text = "{'style':" + std::to_string(style);
    for (const std::string &name : expected_json_order) {
        if (name != "style" && name != "hotpixel")
            text += ",'" + name + "':" + std::to_string(word_of(name) + offset);
    }
    return text + "}";
}

// Its form in the current file, below an instance's key.
std::string everything_printed(int style, int offset)
{
    std::string text = "{\n\t\t\"style\":\t" + std::to_string(style);
    for (const std::string &name : expected_json_order) {
        if (name != "style" && name != "hotpixel")
            text += ",\n\t\t\"" + name + "\":\t" + std::to_string(word_of(name) + offset);
    }
    return text + "\n\t}";
}

// Three styles: their members are 100, 200 and 300 above their words.
std::string style_file(int def = 0)
{
    return "{'isp0_style_def':" + std::to_string(def) +
           ",'style_excute_by_arm':0,'isp0_style_list':['standard','vivid','soft'],'standard':" +
           values(100) + ",'vivid':" + values(200) + ",'soft':" + values(300) + "}";
}

struct notified {
    int (*setter)(int, int);
    int instance, value;
};
std::vector<notified> notifications;
void notify(int (*setter)(int, int), int instance, int value)
{
    notifications.push_back({setter, instance, value});
}

int requests;
void requested(const cJSON *)
{
    requests++;
}

std::vector<std::string> odm_keys;
void odm_told(const char *key)
{
    odm_keys.push_back(key);
}

// Runs in a process of its own: start-up happens once in a process.
void in_another_process(const std::function<void()> &work)
{
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        work();
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

} // namespace

class Isp : public Store {
protected:
    Isp()
    {
        write_home("isp_range.json", "{'isp0':" + ranges() + "}");
        write_home("isp_def.json", style_file());
        para_profile.isp_set_notify_hook = notify;
        para_profile.isp_set_request_hook = requested;
        para_profile.odm_set_notify_hook = odm_told;
    }

    int init() { return para_init_isp("isp0"); }

    void remove_home(const std::string &name) { std::filesystem::remove(home + "/" + name); }

    void write_odm(const std::string &bytes)
    {
        std::filesystem::create_directory(data + "/persist");
        write_data("persist/odm.json", bytes);
        EXPECT_EQ(para_init_odm("odmInter"), 0);
    }

    bool due() { return para_need_save_isp("isp0") == 1; }

    bool change_pending()
    {
        move_clock(10000);
        return due();
    }

    std::string query(const std::string &key, const std::string &item)
    {
        const json request = parse("{'" + key + "':" + item + "}");
        cJSON *answer = nullptr;
        EXPECT_EQ(para_get_isp_opt(key.c_str(), request->child, &answer, "isp0"), 0);
        const json owner(answer);
        return answer != nullptr ? compact(answer) : "none";
    }

    void change(const std::string &key, const std::string &item)
    {
        const json request = parse("{'" + key + "':" + item + "}");
        EXPECT_EQ(para_set_isp_opt("any key", request->child, "any name"), 0);
    }

    std::string to_json(int instance, int use_defaults)
    {
        const json object(isp_param_to_json(instance, use_defaults));
        return compact(object.get());
    }

    std::string saved()
    {
        EXPECT_EQ(para_save_isp("isp0"), 0);
        return read_data("isp_cur.json").value_or("none");
    }
};

using IspMembers = Isp;
using IspStart = Isp;
using IspInstances = Isp;
using IspNames = Isp;
using IspSetter = Isp;
using IspQuery = Isp;
using IspSetByName = Isp;
using IspSetRequest = Isp;
using IspRestore = Isp;
using IspAntiflickerDefault = Isp;
using IspSave = Isp;

// --- The list ---

TEST_F(IspMembers, StandInTheRecordInTheirOrder)
{
    std::vector<std::string> names;
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written) names.push_back(#name);
#include "camparam/isp_members.def"
    std::vector<std::string> expected;
    for (const expected_member &member : expected_record)
        expected.push_back(member.name);
    EXPECT_EQ(names, expected);
    EXPECT_EQ(sizeof(isp_record), 156U);

    isp_record record = {};
    int next = 0;
    record.size = next++;
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written)                                 \
    EXPECT_EQ(word, next) << #name;                                                                \
    record.name = next++;
#include "camparam/isp_members.def"
    for (int word = 0; word < 39; word++)
        EXPECT_EQ(word_at(record, word), word);
}

TEST_F(IspMembers, HaveTheColumnsThatHostsRelyOn)
{
    const expected_member listed[] = {
#define ISP_MEMBER(word, name, loaded, accessor, by_name, written)                                 \
    {#name, loaded, accessor, by_name, written},
#include "camparam/isp_members.def"
    };
    ASSERT_EQ(std::size(listed), std::size(expected_record));
    for (size_t i = 0; i < std::size(listed); i++) {
        const expected_member &expected = expected_record[i];
        EXPECT_EQ(listed[i].loaded, expected.loaded) << expected.name;
        EXPECT_EQ(listed[i].accessor, expected.accessor) << expected.name;
        EXPECT_EQ(listed[i].by_name, expected.by_name) << expected.name;
        EXPECT_EQ(listed[i].written, expected.written) << expected.name;
    }
    EXPECT_EQ(std::size(all_members), 34U);
    EXPECT_EQ(std::size(all_converters), 37U);
    EXPECT_EQ(std::size(expected_json_order), 37U);
    EXPECT_EQ(std::size(expected_by_name_order), 34U);
}

// --- Start-up ---

TEST_F(IspStart, EveryMemberHasTheValuesOfItsFiles)
{
    write_data("isp_cur.json", "{'isp0':" + values(500) + "}");
    EXPECT_EQ(init(), 0);
    for (const expected_member &member : expected_record) {
        const int word = word_of(member.name);
        const bool is_style = word == 1;
        EXPECT_EQ(word_at(para_isp_min[0], word), member.loaded ? -word : 0) << member.name;
        EXPECT_EQ(word_at(para_isp_max[0], word), member.loaded ? 1000 + word : 0) << member.name;
        EXPECT_EQ(word_at(para_isp_def[0], word), is_style        ? 0
                                                  : member.loaded ? 100 + word
                                                                  : 0)
            << member.name;
        EXPECT_EQ(word_at(para_isp_cur[0], word), member.loaded ? 500 + word : 0) << member.name;
        EXPECT_EQ(word_at(para_isp_init[0], word), member.loaded ? 500 + word : 0) << member.name;
        EXPECT_EQ(word_at(para_isp_exist[0], word), member.loaded ? 0x81 : 0) << member.name;
    }
}

TEST_F(IspStart, AccessorsReadTheirWord)
{
    write_data("isp_cur.json", "{'isp0':" + values(500) + "}");
    init();
    para_set_isp_shutter_cur(0, 7);
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.word, word_of(member.key));
        EXPECT_EQ(member.min(0), -member.word) << member.key;
        EXPECT_EQ(member.max(0), 1000 + member.word) << member.key;
        EXPECT_EQ(member.def(0), member.word == 1 ? 0 : 100 + member.word) << member.key;
        EXPECT_EQ(member.cur(0), member.word == 4 ? 7 : 500 + member.word) << member.key;
        EXPECT_EQ(member.init(0), 500 + member.word) << member.key;
    }
}

TEST_F(IspStart, EachRecordBeginsWithItsSize)
{
    init();
    for (const int instance : {0, 1}) {
        EXPECT_EQ(para_isp_min[instance].size, 156);
        EXPECT_EQ(para_isp_max[instance].size, 156);
        EXPECT_EQ(para_isp_def[instance].size, 156);
        EXPECT_EQ(para_isp_cur[instance].size, 156);
        EXPECT_EQ(para_isp_init[instance].size, 156);
        EXPECT_EQ(para_isp_exist[instance].size, 0);
    }
}

TEST_F(IspStart, WithoutARangeFileFails)
{
    remove_home("isp_range.json");
    write_data("isp_cur.json", "{'isp0':" + values(500) + "}");
    EXPECT_EQ(init(), -1);
    EXPECT_THAT(traces(), IsEmpty());
    EXPECT_NE(isp_inited, 0);
    EXPECT_EQ(isp_num, 0);
    EXPECT_EQ(para_isp_cur[1].size, 156);
    EXPECT_EQ(para_isp_init[0].size, 0) << "the start-up values are copied at the end";
    EXPECT_EQ(para_isp_exist[0].style, 0) << "no style was loaded";
    EXPECT_EQ(para_get_isp_shutter_cur(0), 0);
    EXPECT_EQ(get_isp_style_json(0), nullptr);
}

TEST_F(IspStart, ABrokenRangeFileFails)
{
    write_home("isp_range.json", "rubbish");
    EXPECT_EQ(init(), -1);
    EXPECT_THAT(traces_of("para_init_isp"), ElementsAre("Error before: [rubbish]\n\n"));
    EXPECT_EQ(traces().size(), 1U);
    EXPECT_EQ(traces()[0].level, 6);
}

TEST_F(IspStart, HappensOnce)
{
    remove_home("isp_range.json");
    EXPECT_EQ(init(), -1);
    write_home("isp_range.json", "{'isp0':" + ranges() + "}");
    forget_traces();
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(para_init_isp(nullptr), 0);
    EXPECT_THAT(traces(), IsEmpty());
    EXPECT_EQ(para_get_isp_shutter_max(0), 0);
}

TEST_F(IspStart, TheModuleNameIsIgnored)
{
    EXPECT_EQ(para_init_isp(nullptr), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 104);
    EXPECT_EQ(para_need_save_isp(nullptr), 0);
    EXPECT_EQ(para_save_isp(nullptr), 0);
    EXPECT_TRUE(read_data("isp_cur.json"));
}

TEST_F(IspStart, ARangeIsAnArrayOfTwoOrMore)
{
    write_home("isp_range.json",
               "{'isp0':{'shutter':[5],'iris':[],'bright':7,'meter':[1,2,3],"
               "'gamma':{'a':3,'b':4},'hue':'text','drc':null,'NR2D':[3,4],'nr3d':['a',2.9]}}");
    EXPECT_EQ(init(), 0);
    for (const char *name : {"shutter", "iris", "bright", "gamma", "hue", "drc"}) {
        EXPECT_EQ(member_named(name).min(0), 0) << name;
        EXPECT_EQ(member_named(name).max(0), 0) << name;
    }
    EXPECT_EQ(para_get_isp_meter_min(0), 1);
    EXPECT_EQ(para_get_isp_meter_max(0), 2);
    EXPECT_EQ(para_get_isp_nr2d_max(0), 4) << "keys are matched without regard to case";
    EXPECT_EQ(para_get_isp_nr3d_min(0), 0) << "a text is the number 0";
    EXPECT_EQ(para_get_isp_nr3d_max(0), 2);
}

TEST_F(IspStart, ARangeFileWithoutTheInstanceLeavesEveryRangeEmpty)
{
    write_home("isp_range.json", ranges());
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(isp_num, 0);
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.max(0), 0) << member.key;
        EXPECT_EQ(member.cur(0), member.word == 1 ? 0 : 100 + member.word) << member.key;
    }
    EXPECT_EQ(query("isp0", "['all']"), "none");
    EXPECT_EQ(saved(), std::string("{\n}") + '\0');
}

TEST_F(IspStart, WithoutAStyleFileMembersAreAbsentButForTheStyle)
{
    remove_home("isp_def.json");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(to_json(0, 0), "{'style':0}");
    for (const accessors &member : all_members) {
        EXPECT_EQ(word_at(para_isp_exist[0], member.word), member.word == 1 ? 0x81 : 0);
        EXPECT_EQ(member.def(0), 0) << member.key;
        EXPECT_EQ(member.cur(0), 0) << member.key;
        EXPECT_EQ(member.max(0), 1000 + member.word) << member.key;
    }
    EXPECT_THAT(traces_of("para_init_isp_style"), IsEmpty());
}

TEST_F(IspStart, WithoutAStyleFileSavedValuesAreReadAndNotReported)
{
    remove_home("isp_def.json");
    write_data("isp_cur.json", "{'isp0':{'shutter':5}}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 5);
    EXPECT_EQ(para_get_isp_shutter_init(0), 5);
    EXPECT_EQ(to_json(0, 0), "{'style':0}");
}

TEST_F(IspStart, ABrokenStyleFileIsNoFailure)
{
    write_home("isp_def.json", "rubbish");
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_isp_style"), ElementsAre("Error before: [rubbish]\n\n"));
    EXPECT_EQ(to_json(0, 0), "{'style':0}");
}

TEST_F(IspStart, WithoutACurrentFileTheDefaultStyleStands)
{
    write_home("isp_def.json", style_file(1));
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_isp"), ElementsAre("parse_ok:0\n"));
    EXPECT_EQ(to_json(0, 0), everything(1, 200));
    EXPECT_EQ(to_json(0, 1), everything(1, 200));
    EXPECT_EQ(para_isp_cur[0].exposure_mode_priority, 202);
    EXPECT_EQ(para_isp_def[0].exposure_mode_priority, 202);
    EXPECT_FALSE(change_pending());
}

TEST_F(IspStart, ABrokenCurrentFileIsNoFailure)
{
    write_data("isp_cur.json", "rubbish");
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_isp"),
                ElementsAre("Error before: [rubbish]\n\n", "parse_ok:0\n"));
    EXPECT_EQ(to_json(0, 0), everything(0, 100));
    EXPECT_FALSE(change_pending());
}

TEST_F(IspStart, ACurrentFileThatCannotBeReadIsNoFailure)
{
    std::filesystem::create_directory(data + "/isp_cur.json");
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_isp"), ElementsAre("parse_ok:0\n"));
    EXPECT_EQ(to_json(0, 0), everything(0, 100));
}

TEST_F(IspStart, ACurrentFileWithoutTheInstanceChangesNothing)
{
    write_data("isp_cur.json", "{'isp1':{'style':1,'shutter':5},'style':1,'shutter':6}");
    EXPECT_EQ(init(), 0);
    EXPECT_THAT(traces_of("para_init_isp"), ElementsAre("parse_ok:1\n"));
    EXPECT_EQ(to_json(0, 0), everything(0, 100));
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(IspStart, SavedValuesOverrideTheStyleWithoutARangeCheck)
{
    write_data("isp_cur.json", "{'isp0':{'shutter':5000,'len_type':6,'iris':'text','HUE':7,"
                               "'hotpixel':8,'exposure_mode_priority':9}}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 5000);
    EXPECT_EQ(para_get_isp_shutter_def(0), 104);
    EXPECT_EQ(para_isp_cur[0].len_type, 6);
    EXPECT_EQ(para_isp_def[0].len_type, 127);
    EXPECT_EQ(para_get_isp_iris_cur(0), 0) << "a text is the number 0";
    EXPECT_EQ(para_get_isp_hue_cur(0), 7);
    EXPECT_EQ(para_isp_cur[0].hotpixel, 0);
    EXPECT_EQ(para_isp_cur[0].exposure_mode_priority, 9);
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(IspStart, AStyleValueOfAnotherTypeIsPresentAsZero)
{
    write_home("isp_def.json", "{'isp0_style_list':['a'],'a':{'shutter':'25','iris':null,"
                               "'bright':[3],'METER':4,'hue':5.9}}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(to_json(0, 0), "{'style':0,'shutter':0,'iris':0,'bright':0,'meter':4,'hue':5}");
    for (const char *name : {"shutter", "iris", "bright", "meter", "hue"})
        EXPECT_EQ(word_at(para_isp_exist[0], word_of(name)), 0x81) << name;
}

TEST_F(IspStart, SavedStyleThatDiffersIsOneChange)
{
    write_data("isp_cur.json", "{'isp0':{'shutter':5,'style':1}}");
    EXPECT_EQ(init(), 0);
    ASSERT_EQ(notifications.size(), 1U);
    EXPECT_EQ(notifications[0].setter, para_set_isp_style_cur);
    EXPECT_EQ(notifications[0].instance, 0);
    EXPECT_EQ(notifications[0].value, 1);
    EXPECT_FALSE(due());
    move_clock(1900);
    EXPECT_FALSE(due());
    move_clock(100);
    EXPECT_TRUE(due());
}

TEST_F(IspStart, SavedStyleGivesDefaultsAndWhatTheFileLacks)
{
    write_data("isp_cur.json", "{'isp0':{'shutter':5,'style':1}}");
    init();
    EXPECT_EQ(to_json(0, 1), everything(1, 200));
    EXPECT_EQ(para_get_isp_shutter_cur(0), 5);
    for (const accessors &member : all_members) {
        const int expected = member.word == 1 ? 1 : member.word == 4 ? 5 : 200 + member.word;
        EXPECT_EQ(member.cur(0), expected) << member.key;
        EXPECT_EQ(member.init(0), member.cur(0)) << member.key;
    }
    EXPECT_EQ(para_get_isp_style_def_index(0), 0) << "the default style stays";
}

TEST_F(IspStart, SavedStyleThatDiffersIsSavedOnceByTheThread)
{
    write_data("isp_cur.json", "{'isp0':{'style':1}}");
    start_store();
    ASSERT_EQ(notifications.size(), 1U);
    EXPECT_EQ(read_data("isp_cur.json"), "{\"isp0\":{\"style\":1}}");
    move_clock(2000);
    const std::string bytes =
        "{\n\t\"isp0\":\t" + everything_printed(1, 200) + "\n}" + std::string(1, '\0');
    EXPECT_TRUE(wait_until([&] { return read_data("isp_cur.json") == bytes; }));
    move_clock(10000);
    Client client;
    for (int turn = 0; turn < 3; turn++)
        EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(count_traces("isp0 save..."), 1);
}

TEST_F(IspStart, SavedStyleThatIsTheDefaultIsNoChange)
{
    write_home("isp_def.json", style_file(1));
    write_data("isp_cur.json", "{'isp0':{'style':1,'shutter':5}}");
    init();
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
    EXPECT_EQ(para_get_isp_shutter_cur(0), 5);
    EXPECT_EQ(para_get_isp_iris_cur(0), 205);
}

TEST_F(IspStart, SavedStyleOutsideItsRangeStandsAloneWithoutBeingAChange)
{
    write_data("isp_cur.json", "{'isp0':{'style':5000}}");
    init();
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
    EXPECT_EQ(para_get_isp_style_cur(0), 5000) << "saved values are not checked";
    EXPECT_EQ(para_get_isp_style_def(0), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 104);
    EXPECT_EQ(para_get_isp_shutter_def(0), 104);
}

TEST_F(IspStart, SavedStyleWithoutAnObjectKeepsTheValuesOfTheDefault)
{
    write_data("isp_cur.json", "{'isp0':{'style':7,'shutter':5}}");
    init();
    ASSERT_EQ(notifications.size(), 1U);
    EXPECT_EQ(notifications[0].value, 7);
    EXPECT_EQ(para_get_isp_style_cur(0), 7);
    EXPECT_EQ(para_get_isp_style_def(0), 0);
    EXPECT_EQ(para_get_isp_iris_cur(0), 105);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 5);
}

TEST_F(IspStart, SavedStyleThatIsNegativeHasNoObject)
{
    write_data("isp_cur.json", "{'isp0':{'style':-1}}");
    init();
    EXPECT_EQ(para_get_isp_style_cur(0), -1);
    EXPECT_EQ(para_get_isp_iris_cur(0), 105);
}

TEST_F(IspStart, SavedStyleKeepsWhatTheStyleDoesNotName)
{
    write_home("isp_def.json", "{'isp0_style_list':['a','b'],'a':{'shutter':1,'iris':2,'hue':3},"
                               "'b':{'shutter':11}}");
    write_data("isp_cur.json", "{'isp0':{'style':1,'hue':30}}");
    init();
    EXPECT_EQ(to_json(0, 0), "{'style':1,'shutter':11,'iris':2,'hue':30}");
    EXPECT_EQ(to_json(0, 1), "{'style':0,'shutter':11,'iris':2,'hue':3}")
        << "a style without a style member leaves that word";
}

TEST_F(IspStart, SavedStyleWorksWithoutAHook)
{
    para_profile.isp_set_notify_hook = nullptr;
    write_data("isp_cur.json", "{'isp0':{'style':1}}");
    EXPECT_EQ(init(), 0);
    EXPECT_TRUE(change_pending());
}

TEST_F(IspStart, ADefaultStyleWithoutAnObjectLoadsNothing)
{
    for (const int index : {3, 1000000, -1, INT_MIN}) {
        in_another_process([&] {
            write_home("isp_def.json", style_file(index));
            EXPECT_EQ(init(), 0);
            EXPECT_EQ(to_json(0, 0), "{'style':" + std::to_string(index) + "}");
            EXPECT_EQ(to_json(0, 1), "{'style':" + std::to_string(index) + "}");
        });
    }
}

TEST_F(IspStart, OdmValuesOverrideTheStyleFile)
{
    write_odm("{'version':1,'isp0_style_def':1,'isp0_antiflicker_def':50}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(para_get_isp_style_def_index(0), 1);
    EXPECT_EQ(para_get_isp_style_cur(0), 1);
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 50);
    EXPECT_EQ(para_get_isp_antiflicker_cur(0), 212) << "the current value is the style's";
    EXPECT_EQ(para_get_isp_antiflicker_init(0), 212);
    EXPECT_EQ(para_get_isp_shutter_def(0), 204);
    EXPECT_EQ(para_isp_def[1].antiflicker, 0);
    EXPECT_FALSE(change_pending());
    EXPECT_THAT(odm_keys, IsEmpty());
}

TEST_F(IspStart, TheOdmAntiflickerWinsOverASavedStyleToo)
{
    write_odm("{'version':1,'isp0_antiflicker_def':50}");
    write_data("isp_cur.json", "{'isp0':{'style':2,'antiflicker':60}}");
    init();
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 50);
    EXPECT_EQ(para_get_isp_antiflicker_cur(0), 60);
}

TEST_F(IspStart, TheStoreLoadsTheOdmValuesFirst)
{
    std::filesystem::create_directory(data + "/persist");
    write_data("persist/odm.json", "{'version':1,'isp0_style_def':2}");
    start_store();
    EXPECT_EQ(para_get_isp_style_def_index(0), 2);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 304);
    EXPECT_EQ(count_traces("isp0 init err"), 0);
}

TEST_F(IspStart, FailureIsTracedByTheStore)
{
    remove_home("isp_range.json");
    start_store();
    EXPECT_EQ(count_traces("isp0 init err"), 1);
}

TEST_F(IspStart, WithoutDirectoriesFilesAreInTheWorkingDirectory)
{
    ASSERT_EQ(chdir(home.c_str()), 0);
    write_home("isp_cur.json", "{'isp0':{'shutter':5}}");
    para_profile.home_dir = nullptr;
    para_profile.data_dir = nullptr;
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(para_get_isp_shutter_max(0), 1004);
    EXPECT_EQ(para_get_isp_shutter_def(0), 104);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 5);
    EXPECT_EQ(para_save_isp("isp0"), 0);
    EXPECT_THAT(read_file(home + "/isp_cur.json").value_or(""), HasSubstr("\"shutter\":\t5,"));
}

TEST_F(IspStart, PathsThatAreTooLongAreNeverCut)
{
    std::string directory = data + "/";
    directory.append(128 - strlen("/isp_cur.json") - directory.size(), 'd');
    std::filesystem::create_directory(directory);
    write_file(directory + "/isp_cur.json", R"({"isp0":{"shutter":5}})");
    write_file(directory + "/isp_cur.jso", R"({"isp0":{"shutter":5}})");
    write_file(directory + "/isp_range.json", "{}");
    para_profile.data_dir = directory.c_str();
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 104);

    in_another_process([&] {
        isp_inited = 0;
        para_profile.home_dir = directory.c_str();
        EXPECT_EQ(init(), -1);
    });
}

TEST_F(IspStart, DumpsPresentMembers)
{
    write_home("isp_def.json", "{'isp0_style_list':['a'],'a':{'skin_saturation':3,'shutter':2,"
                               "'len_type':5,'exposure_mode_priority':6,'nr3d':4}}");
    write_data("isp_cur.json", "{'isp0':{'shutter':12}}");
    init();
    EXPECT_THAT(traces_of("isp_page"),
                ElementsAre("----------ISP PARAM-----------\n\n", "isp0 param:\n\n",
                            "           style : cur:[0],\tdef:[0],\trange:[-1,1001]\n",
                            "         shutter : cur:[12],\tdef:[2],\trange:[-4,1004]\n",
                            "            nr3d : cur:[4],\tdef:[4],\trange:[-36,1036]\n",
                            " skin_saturation : cur:[3],\tdef:[3],\trange:[-38,1038]\n",
                            "--------------------------------\n\n"));
}

TEST_F(IspStart, DumpsEveryInstance)
{
    remove_home("isp_def.json");
    write_home("isp_range.json", "{'isp0':{},'isp1':{}}");
    init();
    EXPECT_THAT(traces_of("isp_page"),
                ElementsAre("----------ISP PARAM-----------\n\n", "isp0 param:\n\n",
                            "           style : cur:[0],\tdef:[0],\trange:[0,0]\n",
                            "isp1 param:\n\n", "--------------------------------\n\n"));
    forget_traces();
    isp_page();
    EXPECT_EQ(traces().size(), 5U);
    EXPECT_EQ(traces()[2].level, 6);
}

TEST_F(IspStart, IsSilentBelowTheLevelOfProgress)
{
    set_trace_level(5);
    write_data("isp_cur.json", "rubbish");
    init();
    query("isp0", "['shutter']");
    change("isp0", "{'shutter':5}");
    EXPECT_THAT(traces(), IsEmpty());
}

// --- Instances ---

TEST_F(IspInstances, AreCountedInTheRangeFile)
{
    const std::pair<const char *, int> files[] = {
        {"{}", 0},
        {"[]", 0},
        {"{'isp0':{}}", 1},
        {"{'isp0':null,'isp1':5}", 2},
        {"{'isp1':{}}", 1},
        {"{'ISP0':{},'Isp1':{}}", 2},
        {"{'isp2':{},'isp':{},'isp00':{}}", 0},
        {"{'isp0':{},'isp1':{},'isp2':{},'isp3':{}}", 2},
    };
    for (const auto &[text, count] : files) {
        forget_traces();
        EXPECT_EQ(check_isp_num(parse(text).get()), count) << text;
        EXPECT_THAT(traces_of("check_isp_num"),
                    ElementsAre("check isp num = " + std::to_string(count) + "\n"));
    }
}

TEST_F(IspInstances, NoFileFillsTheSecond)
{
    write_home("isp_range.json", "{'isp0':" + ranges() + ",'isp1':" + ranges() + "}");
    write_data("isp_cur.json", "{'isp0':{'style':0},'isp1':" + values(500) + "}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(isp_num, 2);
    for (int word = 1; word < 39; word++) {
        EXPECT_EQ(word_at(para_isp_min[1], word), 0) << word;
        EXPECT_EQ(word_at(para_isp_max[1], word), 0) << word;
        EXPECT_EQ(word_at(para_isp_def[1], word), 0) << word;
        EXPECT_EQ(word_at(para_isp_cur[1], word), 0) << word;
        EXPECT_EQ(word_at(para_isp_init[1], word), 0) << word;
        EXPECT_EQ(word_at(para_isp_exist[1], word), 0) << word;
    }
    EXPECT_EQ(query("isp1", "['all']"), "{}");
}

TEST_F(IspInstances, ASecondAloneIsServedAsTheFirst)
{
    write_home("isp_range.json", "{'isp1':" + ranges() + "}");
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(isp_num, 1);
    EXPECT_EQ(query("isp0", "['shutter']"), "{'shutter':104}");
    EXPECT_EQ(query("isp1", "['shutter']"), "none");
}

TEST_F(IspInstances, OthersReadAsZeroAndCannotBeSet)
{
    init();
    for (const int instance : {-1, 2, 3, 5, 1000000, INT_MIN, INT_MAX}) {
        for (const accessors &member : all_members) {
            for (const auto get : {member.def, member.min, member.max, member.init, member.cur})
                EXPECT_EQ(get(instance), 0) << member.key << " " << instance;
            EXPECT_EQ(member.set(instance, 1), 0) << member.key << " " << instance;
            EXPECT_EQ(member.quiet_set(instance, 1), 0) << member.key << " " << instance;
            EXPECT_EQ(isp_set_member_by_name(member.key, instance, 1, nullptr), 0) << member.key;
            int value = 77;
            EXPECT_EQ(para_get_isp_cur_member(member.key, instance, &value, nullptr), 0);
            EXPECT_EQ(para_get_isp_def_member(member.key, instance, &value, nullptr), 0);
            EXPECT_EQ(value, 77);
        }
        EXPECT_EQ(to_json(instance, 0), "{}");
        EXPECT_EQ(to_json(instance, 1), "{}");
        EXPECT_EQ(para_set_isp_antiflicker_def(instance, 5), 0);
    }
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_THAT(odm_keys, IsEmpty());
    EXPECT_EQ(to_json(0, 0), everything(0, 100));
    EXPECT_FALSE(change_pending());
}

TEST_F(IspInstances, TheSecondIsSetOnceAStyleMadeItPresent)
{
    init();
    EXPECT_EQ(para_set_isp_shutter_cur(1, 0), 0);
    EXPECT_EQ(para_set_isp_style_def(1, 1), 0);
    para_isp_cur_restore_isp_def();
    EXPECT_EQ(para_get_isp_shutter_cur(1), 204);
    EXPECT_EQ(para_set_isp_shutter_cur(1, 5), 0) << "its range is empty";
    EXPECT_EQ(para_get_isp_shutter_cur(1), 204);
    EXPECT_EQ(para_set_isp_shutter_cur(1, 0), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(1), 0);
    ASSERT_EQ(notifications.size(), 1U);
    EXPECT_EQ(notifications[0].setter, para_set_isp_shutter_cur);
    EXPECT_EQ(notifications[0].instance, 1);
    EXPECT_EQ(notifications[0].value, 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 104);
}

// --- Texts ---

TEST_F(IspNames, EveryLoadedMemberKnowsNullAlone)
{
    for (const converter &member : all_converters) {
        for (const char *text : {"", "n", "nu", "nul", "null", "0"})
            EXPECT_EQ(member.num(text), 0) << member.key << " " << text;
        EXPECT_EQ(member.num("25"), 25) << member.key;
        EXPECT_EQ(member.num("7 apples"), 7) << member.key;
        EXPECT_EQ(member.num("99999999999999999999"), INT_MAX) << member.key;
        for (const char *text : {"x", "nulls", "Null", "-1", " 1", "+1", "\xe9"})
            EXPECT_EQ(member.num(text), -1000) << member.key << " " << text;
        EXPECT_EQ(member.num(nullptr), -1000) << member.key;
    }
}

// --- Setters ---

TEST_F(IspSetter, TakesEveryValueOfTheRangeAndTellsTheHook)
{
    init();
    for (const accessors &member : all_members) {
        for (const int value : {member.max(0), member.min(0), 3}) {
            notifications.clear();
            EXPECT_EQ(member.set(0, value), 0);
            EXPECT_EQ(member.cur(0), value) << member.key;
            EXPECT_EQ(word_at(para_isp_cur[0], member.word), value) << member.key;
            ASSERT_EQ(notifications.size(), 1U) << member.key;
            EXPECT_EQ(notifications[0].setter, member.set) << member.key;
            EXPECT_EQ(notifications[0].instance, 0) << member.key;
            EXPECT_EQ(notifications[0].value, value) << member.key;
        }
        EXPECT_EQ(member.init(0), member.word == 1 ? 0 : 100 + member.word) << member.key;
        EXPECT_EQ(member.def(0), member.word == 1 ? 0 : 100 + member.word) << member.key;
    }
    EXPECT_TRUE(change_pending());
}

TEST_F(IspSetter, TheInternalSetterTellsTheChangeAndNoHook)
{
    init();
    for (const accessors &member : all_members) {
        EXPECT_EQ(member.quiet_set(0, 3), 1) << member.key;
        EXPECT_EQ(member.quiet_set(0, 3), 0) << member.key;
        EXPECT_EQ(member.cur(0), 3) << member.key;
    }
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_TRUE(change_pending());
}

TEST_F(IspSetter, RefusesWhatIsOutsideTheRangeOrCurrent)
{
    init();
    for (const accessors &member : all_members) {
        const int before = member.cur(0);
        for (const int value : {member.min(0) - 1, member.max(0) + 1, INT_MIN, INT_MAX, before}) {
            EXPECT_EQ(member.set(0, value), 0);
            EXPECT_EQ(member.quiet_set(0, value), 0);
            EXPECT_EQ(member.cur(0), before) << member.key;
        }
    }
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(IspSetter, ARefusedValueDoesNotPostponeTheSave)
{
    init();
    para_set_isp_shutter_cur(0, 5);
    move_clock(2000);
    para_set_isp_shutter_cur(0, 5);
    para_set_isp_shutter_cur(0, 5000);
    change("isp0", "{'shutter':5,'iris':5000}");
    EXPECT_TRUE(due());
}

TEST_F(IspSetter, AnAbsentMemberCannotBeSet)
{
    remove_home("isp_def.json");
    init();
    for (const accessors &member : all_members) {
        const bool present = member.word == 1;
        EXPECT_EQ(member.quiet_set(0, 3), present ? 1 : 0);
        EXPECT_EQ(member.set(0, 4), 0);
        EXPECT_EQ(member.cur(0), present ? 4 : 0) << member.key;
    }
    EXPECT_EQ(notifications.size(), 1U);
}

TEST_F(IspSetter, SettingTheStyleChangesThatWordAlone)
{
    init();
    para_set_isp_style_cur(0, 2);
    EXPECT_EQ(to_json(0, 0), everything(2, 100));
    EXPECT_EQ(to_json(0, 1), everything(0, 100));
    EXPECT_EQ(para_get_isp_style_def_index(0), 0);
}

TEST_F(IspSetter, WorksWithoutAHook)
{
    para_profile.isp_set_notify_hook = nullptr;
    init();
    EXPECT_EQ(para_set_isp_shutter_cur(0, 5), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 5);
}

// --- Queries ---

TEST_F(IspQuery, MemberLookUpGivesValueAndPresence)
{
    init();
    for (const accessors &member : all_members) {
        member.set(0, 3);
        int value = 77;
        const char *text = "untouched";
        EXPECT_EQ(para_get_isp_cur_member(member.key, 0, &value, &text), 0x81) << member.key;
        EXPECT_EQ(value, 3) << member.key;
        EXPECT_EQ(para_get_isp_def_member(member.key, 0, &value, &text), 0x81) << member.key;
        EXPECT_EQ(value, member.word == 1 ? 0 : 100 + member.word) << member.key;
        EXPECT_STREQ(text, "untouched");
    }
}

TEST_F(IspQuery, MemberLookUpKnowsNoOtherNames)
{
    init();
    for (const char *name : {"exposure_mode_priority", "len_type", "ccm_style", "hotpixel",
                             "shutte", "shutters", "Shutter", "", "all", "size"}) {
        int value = 77;
        EXPECT_EQ(para_get_isp_cur_member(name, 0, &value, nullptr), 0) << name;
        EXPECT_EQ(para_get_isp_def_member(name, 0, &value, nullptr), 0) << name;
        EXPECT_EQ(value, 77) << name;
    }
}

TEST_F(IspQuery, AnAbsentMemberHasNoPresence)
{
    remove_home("isp_def.json");
    init();
    int value = 77;
    EXPECT_EQ(para_get_isp_cur_member("shutter", 0, &value, nullptr), 0);
    EXPECT_EQ(para_get_isp_cur_member("style", 0, &value, nullptr), 0x81);
    EXPECT_EQ(query("isp0", "['shutter','style']"), "{'style':0}");
}

TEST_F(IspQuery, TheKeyChoosesCurrentValuesOrDefaults)
{
    init();
    para_set_isp_shutter_cur(0, 5);
    EXPECT_EQ(query("isp0", "['shutter','iris']"), "{'shutter':5,'iris':105}");
    EXPECT_EQ(query("isp0_cur_all", "['shutter','iris']"), "{'shutter':5,'iris':105}");
    EXPECT_EQ(query("isp0_def", "['shutter','iris']"), "{'shutter':104,'iris':105}");
}

TEST_F(IspQuery, AllAnswersInFileOrder)
{
    write_data("isp_cur.json", "{'isp0':" + values(500) + "}");
    init();
    EXPECT_EQ(query("isp0", "['all']"), everything(501, 500));
    EXPECT_EQ(query("isp0_cur_all", "['all']"), everything(501, 500));
    EXPECT_EQ(query("isp0_def", "['all']"), everything(0, 100));
    EXPECT_EQ(query("isp0", "['allegro']"), everything(501, 500));
    EXPECT_EQ(query("isp0", "['al']"), "{}");
    EXPECT_EQ(query("isp0", "['ALL']"), "{}");
    EXPECT_EQ(query("isp0", "['all','shutter']"), "{'shutter':504}");
    EXPECT_EQ(to_json(0, 0), everything(501, 500));
    EXPECT_EQ(to_json(0, 1), everything(0, 100));
    EXPECT_EQ(to_json(0, -5), everything(0, 100));
}

TEST_F(IspQuery, MembersOutOfReachAreLeftOut)
{
    init();
    EXPECT_EQ(query("isp0", "['exposure_mode_priority','ccm_style','nr2d','len_type','hotpixel',"
                            "'nothing',5,null,['iris'],{'a':'iris'},'hue']"),
              "{'nr2d':135,'hue':125}");
}

TEST_F(IspQuery, EveryMemberIsAnsweredByItsName)
{
    init();
    std::string names, answer;
    for (const accessors &member : all_members) {
        const std::string value = std::to_string(member.word == 1 ? 0 : 100 + member.word);
        names += std::string(names.empty() ? "['" : ",'") + member.key + "'";
        answer += std::string(answer.empty() ? "{'" : ",'") + member.key + "':" + value;
    }
    EXPECT_EQ(query("isp0", names + "]"), answer + "}") << "in the order of the request";
    EXPECT_EQ(query("isp0_def", names + "]"), answer + "}");
}

TEST_F(IspQuery, AnItemThatIsNoListIsAnsweredEmpty)
{
    init();
    for (const char *item : {"'all'", "5", "null", "[]", "{}", "[[]]", "[null]", "true"})
        EXPECT_EQ(query("isp0", item), "{}") << item;
}

TEST_F(IspQuery, OtherKeysAreNotAnswered)
{
    init();
    for (const char *key :
         {"isp0x", "isp", "isp0_", "isp0_cur", "isp0_de", "isp0_defs", "isp0_cur_alls", "isp00",
          "ISP0", "isp1", "isp1_def", "isp1_cur_all", "isp2", "isp5", "", "isp-1", "isp%d"}) {
        EXPECT_EQ(query(key, "['all']"), "none") << key;
        EXPECT_EQ(query(key, "['shutter']"), "none") << key;
    }
}

TEST_F(IspQuery, TheSecondInstanceIsAnsweredWhenItIsInUse)
{
    write_home("isp_range.json", "{'isp0':" + ranges() + ",'isp1':{}}");
    init();
    para_set_isp_style_def(1, 2);
    EXPECT_EQ(query("isp1", "['shutter','iris']"), "{'shutter':0,'iris':0}");
    EXPECT_EQ(query("isp1_cur_all", "['shutter']"), "{'shutter':0}");
    EXPECT_EQ(query("isp1_def", "['shutter']"), "{'shutter':304}");
    EXPECT_EQ(query("isp1_def", "['all']"), everything(2, 300));
    EXPECT_EQ(query("isp2", "['all']"), "none");
    EXPECT_EQ(query("isp0", "['shutter']"), "{'shutter':104}");
}

TEST_F(IspQuery, IsTraced)
{
    init();
    forget_traces();
    query("isp0_def", "['shutter']");
    query("isp0", "['all']");
    query("isp0x", "['all']");
    EXPECT_THAT(traces_of("para_get_isp_opt"),
                ElementsAre("inter isp0_def\n", "leave\n", "inter isp0\n", "inter isp0x\n"));
    EXPECT_EQ(traces()[0].level, 7);
    EXPECT_EQ(traces()[1].level, 6);
}

TEST_F(IspQuery, IsServedOverUdp)
{
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_id':1,'isp0':{'shutter':12,'saturation':60}}"),
              "{'msg_id':1}");
    EXPECT_EQ(client.ask("{'msg_type':'get','isp0':['shutter','saturation'],'isp0x':['shutter'],"
                         "'isp0_def':['shutter'],'isp0_cur_all':['shutter'],'msg_id':2}"),
              "{'isp0':{'shutter':12,'saturation':60},'isp0_def':{'shutter':104},"
              "'isp0_cur_all':{'shutter':12},'msg_id':2}");
    EXPECT_EQ(requests, 0);
}

// --- Set by name ---

TEST_F(IspSetByName, AKeyIsTakenByTheFirstMemberWhoseNameItBeginsWith)
{
    init();
    for (const expected_member &target : expected_record) {
        for (const std::string suffix : {"", "x", "_tuning", "2"}) {
            const std::string key = target.name + suffix;
            std::string taken_by;
            for (const std::string &name : expected_by_name_order) {
                if (taken_by.empty() && key.compare(0, name.size(), name) == 0)
                    taken_by = name;
            }
            para_isp_cur_restore_isp_def();
            EXPECT_EQ(isp_set_member_by_name(key.c_str(), 0, 33, nullptr), taken_by.empty() ? 0 : 1)
                << key;
            for (const accessors &member : all_members) {
                const int expected = member.key == taken_by ? 33 : member.def(0);
                EXPECT_EQ(member.cur(0), expected) << key << " " << member.key;
            }
        }
    }
}

TEST_F(IspSetByName, LongerNamesAreTakenByShorterOnes)
{
    init();
    const std::pair<const char *, const char *> taken[] = {
        {"rgain_tuning", "rgain"},
        {"rgain_onepush", "rgain"},
        {"bgain_tuning", "bgain"},
        {"bgain_onepush", "bgain"},
        {"exposure_mode_priority", "exposure_mode"},
        {"ggain_tuning", "ggain_tuning"},
        {"skin_saturation", "skin_saturation"},
        {"style_of_mine", "style"},
    };
    for (const auto &[key, name] : taken) {
        para_isp_cur_restore_isp_def();
        const accessors &member = member_named(name);
        EXPECT_EQ(isp_set_member_by_name(key, 0, 33, nullptr), 1) << key;
        EXPECT_EQ(member.cur(0), 33) << key;
    }
}

TEST_F(IspSetByName, TheRangeIsThatOfTheMemberThatTakesTheKey)
{
    init();
    const int max = para_get_isp_rgain_max(0);
    EXPECT_LT(max, para_get_isp_rgain_tuning_max(0));
    EXPECT_EQ(isp_set_member_by_name("rgain_tuning", 0, max + 1, nullptr), 0);
    EXPECT_EQ(isp_set_member_by_name("rgain_tuning", 0, max, nullptr), 1);
    EXPECT_EQ(isp_set_member_by_name("rgain_tuning", 0, max, nullptr), 0) << "current";
}

TEST_F(IspSetByName, OtherKeysAreIgnored)
{
    init();
    for (const char *key : {"", "s", "shutte", "Shutter", "len_type", "ccm_style", "hotpixel",
                            "size", "expcomp", "exposure", "all", "tuning"})
        EXPECT_EQ(isp_set_member_by_name(key, 0, 33, nullptr), 0) << key;
    EXPECT_EQ(to_json(0, 0), everything(0, 100));
}

TEST_F(IspSetByName, NeedsADefaultThatWasANumber)
{
    init();
    para_isp_exist[0].shutter = 1;
    EXPECT_EQ(isp_set_member_by_name("shutter", 0, 33, nullptr), 0);
    EXPECT_EQ(_para_set_isp_shutter_cur(0, 33), 1) << "presence is enough for the setter";
    para_isp_exist[0].iris = 0x80;
    EXPECT_EQ(isp_set_member_by_name("iris", 0, 33, nullptr), 1);
    para_isp_exist[0].hue = 0;
    EXPECT_EQ(isp_set_member_by_name("hue", 0, 33, nullptr), 0);
}

TEST_F(IspSetByName, TheTextIsIgnoredAndNoHookIsTold)
{
    init();
    EXPECT_EQ(isp_set_member_by_name("shutter", 0, 33, "44"), 1);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 33);
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_TRUE(change_pending());
}

// --- Set requests ---

TEST_F(IspSetRequest, AppliesEachMember)
{
    init();
    change("isp0", "{'shutter':5,'unknown':1,'iris':6,'hue':5000,'len_type':7}");
    EXPECT_EQ(query("isp0", "['shutter','iris','hue']"), "{'shutter':5,'iris':6,'hue':125}");
    EXPECT_EQ(para_isp_cur[0].len_type, 127);
    EXPECT_TRUE(change_pending());
}

TEST_F(IspSetRequest, ALaterMemberOverridesAnEarlierOne)
{
    init();
    change("isp0", "{'shutter':5,'rgain':6,'rgain_tuning':7,'shutter':8}");
    EXPECT_EQ(para_get_isp_shutter_cur(0), 8);
    EXPECT_EQ(para_get_isp_rgain_cur(0), 7);
    EXPECT_EQ(para_get_isp_rgain_tuning_cur(0), 119);
}

TEST_F(IspSetRequest, TellsNoHook)
{
    init();
    change("isp0", "{'shutter':5,'style':1}");
    change("isp9", "{'shutter':6}");
    change("isp5", "{'shutter':6}");
    EXPECT_EQ(para_get_isp_shutter_cur(0), 5);
    EXPECT_EQ(requests, 0);
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(IspSetRequest, TheItemsOwnKeyNamesTheInstance)
{
    init();
    para_set_isp_style_def(1, 1);
    para_isp_cur_restore_isp_def();
    const std::string first = to_json(0, 0);
    change("isp1", "{'shutter':0}");
    EXPECT_EQ(para_get_isp_shutter_cur(1), 0) << "whether or not it is in use";
    EXPECT_EQ(to_json(0, 0), first);
}

TEST_F(IspSetRequest, KeysBeyondTheRecordsAreAcceptedAndIgnored)
{
    init();
    for (const char *key : {"isp2", "isp3", "isp4", "isp5"})
        change(key, "{'shutter':5,'style':1}");
    EXPECT_EQ(to_json(0, 0), everything(0, 100));
    EXPECT_FALSE(change_pending());
}

TEST_F(IspSetRequest, OtherKeysAreIgnored)
{
    init();
    for (const char *key : {"isp", "isp0x", "isp0_def", "isp0_cur_all", "isp6", "isp00", "ISP0",
                            "isp-1", "", "af", "isp4294967296"})
        change(key, "{'shutter':5}");
    EXPECT_EQ(para_get_isp_shutter_cur(0), 104);
    EXPECT_FALSE(change_pending());
}

TEST_F(IspSetRequest, AnItemWithoutAKeyIsIgnored)
{
    init();
    const json item = parse("{'shutter':5}");
    EXPECT_EQ(para_set_isp_opt("isp0", item.get(), "isp0"), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 104);
}

TEST_F(IspSetRequest, ValuesOfOtherTypesAreTheNumberZero)
{
    for (const char *value : {"'25'", "null", "true", "[5]", "{'a':5}", "0.9"}) {
        in_another_process([&] {
            init();
            change("isp0", std::string("{'shutter':") + value + "}");
            const bool is_true = strcmp(value, "true") == 0; // which is kept with the number 1
            EXPECT_EQ(para_get_isp_shutter_cur(0), is_true ? 1 : 0) << value;
        });
    }
}

TEST_F(IspSetRequest, NumbersSaturateAndAreThenRefused)
{
    init();
    change("isp0", "{'shutter':1e20,'iris':-1e20}");
    EXPECT_EQ(to_json(0, 0), everything(0, 100));
}

TEST_F(IspSetRequest, AnItemThatIsNoObjectChangesNothing)
{
    init();
    for (const char *item : {"[]", "['shutter',5]", "[{'shutter':5}]", "'shutter'", "5", "null"})
        change("isp0", item);
    EXPECT_EQ(to_json(0, 0), everything(0, 100));
}

TEST_F(IspSetRequest, IsTraced)
{
    init();
    forget_traces();
    change("isp0", "{'shutter':5}");
    change("isp9", "{'shutter':5}");
    EXPECT_THAT(traces_of("para_set_isp_opt"), ElementsAre("inter\n", "inter\n"));
    EXPECT_EQ(traces()[0].level, 6);
}

// --- Restoring defaults ---

TEST_F(IspRestore, MakesEveryDefaultCurrentInBothRecords)
{
    init();
    for (const accessors &member : all_members)
        member.quiet_set(0, 3);
    para_set_isp_style_def(1, 1);
    const isp_record min = para_isp_min[0], max = para_isp_max[0], start = para_isp_init[0];
    const isp_record exist = para_isp_exist[0];
    EXPECT_EQ(para_isp_cur_restore_isp_def(), 0);
    EXPECT_EQ(memcmp(para_isp_cur, para_isp_def, sizeof para_isp_cur), 0);
    EXPECT_EQ(para_get_isp_shutter_cur(0), 104);
    EXPECT_EQ(para_get_isp_shutter_cur(1), 204);
    EXPECT_EQ(para_isp_cur[0].exposure_mode_priority, 102);
    EXPECT_EQ(memcmp(&para_isp_min[0], &min, sizeof min), 0);
    EXPECT_EQ(memcmp(&para_isp_max[0], &max, sizeof max), 0);
    EXPECT_EQ(memcmp(&para_isp_init[0], &start, sizeof start), 0);
    EXPECT_EQ(memcmp(&para_isp_exist[0], &exist, sizeof exist), 0);
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(IspRestore, IsDueAtOnceWhenTheLastChangeIsOld)
{
    init();
    para_isp_cur_restore_isp_def();
    EXPECT_TRUE(due()) << "nothing was ever changed";
    saved();

    para_set_isp_shutter_cur(0, 5);
    saved();
    para_isp_cur_restore_isp_def();
    EXPECT_FALSE(due()) << "the time of the last change stands";
    move_clock(1900);
    para_isp_cur_restore_isp_def();
    EXPECT_FALSE(due());
    move_clock(100);
    EXPECT_TRUE(due());
}

TEST_F(IspRestore, DefaultsOutsideTheRangeAreTakenToo)
{
    write_home("isp_range.json", "{'isp0':{'shutter':[0,10]}}");
    init();
    para_set_isp_shutter_cur(0, 5);
    para_isp_cur_restore_isp_def();
    EXPECT_EQ(para_get_isp_shutter_cur(0), 104);
}

// --- The default of antiflicker ---

TEST_F(IspAntiflickerDefault, IsKeptInTheOdmStore)
{
    init();
    EXPECT_EQ(para_set_isp_antiflicker_def(0, 50), 0);
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 50);
    EXPECT_EQ(para_get_isp_antiflicker_cur(0), 112) << "the current value stays";
    int value = 0;
    EXPECT_EQ(para_get_odm_int("isp0_antiflicker_def", &value), 0);
    EXPECT_EQ(value, 50);
    EXPECT_THAT(odm_keys, ElementsAre("isp0_antiflicker_def"));
    EXPECT_THAT(notifications, IsEmpty());
    EXPECT_FALSE(change_pending()) << "no current value changed";
}

TEST_F(IspAntiflickerDefault, TakesTheWholeRangeAndNoMore)
{
    init();
    const int min = para_get_isp_antiflicker_min(0), max = para_get_isp_antiflicker_max(0);
    for (const int value : {min, max}) {
        para_set_isp_antiflicker_def(0, value);
        EXPECT_EQ(para_get_isp_antiflicker_def(0), value);
    }
    odm_keys.clear();
    for (const int value : {min - 1, max + 1, INT_MIN, INT_MAX, max}) {
        EXPECT_EQ(para_set_isp_antiflicker_def(0, value), 0);
        EXPECT_EQ(para_get_isp_antiflicker_def(0), max) << value;
    }
    EXPECT_THAT(odm_keys, IsEmpty());
}

TEST_F(IspAntiflickerDefault, AnAbsentMemberHasNone)
{
    remove_home("isp_def.json");
    init();
    para_set_isp_antiflicker_def(0, 50);
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 0);
    EXPECT_THAT(odm_keys, IsEmpty());
}

TEST_F(IspAntiflickerDefault, HasOneKeyForEveryInstance)
{
    init();
    para_set_isp_antiflicker_def(1, 0);
    EXPECT_THAT(odm_keys, IsEmpty()) << "absent there";
    para_set_isp_style_def(1, 1);
    odm_keys.clear();
    para_set_isp_antiflicker_def(1, 0);
    EXPECT_THAT(odm_keys, ElementsAre("isp0_antiflicker_def"));
    EXPECT_EQ(para_get_isp_antiflicker_def(1), 0);
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 112);
    int value = 77;
    EXPECT_EQ(para_get_odm_int("isp0_antiflicker_def", &value), 0);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(para_get_odm_int("isp1_antiflicker_def", &value), -2);
}

TEST_F(IspAntiflickerDefault, StandsAfterARestart)
{
    in_another_process([this] {
        EXPECT_EQ(para_init_odm("odmInter"), 0);
        init();
        para_set_isp_antiflicker_def(0, 50);
        EXPECT_EQ(para_save_odm("odmInter"), 0);
    });
    EXPECT_EQ(para_init_odm("odmInter"), 0);
    init();
    EXPECT_EQ(para_get_isp_antiflicker_def(0), 50);
    EXPECT_EQ(para_get_isp_antiflicker_cur(0), 112);
}

// --- Saving ---

TEST_F(IspSave, WritesOneInstanceInFileOrder)
{
    write_home("isp_def.json", "{'isp0_style_list':['a'],'a':" + values(100) + "}");
    init();
    para_set_isp_shutter_cur(0, 12);
    EXPECT_EQ(saved(), std::string("{\n"
                                   "\t\"isp0\":\t{\n"
                                   "\t\t\"style\":\t0,\n"
                                   "\t\t\"exposure_mode\":\t103,\n"
                                   "\t\t\"shutter\":\t12,\n"
                                   "\t\t\"iris\":\t105,\n"
                                   "\t\t\"bright\":\t106,\n"
                                   "\t\t\"expcomp_mode\":\t107,\n"
                                   "\t\t\"expcomp_level\":\t108,\n"
                                   "\t\t\"backlight\":\t109,\n"
                                   "\t\t\"gain_limit\":\t110,\n"
                                   "\t\t\"manual_gain\":\t111,\n"
                                   "\t\t\"antiflicker\":\t112,\n"
                                   "\t\t\"meter\":\t113,\n"
                                   "\t\t\"wdr_strength\":\t114,\n"
                                   "\t\t\"wb_mode\":\t115,\n"
                                   "\t\t\"awb_sens\":\t116,\n"
                                   "\t\t\"rgain\":\t117,\n"
                                   "\t\t\"bgain\":\t118,\n"
                                   "\t\t\"rgain_tuning\":\t119,\n"
                                   "\t\t\"bgain_tuning\":\t120,\n"
                                   "\t\t\"ggain_tuning\":\t121,\n"
                                   "\t\t\"rgain_onepush\":\t122,\n"
                                   "\t\t\"bgain_onepush\":\t123,\n"
                                   "\t\t\"saturation\":\t124,\n"
                                   "\t\t\"skin_saturation\":\t138,\n"
                                   "\t\t\"hue\":\t125,\n"
                                   "\t\t\"temperature\":\t126,\n"
                                   "\t\t\"len_type\":\t127,\n"
                                   "\t\t\"luminance\":\t128,\n"
                                   "\t\t\"contrast\":\t129,\n"
                                   "\t\t\"sharpness\":\t130,\n"
                                   "\t\t\"blackwhite_mode\":\t131,\n"
                                   "\t\t\"gamma\":\t132,\n"
                                   "\t\t\"drc\":\t133,\n"
                                   "\t\t\"ccm_style\":\t134,\n"
                                   "\t\t\"nr2d\":\t135,\n"
                                   "\t\t\"nr3d\":\t136\n"
                                   "\t}\n"
                                   "}") +
                           '\0');
}

TEST_F(IspSave, WritesTwoInstances)
{
    write_home("isp_range.json", "{'isp0':" + ranges() + ",'isp1':" + ranges() + "}");
    write_home("isp_def.json", "{'isp0_style_list':['a'],'a':{'style':0,'exposure_mode':0,"
                               "'exposure_mode_priority':1,'shutter':12}}");
    init();
    EXPECT_EQ(saved(), std::string("{\n"
                                   "\t\"isp0\":\t{\n"
                                   "\t\t\"style\":\t0,\n"
                                   "\t\t\"exposure_mode\":\t0,\n"
                                   "\t\t\"shutter\":\t12\n"
                                   "\t},\n"
                                   "\t\"isp1\":\t{\n"
                                   "\t}\n"
                                   "}") +
                           '\0');
}

TEST_F(IspSave, AMemberMadePresentWithoutAValueIsNeverTheReservedOne)
{
    write_data("isp_cur.json", "{'isp0':{'hotpixel':5}}");
    init();
    EXPECT_THAT(saved(), testing::Not(HasSubstr("hotpixel")));
    EXPECT_EQ(para_isp_exist[0].hotpixel, 0);
}

TEST_F(IspSave, IsDueTwoSecondsAfterTheLastChange)
{
    init();
    EXPECT_FALSE(due());
    para_set_isp_shutter_cur(0, 5);
    EXPECT_FALSE(due());
    move_clock(1900);
    EXPECT_FALSE(due());
    para_set_isp_iris_cur(0, 5);
    move_clock(1900);
    EXPECT_FALSE(due()) << "a further change postpones the save";
    move_clock(100);
    EXPECT_TRUE(due());
    saved();
    EXPECT_FALSE(change_pending());
}

TEST_F(IspSave, ItsDelayIsFixed)
{
    init();
    platformparam_set_save_param_time(0, 0);
    para_set_isp_shutter_cur(0, 5);
    EXPECT_FALSE(due());
    platformparam_set_save_param_time(900000, 900000);
    move_clock(2000);
    EXPECT_TRUE(due());
}

TEST_F(IspSave, AFailedOneIsNotRetried)
{
    init();
    std::filesystem::create_directory(data + "/isp_cur.json");
    para_set_isp_shutter_cur(0, 5);
    EXPECT_EQ(para_save_isp("isp0"), 0);
    EXPECT_FALSE(change_pending());
    std::filesystem::remove(data + "/isp_cur.json");
    para_set_isp_shutter_cur(0, 6);
    EXPECT_TRUE(change_pending());
    EXPECT_THAT(saved(), HasSubstr("\"shutter\":\t6"));
}

TEST_F(IspSave, ADataDirectoryMayEndWithASlash)
{
    const std::string ending = data + "/";
    para_profile.data_dir = ending.c_str();
    init();
    EXPECT_NE(saved(), "none");
}

TEST_F(IspSave, APathThatIsTooLongIsNeverCut)
{
    init();
    const size_t file_length = strlen("/isp_cur.json");
    for (const size_t length : {127 - file_length, 128 - file_length, 127UL, 200UL}) {
        std::string directory = data + "/";
        directory.append(length - directory.size(), 'd');
        std::filesystem::create_directory(directory);
        para_profile.data_dir = directory.c_str();
        EXPECT_EQ(para_save_isp("isp0"), 0);
        const bool fits = length + file_length <= 127;
        EXPECT_EQ(read_file(directory + "/isp_cur.json").has_value(), fits) << length;
        EXPECT_EQ(std::filesystem::is_empty(directory), !fits) << length;
        std::filesystem::remove_all(directory);
        EXPECT_TRUE(std::filesystem::is_empty(data)) << length;
    }
}

TEST_F(IspSave, WhatIsSavedIsLoadedAgain)
{
    std::string before;
    in_another_process([this] {
        init();
        for (const accessors &member : all_members)
            EXPECT_EQ(member.quiet_set(0, member.word == 1 ? 2 : member.word), 1) << member.key;
        saved();
    });
    before = read_data("isp_cur.json").value_or("none");
    init();
    for (const accessors &member : all_members)
        EXPECT_EQ(member.cur(0), member.word == 1 ? 2 : member.word) << member.key;
    EXPECT_EQ(to_json(0, 1), everything(2, 300)) << "the defaults are those of the saved style";
    EXPECT_EQ(para_isp_cur[0].exposure_mode_priority, 302) << "never saved: the style's";
    EXPECT_EQ(saved(), before);
}

TEST_F(IspSave, MembersOutOfReachKeepTheirSavedValues)
{
    write_data("isp_cur.json", "{'isp0':{'len_type':6,'ccm_style':7}}");
    init();
    const std::string bytes = saved();
    EXPECT_THAT(bytes, HasSubstr("\"len_type\":\t6,"));
    EXPECT_THAT(bytes, HasSubstr("\"ccm_style\":\t7,"));
}

TEST_F(IspSave, TheThreadSavesARequestedChange)
{
    start_store();
    Client client;
    client.ask("{'msg_type':'set','isp0':{'shutter':12}}");
    move_clock(2000);
    EXPECT_TRUE(wait_until([this] { return read_data("isp_cur.json").has_value(); }));
    stop_store();
    EXPECT_THAT(read_data("isp_cur.json").value_or(""), HasSubstr("\"shutter\":\t12,"));
}

// --- Threads ---

TEST_F(Isp, MayBeUsedByManyThreadsAtOnce)
{
    static std::atomic<int> told;
    para_profile.isp_set_notify_hook = [](int (*)(int, int), int, int) { told++; };
    para_profile.odm_set_notify_hook = [](const char *) { told++; };
    start_store();
    std::vector<std::thread> hosts;
    for (int host = 0; host < 4; host++) {
        hosts.emplace_back([host] {
            const std::string key = "host" + std::to_string(host);
            char text[PARA_ODM_TEXT_MAX];
            for (int i = 1; i <= 200; i++) {
                para_set_isp_shutter_cur(0, host * 200 + i);
                all_members[static_cast<size_t>(4 + host)].set(0, i);
                para_set_isp_antiflicker_def(0, i);
                para_set_odm_int(key.c_str(), i);
                para_set_odm_string("shared", key.c_str());
                para_get_odm_string("shared", text);
                if (i % 20 == 0)
                    para_set_isp_style_def(0, i / 20 % 3);
                if (i % 50 == 0)
                    para_isp_cur_restore_isp_def();
                isp_record *const style = para_get_isp_style_param(0, i % 3);
                EXPECT_NE(style, nullptr);
            }
            all_members[static_cast<size_t>(4 + host)].set(0, 900 + host);
        });
    }
    hosts.emplace_back([] {
        for (int i = 0; i < 20; i++) {
            move_clock(1000);
            platformparam_save();
        }
    });
    Client client;
    for (int i = 0; i < 60; i++) {
        EXPECT_EQ(
            client.ask("{'msg_type':'set','msg_id':1,'isp0':{'hue':" + std::to_string(i) + "}}"),
            "{'msg_id':1}");
        EXPECT_THAT(client.ask("{'msg_type':'get','isp0':['all']}"), StartsWith("{'isp0':{"));
        EXPECT_THAT(client.ask("{'msg_type':'get','isp0_def':['all']}"),
                    StartsWith("{'isp0_def':{"));
    }
    for (std::thread &host : hosts)
        host.join();
    stop_store();
    EXPECT_GT(told.load(), 0);

    const json odm = parse(read_data("persist/odm.json").value_or("").c_str());
    for (int host = 0; host < 4; host++) {
        const std::string key = "host" + std::to_string(host);
        const cJSON *const item = cJSON_GetObjectItem(odm.get(), key.c_str());
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->valueint, 200);
    }
    const json current = parse(read_data("isp_cur.json").value_or("").c_str());
    const cJSON *const first = cJSON_GetObjectItem(current.get(), "isp0");
    for (const accessors &member : all_members) {
        const cJSON *const item = cJSON_GetObjectItem(first, member.key);
        ASSERT_NE(item, nullptr) << member.key;
        EXPECT_EQ(item->valueint, member.cur(0)) << member.key;
    }
}
