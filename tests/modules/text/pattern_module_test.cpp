// Modules whose members come from a range file, by the example of a control panel.
#include "camparam/misc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <cstring>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "modules/text/file_lock.h"
#include "support/store.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

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

struct requested {
    std::string module;
    const cJSON *item;
};
std::vector<requested> requests;
void request(const char *module, const cJSON *item)
{
    requests.push_back({module, item});
}

const char panel_range[] = "{'brightness':[0,100],'offset':[-10,10],'mode':['off','on','auto'],"
                           "'single':['only'],'empty':[],'flags':[true,1],'plain':7,"
                           "'unset':[0,9],'unset_mode':['a','b']}";
const char panel_defaults[] = "brightness = '50'\noffset=-3\nmode = 'on'\nsingle = 'only'\n"
                              "flags = '1'\nextra = '12 apples'\n";

const char *const unknown_modules[] = {nullptr, "", "pane", "panels", "Panel", "json", "misc"};
const char *const unknown_members[] = {nullptr, "", "brightnes", "brightness2", "all"};

std::string text_or_none(const char *text)
{
    return text != nullptr ? text : "none";
}

} // namespace

class JsonModule : public Store {
protected:
    JsonModule()
    {
        para_profile.misc_set_notify_hook = notify;
        para_profile.misc_set_request_hook = request;
    }

    void write_module(const std::string &name, const std::string &range = panel_range,
                      const std::string &defaults = panel_defaults)
    {
        write_home(name + "_range.json", range);
        write_home(name + ".conf", defaults);
    }

    // Starts the store, and the module "panel" with these files.
    void init(const std::string &range = panel_range, const std::string &defaults = panel_defaults)
    {
        write_module("panel", range, defaults);
        EXPECT_EQ(para_init_misc("json"), 0);
        EXPECT_EQ(para_init_misc("panel"), 0);
    }

    // The current text of a member; "none" when there is none.
    std::string value(const char *member, const char *module = "panel")
    {
        char text[1000];
        return para_get_json_string(module, member, text, sizeof text) == 0 ? text : "none";
    }

    bool due(const char *name = "panel") { return para_need_save_misc(name) == 1; }
    bool change_pending()
    {
        move_clock(10000);
        return due();
    }

    std::string query(const std::string &item, const std::string &key = "panel")
    {
        const json tree = parse("{'" + key + "':" + item + "}");
        cJSON *answer = nullptr;
        EXPECT_EQ(para_get_misc_opt(key.c_str(), tree->child, &answer, "panel"), 0);
        const json owner(answer);
        return answer != nullptr ? compact(answer) : "none";
    }

    void change(const std::string &item)
    {
        const json tree = parse("{'panel':" + item + "}");
        EXPECT_EQ(para_set_misc_opt("panel", tree->child, "panel"), 0);
    }

    std::string object(int defaults)
    {
        const json tree(cJSON_CreateObject());
        EXPECT_EQ(Create_Json_Misc_Object("panel", tree.get(), defaults), 0);
        return compact(tree.get());
    }

    std::string saved()
    {
        EXPECT_EQ(para_save_misc("panel"), 0);
        return read_data("panel.conf").value_or("none");
    }

    // What the functions answer for a module that was never loaded.
    void expect_unknown(const char *module)
    {
        SCOPED_TRACE(text_or_none(module));
        const json text = parse("'on'");
        char buffer[32] = "untouched";
        EXPECT_EQ(peek_json_enum_type(module, "mode"), -1);
        EXPECT_EQ(para_get_json_emum_str(module, "mode", 0), nullptr);
        EXPECT_EQ(para_get_json_enum_index(module, "mode", "on"), -1);
        EXPECT_EQ(para_get_json_item_number(module, text.get(), "mode"), -1);
        EXPECT_EQ(para_get_json_min(module, "brightness"), -1);
        EXPECT_EQ(para_get_json_max(module, "brightness"), -1);
        EXPECT_EQ(para_get_json_def(module, "brightness"), -1);
        EXPECT_EQ(para_get_json_cur(module, "brightness"), -1);
        EXPECT_EQ(para_get_json_string(module, "brightness", buffer, sizeof buffer), -1);
        EXPECT_EQ(para_set_json_cur_str(module, "mode", "auto"), 0);
        EXPECT_EQ(para_set_json_cur_number(module, "brightness", 1), 0);
        EXPECT_EQ(_para_set_json_cur(module, "brightness", 1), -1);
        EXPECT_EQ(para_set_json_cur(module, "brightness", 1), -1);
        EXPECT_EQ(para_save_misc_conf_2_buf(module, buffer, sizeof buffer), -1);
        EXPECT_STREQ(buffer, "untouched");

        const json tree(cJSON_CreateObject());
        EXPECT_LT(Create_Json_Misc_Object(module, tree.get(), 0), 0);
        EXPECT_LT(Create_Json_Misc_Object(module, tree.get(), 1), 0);
        EXPECT_EQ(compact(tree.get()), "{}");
    }

    void expect_unknown_row(const char *name)
    {
        const json tree = parse("{'x':['all']}");
        cJSON *answer = tree.get();
        EXPECT_EQ(para_get_misc_opt("x", tree->child, &answer, name), -1) << name;
        EXPECT_EQ(answer, tree.get()) << "untouched";
        EXPECT_EQ(para_set_misc_opt("x", tree.get(), name), 0) << name;
        EXPECT_EQ(para_need_save_misc(name), -1) << name;
        EXPECT_EQ(para_save_misc(name), -1) << name;
    }
};

using JsonStart = JsonModule;
using JsonSlots = JsonModule;
using JsonRange = JsonModule;
using JsonValue = JsonModule;
using JsonSetter = JsonModule;
using JsonHook = JsonModule;
using JsonSetRequest = JsonModule;
using JsonQuery = JsonModule;
using JsonSave = JsonModule;
using JsonDump = JsonModule;

// --- Start-up ---

TEST_F(JsonStart, TheFirstCallStartsTheStoreAndLoadsNothing)
{
    write_module("panel");
    EXPECT_EQ(para_init_misc("panel"), 0);
    EXPECT_THAT(traces(), IsEmpty());
    expect_unknown("panel");
    expect_unknown_row("panel");

    EXPECT_EQ(para_init_misc("panel"), 0);
    EXPECT_EQ(para_get_json_cur("panel", "brightness"), 50);
}

TEST_F(JsonStart, LoadsRangeDefaultsAndCurrentValues)
{
    write_data("panel.conf", "brightness = '70'\nmode=auto\nmore = '1'\n");
    init();
    EXPECT_EQ(para_get_json_max("panel", "brightness"), 100);
    EXPECT_EQ(para_get_json_def("panel", "brightness"), 50);
    EXPECT_EQ(para_get_json_cur("panel", "brightness"), 70);
    EXPECT_EQ(para_get_json_def("panel", "mode"), 1);
    EXPECT_EQ(para_get_json_cur("panel", "mode"), 2);
    EXPECT_EQ(para_get_json_cur("panel", "offset"), -3) << "not in the current file";
    EXPECT_EQ(value("more"), "1");
    EXPECT_EQ(para_get_json_def("panel", "more"), -1);
    EXPECT_FALSE(change_pending());
}

TEST_F(JsonStart, AMissingCurrentFileLeavesTheDefaults)
{
    init();
    for (const char *member : {"brightness", "offset", "mode", "single"})
        EXPECT_EQ(para_get_json_cur("panel", member), para_get_json_def("panel", member)) << member;
    EXPECT_EQ(object(0), object(1));
    EXPECT_FALSE(read_data("panel.conf"));
}

TEST_F(JsonStart, TracesTheRangeAndThenTheCurrentValues)
{
    write_data("panel.conf", "a = '2'\n");
    init("{'a':[0,9]}", "a = '1'\nb = 'some text'\n");
    std::vector<std::string> lines;
    for (const trace_line &line : traces()) {
        EXPECT_EQ(line.level, 6) << line.text;
        lines.push_back(line.function + ": " + line.text);
    }
    EXPECT_THAT(lines, ElementsAre("cJSON_Print_safe: type:0x40,{\n\t\"a\":\t[0, 9]\n}\n",
                                   "dump_conf: panel cur:\n", "loop4debug:     a=2\n",
                                   "loop4debug:     b=some text\n"));
}

TEST_F(JsonStart, TracesNothingBelowLevelSix)
{
    set_trace_level(5);
    init();
    EXPECT_THAT(traces(), IsEmpty());
}

// --- Modules that fail to load, and their slots ---

TEST_F(JsonSlots, AMissingRangeFileIsTraced)
{
    write_module("panel");
    unlink((home + "/panel_range.json").c_str());
    para_init_misc("json");
    EXPECT_EQ(para_init_misc("panel"), 0);
    const std::string text = "Error range " + home + "/panel_range.json";
    EXPECT_THAT(traces_of("para_init_misc"), ElementsAre(text + "\n"));
    EXPECT_THAT(levels_of(text, "para_init_misc"), ElementsAre(3));
    EXPECT_THAT(traces(), SizeIs(1));
}

TEST_F(JsonSlots, ABrokenRangeFileIsTraced)
{
    init("rubbish");
    EXPECT_THAT(traces_of("para_init_misc"), ElementsAre("Error before: [rubbish]\n"));
    EXPECT_THAT(levels_of("Error before: [rubbish]", "para_init_misc"), ElementsAre(3));
    EXPECT_THAT(traces(), SizeIs(1));

    for (const char *broken : {"{'a':[0,", "{'a'", ""}) {
        forget_traces();
        write_module("panel", broken);
        EXPECT_EQ(para_init_misc("panel"), 0);
        EXPECT_THAT(traces_of("para_init_misc"), ElementsAre(StartsWith("Error before: [")));
        EXPECT_THAT(traces(), SizeIs(1)) << broken;
    }
}

TEST_F(JsonSlots, AMissingDefaultsFileIsTraced)
{
    write_module("panel");
    unlink((home + "/panel.conf").c_str());
    para_init_misc("json");
    EXPECT_EQ(para_init_misc("panel"), 0);
    const std::string text = home + "/panel.conf configure_parse fail";
    EXPECT_THAT(traces_of("para_init_misc"), ElementsAre(text + "\n"));
    EXPECT_THAT(levels_of(text, "para_init_misc"), ElementsAre(3));
    EXPECT_THAT(traces_of("dump_conf"), IsEmpty());
}

TEST_F(JsonSlots, WithoutARangeEveryKindIsZeroAndEverySetIsRefused)
{
    write_data("panel.conf", "brightness = '1'\n");
    init("rubbish");
    for (const char *member : {"brightness", "mode", "unset"}) {
        EXPECT_EQ(peek_json_enum_type("panel", member), 0);
        EXPECT_EQ(para_get_json_emum_str("panel", member, 0), nullptr);
        EXPECT_EQ(para_get_json_enum_index("panel", member, "on"), -1);
        EXPECT_EQ(para_get_json_min("panel", member), -1);
        EXPECT_EQ(para_get_json_max("panel", member), -1);
        EXPECT_EQ(para_get_json_def("panel", member), -1);
        EXPECT_EQ(para_get_json_cur("panel", member), -1) << "no values were read either";
        EXPECT_EQ(value(member), "none");
        EXPECT_EQ(para_set_json_cur_str("panel", member, "on"), 0);
        EXPECT_EQ(para_set_json_cur_number("panel", member, 1), 0);
        EXPECT_EQ(_para_set_json_cur("panel", member, 1), 0) << "the module is known";
        EXPECT_EQ(para_set_json_cur("panel", member, 1), 0);
    }
    EXPECT_EQ(object(0) + object(1), "{}{}");
    EXPECT_EQ(query("['all']"), "{}");
    EXPECT_EQ(query("['brightness']"), "{}");
    EXPECT_FALSE(change_pending());
    EXPECT_EQ(para_need_save_misc("panel"), 0);
    char buffer[8];
    EXPECT_EQ(para_save_misc_conf_2_buf("panel", buffer, sizeof buffer), 1);
}

TEST_F(JsonSlots, WithoutDefaultsTheRangeIsThereAndEverySetIsRefused)
{
    write_module("panel");
    write_data("panel.conf", "brightness = '1'\n");
    unlink((home + "/panel.conf").c_str());
    para_init_misc("json");
    para_init_misc("panel");
    EXPECT_EQ(peek_json_enum_type("panel", "brightness"), 8);
    EXPECT_EQ(peek_json_enum_type("panel", "mode"), 16);
    EXPECT_EQ(para_get_json_max("panel", "brightness"), 100);
    EXPECT_STREQ(para_get_json_emum_str("panel", "mode", 2), "auto");
    EXPECT_EQ(para_get_json_cur("panel", "brightness"), -1) << "the current file was not read";
    EXPECT_EQ(para_get_json_def("panel", "brightness"), -1);
    EXPECT_EQ(para_set_json_cur("panel", "brightness", 1), 0);
    EXPECT_EQ(para_set_json_cur_str("panel", "mode", "off"), 0);
    EXPECT_EQ(query("['all']"), "{}");
    EXPECT_FALSE(change_pending());
}

TEST_F(JsonSlots, TheNextModuleTakesTheSlotOfOneThatFailed)
{
    para_init_misc("json");
    write_module("no_range");
    unlink((home + "/no_range_range.json").c_str());
    write_module("broken", "rubbish");
    write_module("no_defaults");
    unlink((home + "/no_defaults.conf").c_str());
    write_module("first");
    write_module("second", "{'brightness':[1,2]}", "brightness = '2'\n");

    const char *last = nullptr;
    for (const char *failing : {"no_range", "broken", "no_defaults", "broken", "no_range"}) {
        EXPECT_EQ(para_init_misc(failing), 0);
        EXPECT_NE(peek_json_enum_type(failing, "brightness"), -1) << "until the next one";
        if (last != nullptr)
            expect_unknown(last);
        last = failing;
    }
    EXPECT_EQ(peek_json_enum_type(last, "brightness"), 0) << "no range of an earlier one is left";

    EXPECT_EQ(para_init_misc("first"), 0);
    expect_unknown(last);
    expect_unknown_row(last);
    EXPECT_EQ(para_init_misc("no_defaults"), 0);
    EXPECT_EQ(para_init_misc("second"), 0);
    EXPECT_EQ(para_get_json_cur("first", "brightness"), 50);
    EXPECT_EQ(para_get_json_cur("second", "brightness"), 2);
    EXPECT_EQ(para_get_json_max("second", "brightness"), 2);
}

TEST_F(JsonSlots, AChangeMarksItsOwnModuleAlone)
{
    init("{'a':[0,9]}", "a = '1'\n");
    write_module("other");
    para_init_misc("other");
    EXPECT_EQ(para_set_json_cur("panel", "a", 2), 1);
    move_clock(10000);
    EXPECT_EQ(para_need_save_misc("other"), 0);
    EXPECT_EQ(para_need_save_misc("panel"), 1);
}

TEST_F(JsonSlots, ThereAreSixteen)
{
    para_init_misc("json");
    for (int i = 0; i < 17; i++) {
        const std::string name = "m" + std::to_string(i);
        write_module(name, "{'a':[0,99]}", "a = '" + std::to_string(i) + "'\n");
        EXPECT_EQ(para_init_misc("missing"), 0) << "takes none for good";
        EXPECT_EQ(para_init_misc(name.c_str()), 0);
    }
    for (int i = 0; i < 16; i++)
        EXPECT_EQ(para_get_json_cur(("m" + std::to_string(i)).c_str(), "a"), i);
    expect_unknown("m16");
    expect_unknown_row("m16");
    EXPECT_EQ(count_traces("err not enough json module:missing", "para_init_misc"), 1);
    EXPECT_EQ(count_traces("err not enough json module:m16", "para_init_misc"), 1);
    EXPECT_THAT(levels_of("err not enough json module:m16", "para_init_misc"), ElementsAre(3));
}

TEST_F(JsonSlots, NamesAreKeptToSixtyThreeCharacters)
{
    const std::string fits(63, 'f');
    const std::string longer(64, 'l');
    write_module(fits);
    write_module(longer);
    para_init_misc("json");
    para_init_misc(fits.c_str());
    para_init_misc(longer.c_str());
    EXPECT_EQ(para_get_json_cur(fits.c_str(), "brightness"), 50);
    expect_unknown(longer.c_str());
    EXPECT_EQ(para_get_json_cur(longer.substr(0, 63).c_str(), "brightness"), 50)
        << "its files have the whole name";
}

TEST_F(JsonSlots, APathThatDoesNotFitIsNoFile)
{
    // home + "/" + name + "_range.json" has 128 characters; the same cut by one is a file.
    const std::string name(128 - home.size() - 1 - 11, 'n');
    write_home(name + "_range.jso", panel_range);
    write_home(name + "_range.json", panel_range);
    write_home(name + ".conf", panel_defaults);
    para_init_misc("json");
    para_init_misc(name.c_str());
    EXPECT_EQ(peek_json_enum_type(name.substr(0, 63).c_str(), "brightness"), 0);

    const std::string shorter = name.substr(1);
    write_home(shorter + "_range.json", panel_range);
    write_home(shorter + ".conf", panel_defaults);
    para_init_misc(shorter.c_str());
    EXPECT_EQ(para_get_json_cur(shorter.substr(0, 63).c_str(), "brightness"), 50);
}

// --- Ranges ---

TEST_F(JsonRange, TheFirstElementDecidesTheKind)
{
    init("{'n':[0,1],'e':['a','b'],'n_then_text':[0,'a'],'e_then_number':['a',0],'one':[5],"
         "'three':[1,2,3]}");
    for (const char *member : {"n", "n_then_text", "one", "three"})
        EXPECT_EQ(peek_json_enum_type("panel", member), 8) << member;
    for (const char *member : {"e", "e_then_number"})
        EXPECT_EQ(peek_json_enum_type("panel", member), 16) << member;
}

TEST_F(JsonRange, WithoutAnElementTheKindIsZeroAndTraced)
{
    init();
    for (const char *member :
         {"empty", "plain", "brightnes", "", static_cast<const char *>(nullptr)}) {
        forget_traces();
        EXPECT_EQ(peek_json_enum_type("panel", member), 0);
        EXPECT_THAT(traces_of("peek_array_enum_type"), ElementsAre("error cJSON null\n"));
        EXPECT_THAT(levels_of("error cJSON null", "peek_array_enum_type"), ElementsAre(3));
    }
}

TEST_F(JsonRange, AnotherFirstElementIsKindZeroAndTraced)
{
    for (const char *first : {"true", "false", "null", "[1]", "{'a':1}"}) {
        forget_traces();
        const json array = parse("[" + std::string(first) + ",1]");
        EXPECT_EQ(peek_array_enum_type(array.get()), 0) << first;
        EXPECT_THAT(traces_of("peek_array_enum_type"), ElementsAre("error type cJSON_Invalid\n"));
        EXPECT_THAT(levels_of("error type cJSON_Invalid", "peek_array_enum_type"), ElementsAre(3));
    }
    init();
    EXPECT_EQ(peek_json_enum_type("panel", "flags"), 0);
}

TEST_F(JsonRange, KindsOfArrays)
{
    EXPECT_EQ(peek_array_enum_type(parse("[3,4]").get()), 8);
    EXPECT_EQ(peek_array_enum_type(parse("['3','4']").get()), 16);
    EXPECT_THAT(traces(), IsEmpty());
    EXPECT_EQ(peek_array_enum_type(nullptr), 0);
    EXPECT_EQ(peek_array_enum_type(parse("[]").get()), 0);
    EXPECT_EQ(peek_array_enum_type(parse("5").get()), 0);
    EXPECT_EQ(count_traces("error cJSON null", "peek_array_enum_type"), 3);
}

TEST_F(JsonRange, EnumTextsHavePositionsAndBack)
{
    init();
    const std::vector<std::string> texts = {"off", "on", "auto"};
    for (int i = 0; i < 3; i++) {
        const char *const text = para_get_json_emum_str("panel", "mode", i);
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(text, texts[static_cast<size_t>(i)]);
        EXPECT_EQ(para_get_json_enum_index("panel", "mode", text), i);
    }
}

TEST_F(JsonRange, AnIndexOutsideTheListHasNoText)
{
    init();
    for (const int index : {-1, 3, INT_MIN, INT_MAX})
        EXPECT_EQ(para_get_json_emum_str("panel", "mode", index), nullptr) << index;
    EXPECT_EQ(para_get_json_emum_str("panel", "empty", 0), nullptr);
    EXPECT_EQ(para_get_json_emum_str("panel", "brightness", 0), nullptr) << "not a text";
    for (const char *member : unknown_members)
        EXPECT_EQ(para_get_json_emum_str("panel", member, 0), nullptr);
}

TEST_F(JsonRange, ATextOutsideTheListHasNoPosition)
{
    init();
    for (const char *text : {"of", "offf", "Off", "", "1"})
        EXPECT_EQ(para_get_json_enum_index("panel", "mode", text), -1) << text;
    EXPECT_EQ(para_get_json_enum_index("panel", "mode", nullptr), -1);
    EXPECT_EQ(para_get_json_enum_index("panel", "brightness", "50"), -1) << "no enum member";
    EXPECT_EQ(para_get_json_enum_index("panel", "empty", "off"), -1);
    for (const char *member : unknown_members)
        EXPECT_EQ(para_get_json_enum_index("panel", member, "off"), -1);
}

TEST_F(JsonRange, AnElementIsItsPositionOrItsNumber)
{
    init();
    const auto number_of = [](const char *element, const char *member) {
        return para_get_json_item_number("panel", parse(element).get(), member);
    };
    EXPECT_EQ(number_of("'auto'", "mode"), 2);
    EXPECT_EQ(number_of("'never'", "mode"), -1);
    EXPECT_EQ(number_of("'auto'", "brightness"), -1);
    EXPECT_EQ(number_of("'auto'", "nothing"), -1);
    EXPECT_EQ(number_of("-7", "brightness"), -7);
    EXPECT_EQ(number_of("7", "mode"), 7);
    EXPECT_EQ(number_of("3.9", "brightness"), 3);
    EXPECT_EQ(number_of("1e20", "brightness"), INT_MAX);
    EXPECT_EQ(number_of("-1e20", "brightness"), INT_MIN);
    for (const char *other : {"true", "false", "null", "[1]", "{'a':1}"})
        EXPECT_EQ(number_of(other, "mode"), -1) << other;
    EXPECT_EQ(para_get_json_item_number("panel", nullptr, "mode"), -1);
    EXPECT_EQ(para_get_json_item_number("panel", parse("'auto'").get(), nullptr), -1);
}

TEST_F(JsonRange, OnlyAStringNodeHasAText)
{
    EXPECT_STREQ(para_get_item_str(parse("'text'").get()), "text");
    EXPECT_STREQ(para_get_item_str(parse("''").get()), "");
    for (const char *other : {"5", "true", "null", "['a']", "{'a':'b'}"})
        EXPECT_EQ(para_get_item_str(parse(other).get()), nullptr) << other;
    EXPECT_EQ(para_get_item_str(nullptr), nullptr);
}

TEST_F(JsonRange, MinimumAndMaximumAreTheFirstAndTheLastElement)
{
    init("{'n':[-5,5],'e':['a','b','c'],'one':[7],'three':[1,2,3],'empty':[],'odd':[true,null],"
         "'wide':[-1e12,1e12]}");
    const auto range = [](const char *member) {
        return std::make_pair(para_get_json_min("panel", member),
                              para_get_json_max("panel", member));
    };
    EXPECT_EQ(range("n"), std::make_pair(-5, 5));
    EXPECT_EQ(range("e"), std::make_pair(0, 2)) << "positions";
    EXPECT_EQ(range("one"), std::make_pair(7, 7));
    EXPECT_EQ(range("three"), std::make_pair(1, 3));
    EXPECT_EQ(range("wide"), std::make_pair(INT_MIN, INT_MAX));
    for (const char *member : {"empty", "odd"})
        EXPECT_EQ(range(member), std::make_pair(-1, -1)) << member;
    for (const char *member : unknown_members)
        EXPECT_EQ(range(member), std::make_pair(-1, -1)) << text_or_none(member);
}

TEST_F(JsonRange, UnknownModulesHaveNothing)
{
    init();
    for (const char *module : unknown_modules)
        expect_unknown(module);
    for (const char *module : {"pane", "panels", ""})
        expect_unknown_row(module);
    EXPECT_THAT(notifications, IsEmpty());
}

// --- Values ---

TEST_F(JsonValue, NumbersAreReadAsFarAsTheyGo)
{
    init("{'a':[0,1],'b':[0,1],'c':[0,1],'d':[0,1]}",
         "a = '12 apples'\nb = 'x'\nc = ''\nd = '-4'\ne = '9'\n");
    EXPECT_EQ(para_get_json_cur("panel", "a"), 12);
    EXPECT_EQ(para_get_json_cur("panel", "b"), 0);
    EXPECT_EQ(para_get_json_cur("panel", "c"), 0);
    EXPECT_EQ(para_get_json_cur("panel", "d"), -4);
    EXPECT_EQ(para_get_json_cur("panel", "e"), 9) << "not in the range";
    EXPECT_EQ(para_get_json_def("panel", "e"), 9);
}

TEST_F(JsonValue, NumbersBeyondAnIntAreSaturated)
{
    init("{'a':[0,1],'b':[0,1],'c':[0,1],'d':[0,1]}",
         "a = '2147483648'\nb = '-2147483649'\nc = '99999999999999999999999'\n"
         "d = '-99999999999999999999999'\n");
    EXPECT_EQ(para_get_json_cur("panel", "a"), INT_MAX);
    EXPECT_EQ(para_get_json_def("panel", "b"), INT_MIN);
    EXPECT_EQ(para_get_json_def("panel", "c"), INT_MAX);
    EXPECT_EQ(para_get_json_cur("panel", "d"), INT_MIN);
    EXPECT_EQ(query("['all']"), "{'a':2147483647,'b':-2147483648,'c':2147483647,'d':-2147483648}");
    EXPECT_EQ(query("['a','d']"), "{'a':2147483647,'d':-2147483648}");
    EXPECT_EQ(value("c"), "99999999999999999999999") << "the text stays";
}

TEST_F(JsonValue, AnEnumTextOutsideTheListHasNoNumber)
{
    init(panel_range, "mode = 'never'\n");
    EXPECT_EQ(para_get_json_cur("panel", "mode"), -1);
    EXPECT_EQ(para_get_json_def("panel", "mode"), -1);
    EXPECT_EQ(value("mode"), "never");
}

TEST_F(JsonValue, UnknownMembersHaveNone)
{
    init();
    for (const char *member : unknown_members) {
        EXPECT_EQ(para_get_json_cur("panel", member), -1);
        EXPECT_EQ(para_get_json_def("panel", member), -1);
        EXPECT_EQ(value(member), "none");
    }
    EXPECT_EQ(para_get_json_cur("panel", "unset"), -1) << "in the range alone";
}

TEST_F(JsonValue, TheTextIsCopiedWhenItFits)
{
    init();
    char text[8] = "xxxxxxx";
    EXPECT_EQ(para_get_json_string("panel", "single", text, 5), 0);
    EXPECT_STREQ(text, "only");
    EXPECT_EQ(text[5], 'x');
    for (const int size : {4, 1, 0, -1})
        EXPECT_NE(para_get_json_string("panel", "single", text, size), 0) << size;
    EXPECT_STREQ(text, "only");
}

TEST_F(JsonValue, TextsOf255CharactersAreReadAndLongerOnesAreNot)
{
    const std::string fits(255, 'f'), longer(256, 'l');
    init("{'fits':['a','" + fits + "'],'longer':['a','" + longer + "'],'number':[0,1]}",
         "fits = '" + fits + "'\nlonger = '" + longer + "'\nnumber = '7" + std::string(255, ' ') +
             "x'\n");
    EXPECT_EQ(para_get_json_cur("panel", "fits"), 1);
    EXPECT_EQ(para_get_json_def("panel", "fits"), 1);
    EXPECT_EQ(para_get_json_cur("panel", "longer"), -1);
    EXPECT_EQ(para_get_json_def("panel", "longer"), -1);
    EXPECT_EQ(para_get_json_cur("panel", "number"), -1);
    EXPECT_EQ(value("longer"), longer) << "a larger buffer takes it";
    EXPECT_EQ(query("['fits','longer','number']"), "{'fits':'" + fits + "'}");
    EXPECT_EQ(object(0), "{'fits':'" + fits + "','longer':'" + longer + "','number':7}");
}

// --- Setters ---

TEST_F(JsonSetter, StoresNumbersOutsideTheRange)
{
    init();
    for (const int number : {-1, 101, INT_MIN, INT_MAX}) {
        EXPECT_EQ(para_set_json_cur_number("panel", "brightness", number), 1) << number;
        EXPECT_EQ(para_get_json_cur("panel", "brightness"), number);
        EXPECT_EQ(value("brightness"), std::to_string(number));
    }
    EXPECT_EQ(para_get_json_def("panel", "brightness"), 50);
}

TEST_F(JsonSetter, TakesEveryTextOfAnEnumMember)
{
    init();
    for (const char *text : {"off", "auto", "on"}) {
        EXPECT_EQ(para_set_json_cur_str("panel", "mode", text), 1) << text;
        EXPECT_EQ(value("mode"), text);
    }
    EXPECT_EQ(para_get_json_def("panel", "mode"), 1);
}

TEST_F(JsonSetter, RefusesOtherTexts)
{
    init();
    for (const char *text : {"of", "offf", "OFF", "", "0"})
        EXPECT_EQ(para_set_json_cur_str("panel", "mode", text), 0) << text;
    EXPECT_EQ(para_set_json_cur_str("panel", "mode", nullptr), 0);
    EXPECT_EQ(value("mode"), "on");
    EXPECT_FALSE(change_pending());
}

TEST_F(JsonSetter, RefusesTheOtherForm)
{
    init();
    EXPECT_EQ(para_set_json_cur_str("panel", "brightness", "60"), 0);
    EXPECT_EQ(para_set_json_cur_number("panel", "mode", 2), 0);
    EXPECT_EQ(value("brightness") + value("mode"), "50on");
    EXPECT_FALSE(change_pending());
}

TEST_F(JsonSetter, RefusesMembersWithoutAKind)
{
    init();
    for (const char *member :
         {"flags", "extra", "plain", "empty", "", static_cast<const char *>(nullptr)}) {
        EXPECT_EQ(para_set_json_cur_str("panel", member, "on"), 0);
        EXPECT_EQ(para_set_json_cur_number("panel", member, 5), 0);
        EXPECT_EQ(_para_set_json_cur("panel", member, 5), 0);
    }
    EXPECT_EQ(value("flags"), "1");
    EXPECT_FALSE(change_pending());
}

TEST_F(JsonSetter, AMemberThatNoFileHasCannotBeSet)
{
    init();
    EXPECT_EQ(para_set_json_cur_number("panel", "unset", 5), 0);
    EXPECT_EQ(para_set_json_cur_str("panel", "unset_mode", "a"), 0);
    EXPECT_EQ(_para_set_json_cur("panel", "unset_mode", 0), 0);
    EXPECT_EQ(value("unset") + value("unset_mode"), "nonenone");
    EXPECT_FALSE(change_pending());
}

TEST_F(JsonSetter, AMemberThatTheCurrentFileAloneHasCanBeSet)
{
    write_data("panel.conf", "unset = '1'\n");
    init();
    EXPECT_EQ(para_set_json_cur_number("panel", "unset", 5), 1);
    EXPECT_EQ(value("unset"), "5");
    EXPECT_EQ(para_get_json_def("panel", "unset"), -1);
}

TEST_F(JsonSetter, TheSameValueChangesNothing)
{
    init("{'n':[0,9],'e':['a','b']}", "n = '07 apples'\ne = 'a'\n");
    EXPECT_EQ(para_set_json_cur_number("panel", "n", 7), 0);
    EXPECT_EQ(value("n"), "07 apples") << "what counts is the number";
    EXPECT_EQ(para_set_json_cur_str("panel", "e", "a"), 0);
    EXPECT_EQ(_para_set_json_cur("panel", "e", 0), 0);
    EXPECT_FALSE(change_pending());
}

TEST_F(JsonSetter, ARepeatedValueDoesNotPostponeTheSave)
{
    init();
    stop_clock();
    EXPECT_EQ(para_set_json_cur("panel", "brightness", 60), 1);
    move_clock(1500);
    EXPECT_EQ(para_set_json_cur("panel", "brightness", 60), 0);
    EXPECT_EQ(para_set_json_cur_str("panel", "mode", "never"), 0);
    move_clock(500);
    EXPECT_TRUE(due());
}

TEST_F(JsonSetter, ByNumberAnEnumMemberTakesThePosition)
{
    init();
    EXPECT_EQ(_para_set_json_cur("panel", "mode", 2), 1);
    EXPECT_EQ(value("mode"), "auto");
    for (const int position : {-1, 3, INT_MIN, INT_MAX})
        EXPECT_EQ(_para_set_json_cur("panel", "mode", position), 0) << position;
    EXPECT_EQ(value("mode"), "auto");
    EXPECT_EQ(_para_set_json_cur("panel", "brightness", 2), 1);
    EXPECT_EQ(value("brightness"), "2");
}

TEST_F(JsonSetter, EnumTextsOfAnyBytesAndLengthAreTaken)
{
    const std::string fits(255, 'f'), longer(256, 'l');
    init("{'e':['a','','two words ','gr\xc3\xbc\xc3\x9f','" + fits + "','" + longer + "']}",
         "e = 'a'\n");
    for (const std::string &text : {std::string(), std::string("two words "),
                                    std::string("gr\xc3\xbc\xc3\x9f"), fits, longer}) {
        EXPECT_EQ(para_set_json_cur_str("panel", "e", text.c_str()), 1) << text;
        EXPECT_EQ(value("e"), text);
    }
    EXPECT_EQ(para_get_json_cur("panel", "e"), -1) << "256 characters are not read";
    EXPECT_EQ(para_set_json_cur_str("panel", "e", "a"), 0) << "nor replaced";
    EXPECT_EQ(value("e"), longer);
}

TEST_F(JsonHook, IsToldOfAChangeByThePublicSetter)
{
    init();
    EXPECT_EQ(para_set_json_cur("panel", "brightness", 200), 1);
    EXPECT_EQ(para_set_json_cur("panel", "mode", 2), 1);
    const auto setter = reinterpret_cast<para_entry_point>(para_set_json_cur);
    ASSERT_EQ(notifications.size(), 2U);
    for (const notified &call : notifications) {
        EXPECT_EQ(call.module, "panel");
        EXPECT_EQ(call.setter, setter);
    }
    EXPECT_EQ(notifications[0].member, "brightness");
    EXPECT_EQ(notifications[0].value, 200);
    EXPECT_EQ(notifications[1].member, "mode");
    EXPECT_EQ(notifications[1].value, 2);
    EXPECT_THAT(requests, IsEmpty());
}

TEST_F(JsonHook, IsNotToldOfARefusedValue)
{
    init();
    EXPECT_EQ(para_set_json_cur("panel", "brightness", 50), 0);
    EXPECT_EQ(para_set_json_cur("panel", "mode", 3), 0);
    EXPECT_EQ(para_set_json_cur("panel", "unset", 3), 0);
    EXPECT_EQ(para_set_json_cur("panels", "brightness", 3), -1);
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(JsonHook, IsNotToldByTheOtherSetters)
{
    init();
    EXPECT_EQ(para_set_json_cur_str("panel", "mode", "off"), 1);
    EXPECT_EQ(para_set_json_cur_number("panel", "brightness", 1), 1);
    EXPECT_EQ(_para_set_json_cur("panel", "brightness", 2), 1);
    change("{'brightness':3,'mode':'auto'}");
    EXPECT_EQ(value("brightness") + value("mode"), "3auto");
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(JsonHook, MayBeAbsent)
{
    para_profile.misc_set_notify_hook = nullptr;
    para_profile.misc_set_request_hook = nullptr;
    init();
    EXPECT_EQ(para_set_json_cur("panel", "brightness", 1), 1);
    change("{'brightness':2}");
    EXPECT_EQ(value("brightness"), "2");
}

// --- Set requests ---

TEST_F(JsonSetRequest, AppliesTextsAndNumbers)
{
    init();
    forget_traces();
    change("{'brightness':7,'mode':'auto','offset':-5000}");
    EXPECT_EQ(value("brightness") + " " + value("mode") + " " + value("offset"), "7 auto -5000");
    EXPECT_THAT(traces_of("para_set_misc_opt"), ElementsAre("need_to_notify\n"));
    EXPECT_TRUE(change_pending());
}

TEST_F(JsonSetRequest, TheOtherTypeIsTracedAndSkipped)
{
    init();
    forget_traces();
    change("{'brightness':'7','mode':1,'nothing':1,'flags':true,'plain':7,'offset':true,"
           "'single':null,'empty':[],'unset':{}}");
    EXPECT_THAT(traces_of("para_set_misc_opt"),
                ElementsAre("brightness type wrong,set:16,def:8\n",
                            "mode type wrong,set:8,def:16\n", "nothing type wrong,set:8,def:0\n",
                            "flags type wrong,set:2,def:0\n", "plain type wrong,set:8,def:0\n",
                            "offset type wrong,set:2,def:8\n", "single type wrong,set:4,def:16\n",
                            "empty type wrong,set:32,def:0\n", "unset type wrong,set:64,def:8\n"));
    EXPECT_THAT(levels_of("mode type wrong,set:8,def:16", "para_set_misc_opt"), ElementsAre(3));
    EXPECT_EQ(object(0), object(1));
    EXPECT_THAT(requests, IsEmpty());
    EXPECT_FALSE(change_pending());
}

TEST_F(JsonSetRequest, TheOtherMembersAreStillApplied)
{
    init();
    change("{'mode':1,'brightness':8,'nothing':'x','single':'none'}");
    EXPECT_EQ(value("brightness") + value("mode"), "8on");
    EXPECT_THAT(requests, SizeIs(1));
}

TEST_F(JsonSetRequest, TellsTheHookOnceWithRowAndItem)
{
    init();
    const json tree = parse("{'panel_of_the_client':{'brightness':7,'mode':'auto','offset':1}}");
    EXPECT_EQ(para_set_misc_opt("panel_of_the_client", tree->child, "panel"), 0);
    ASSERT_THAT(requests, SizeIs(1));
    EXPECT_EQ(requests[0].module, "panel");
    EXPECT_EQ(requests[0].item, tree->child);
}

TEST_F(JsonSetRequest, TellsNothingWhenNothingChanged)
{
    init();
    forget_traces();
    change("{'brightness':50,'mode':'on','single':'only'}");
    change("{'mode':'never'}");
    change("{'unset':1}");
    for (const char *item : {"{}", "[]", "'text'", "5", "null", "true"})
        change(item);
    EXPECT_THAT(requests, IsEmpty());
    EXPECT_EQ(count_traces("need_to_notify"), 0);
    EXPECT_FALSE(change_pending());
}

TEST_F(JsonSetRequest, ChildrenWithoutAKeyAreRefused)
{
    init();
    change("[5,'auto',null,[1]]");
    EXPECT_EQ(object(0), object(1));
    EXPECT_THAT(requests, IsEmpty());
}

TEST_F(JsonSetRequest, NumbersAreTakenAsIntegers)
{
    init();
    change("{'brightness':3.9}");
    EXPECT_EQ(value("brightness"), "3");
    change("{'brightness':1e20}");
    EXPECT_EQ(value("brightness"), "2147483647");
    change("{'brightness':-99999999999}");
    EXPECT_EQ(value("brightness"), "-2147483648");
}

TEST_F(JsonSetRequest, AnUnknownRowIsRefused)
{
    init();
    forget_traces();
    const json tree = parse("{'brightness':7}");
    EXPECT_EQ(para_set_misc_opt("panel", tree.get(), "panels"), 0);
    EXPECT_EQ(value("brightness"), "50");
    EXPECT_THAT(requests, IsEmpty());
    EXPECT_THAT(traces_of("para_set_misc_opt"),
                ElementsAre("brightness type wrong,set:8,def:-1\n"));
}

// --- Get requests ---

TEST_F(JsonQuery, AnswersTheListedMembersInTheirForm)
{
    init();
    para_set_json_cur("panel", "brightness", 60);
    EXPECT_EQ(query("['mode','brightness','single','offset']"),
              "{'mode':'on','brightness':60,'single':'only','offset':-3}");
    EXPECT_EQ(query("['brightness']"), "{'brightness':60}");
}

TEST_F(JsonQuery, LeavesOutWhatHasNoKindOrNoValue)
{
    init();
    EXPECT_EQ(query("['flags','extra','plain','empty','unset','unset_mode','nothing','',5,null,[],"
                    "{},'mode']"),
              "{'mode':'on'}");
    EXPECT_EQ(query("[]"), "{}");
}

TEST_F(JsonQuery, AnItemThatIsNoListIsAnsweredEmpty)
{
    init();
    for (const char *item : {"'all'", "5", "null", "{}", "[[]]", "[null]", "[5]"})
        EXPECT_EQ(query(item), "{}") << item;
}

TEST_F(JsonQuery, AllAnswersEveryEntryAndUnknownOnesAsNumbers)
{
    init();
    para_set_json_cur("panel", "mode", 0);
    EXPECT_EQ(query("['all']"), "{'brightness':50,'offset':-3,'mode':'off','single':'only',"
                                "'flags':1,'extra':12}");
    EXPECT_EQ(query("['all']"), object(0));
}

TEST_F(JsonQuery, OneNameThatBeginsWithAllMeansAll)
{
    init();
    for (const char *item : {"['allegro']", "['all ']", "['all members']"})
        EXPECT_EQ(query(item), object(0)) << item;
    EXPECT_EQ(query("['al']"), "{}");
    EXPECT_EQ(query("['ALL']"), "{}");
    EXPECT_EQ(query("['all','mode']"), "{'mode':'on'}");
    EXPECT_EQ(query("['mode','all']"), "{'mode':'on'}");
}

TEST_F(JsonQuery, AKeyWithDefAsksForDefaults)
{
    init();
    para_set_json_cur("panel", "brightness", 60);
    para_set_json_cur_str("panel", "mode", "auto");
    for (const char *key : {"panel_def", "paneldef", "undefined", "def"}) {
        EXPECT_EQ(query("['mode','brightness']", key), "{'mode':'on','brightness':50}") << key;
        EXPECT_EQ(query("['all']", key), object(1)) << key;
    }
    for (const char *key : {"panel_de", "panel_DEF", "panel_d_ef"})
        EXPECT_EQ(query("['mode']", key), "{'mode':'auto'}") << key;
    EXPECT_NE(object(0), object(1));
}

TEST_F(JsonQuery, TracesItsBeginningAndItsEnd)
{
    init();
    forget_traces();
    query("['mode']", "panel_def");
    EXPECT_THAT(traces_of("para_get_misc_opt"), ElementsAre("inter panel_def def:1\n", "leave\n"));
    EXPECT_THAT(levels_of("inter panel_def def:1", "para_get_misc_opt"), ElementsAre(7));
    EXPECT_THAT(levels_of("leave", "para_get_misc_opt"), ElementsAre(7));

    forget_traces();
    query("['all']");
    EXPECT_THAT(traces_of("para_get_misc_opt"), ElementsAre("inter panel def:0\n"));
}

TEST_F(JsonQuery, ObjectsAreFilledFromEitherSet)
{
    init();
    para_set_json_cur("panel", "brightness", 60);
    const json tree = parse("{'before':1}");
    EXPECT_EQ(Create_Json_Misc_Object("panel", tree.get(), 7), 0);
    EXPECT_EQ(compact(tree.get()), "{'before':1,'brightness':50,'offset':-3,'mode':'on',"
                                   "'single':'only','flags':1,'extra':12}");
    EXPECT_THAT(object(0), HasSubstr("'brightness':60"));
}

TEST_F(JsonQuery, IsServedOverUdp)
{
    write_home("www2json.json", "{'json_pattern_list':['panel']}");
    write_module("panel");
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_id':1,'panel':{'mode':'auto','brightness':300,"
                         "'offset':'1'}}"),
              "{'msg_id':1}");
    EXPECT_EQ(client.ask("{'msg_type':'get','panel':['mode','brightness','offset']}"),
              "{'panel':{'mode':'auto','brightness':300,'offset':-3}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','panel_def':['all']}"),
              "{'panel_def':{'brightness':50,'offset':-3,'mode':'on','single':'only','flags':1,"
              "'extra':12}}");
    ASSERT_THAT(requests, SizeIs(1));
    EXPECT_EQ(requests[0].module, "panel");
    EXPECT_THAT(notifications, IsEmpty());
}

TEST_F(JsonQuery, LongTextsTravelOverUdp)
{
    const std::string fits(255, 'f'), longer(256, 'l');
    write_home("www2json.json", "{'json_pattern_list':['panel']}");
    write_module("panel", "{'e':['a','" + fits + "','" + longer + "']}", "e = 'a'\n");
    start_store();
    Client client;
    client.ask("{'msg_type':'set','panel':{'e':'" + fits + "'}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','panel':['e']}"), "{'panel':{'e':'" + fits + "'}}");
    client.ask("{'msg_type':'set','panel':{'e':'" + longer + "'}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','panel':['e']}"), "{'panel':{}}");
    EXPECT_EQ(client.ask("{'msg_type':'get','panel':['all']}"), "{'panel':{'e':'" + longer + "'}}");
}

// --- Saving ---

TEST_F(JsonSave, IsDueTwoSecondsAfterTheLastChange)
{
    init();
    stop_clock();
    EXPECT_EQ(para_need_save_misc("panel"), 0);
    para_set_json_cur_number("panel", "brightness", 1);
    move_clock(1999);
    EXPECT_EQ(para_need_save_misc("panel"), 0);
    para_set_json_cur_str("panel", "mode", "off");
    move_clock(1999);
    EXPECT_EQ(para_need_save_misc("panel"), 0) << "every change restarts the delay";
    move_clock(1);
    EXPECT_EQ(para_need_save_misc("panel"), 1);
    saved();
    EXPECT_EQ(para_need_save_misc("panel"), 0);
}

TEST_F(JsonSave, WritesTheCurrentValuesAlone)
{
    init();
    const std::optional<std::string> defaults = read_file(home + "/panel.conf");
    para_set_json_cur("panel", "brightness", 60);
    EXPECT_EQ(saved(), "brightness = \"60\"\noffset = \"-3\"\nmode = \"on\"\nsingle = \"only\"\n"
                       "flags = \"1\"\nextra = \"12 apples\"\n");
    EXPECT_EQ(read_file(home + "/panel.conf"), defaults);
}

TEST_F(JsonSave, ReplacesALongerFile)
{
    write_data("panel.conf", "# a comment\na = '1'\n" + std::string(5000, '#') + "\n");
    init("{'a':[0,9]}", "a = '2'\n");
    EXPECT_EQ(saved(), "a = \"1\"\n");
}

TEST_F(JsonSave, WhatIsSavedReadsBackEqual)
{
    const std::vector<std::string> texts = {"",
                                            " ",
                                            "two words",
                                            " blanks around ",
                                            "gr\xc3\xbc\xc3\x9f "
                                            "dich",
                                            "a=b",
                                            "#x",
                                            "x;y",
                                            "\t",
                                            std::string(255, 'f')};
    std::string list = "'start'";
    for (const std::string &text : texts)
        list += ",'" + (text == "\t" ? "\\t" : text) + "'";
    init("{'e':[" + list + "],'last':[0,1]}", "e = 'start'\nlast = '1'\n");
    for (const std::string &text : texts) {
        ASSERT_EQ(para_set_json_cur_str("panel", "e", text.c_str()), 1) << text;
        saved();
        configure *const cur = configure_init();
        EXPECT_EQ(configure_parse(cur, 0, (data + "/panel.conf").c_str()), 0);
        char read[300];
        EXPECT_EQ(cur->conf_get(cur, "e", read, sizeof read), 0) << text;
        EXPECT_EQ(read, text);
        EXPECT_EQ(cur->conf_get(cur, "last", read, sizeof read), 0) << text;
        configure_free(cur);
    }
}

TEST_F(JsonSave, ABadStartDoesNotCostTheSavedSettings)
{
    write_data("panel.conf", "light = '3'\n");
    write_home("panel_range.json", panel_range); // without the defaults file
    para_init_misc("json");
    para_init_misc("panel");
    EXPECT_EQ(para_save_misc("panel"), 0);
    EXPECT_EQ(read_data("panel.conf"), "light = \"3\"\n");

    unlink((home + "/panel_range.json").c_str());
    para_init_misc("panel");
    EXPECT_EQ(para_save_misc("panel"), 0);
    EXPECT_EQ(read_data("panel.conf"), "light = \"3\"\n");
}

TEST_F(JsonSave, AFileThatDoesNotOpenIsNoErrorAndNotRetried)
{
    init();
    para_set_json_cur("panel", "brightness", 1);
    mkdir((data + "/panel.conf").c_str(), 0755);
    EXPECT_EQ(para_save_misc("panel"), 0);
    EXPECT_FALSE(change_pending());
    rmdir((data + "/panel.conf").c_str());
    para_set_json_cur("panel", "brightness", 2);
    EXPECT_TRUE(change_pending());
    EXPECT_THAT(saved(), StartsWith("brightness = \"2\"\n"));
}

TEST_F(JsonSave, AFullDiskIsReported)
{
    init();
    para_set_json_cur("panel", "brightness", 1);
    ASSERT_EQ(symlink("/dev/full", (data + "/panel.conf").c_str()), 0);
    EXPECT_NE(para_save_misc("panel"), 0);
    EXPECT_FALSE(change_pending()) << "the change is cleared first";
}

TEST_F(JsonSave, APathThatDoesNotFitIsNoFile)
{
    init();
    const std::string long_data = data + "/" + std::string(120 - data.size(), 'd');
    ASSERT_EQ(mkdir(long_data.c_str(), 0755), 0);
    para_profile.data_dir = long_data.c_str();
    EXPECT_EQ(para_save_misc("panel"), 0);
    EXPECT_EQ(rmdir(long_data.c_str()), 0) << "it is empty";
}

TEST_F(JsonSave, WaitsForAnotherProcessThatHasTheFileLocked)
{
    const std::string path = data + "/panel.conf";
    init();
    para_set_json_cur("panel", "brightness", 60);
    lock_holder other(path);
    write_file(path, "what the other one writes\n");

    int result = -1;
    std::atomic<bool> done{false};
    std::thread saver([&] {
        result = para_save_misc("panel");
        done = true;
    });
    EXPECT_TRUE(wait_until([] { return lock_attempts() == 1; }));
    EXPECT_EQ(read_file(path), "what the other one writes\n");
    EXPECT_FALSE(done);
    EXPECT_EQ(para_set_json_cur("panel", "offset", 4), 1) << "setters do not wait";

    other.release();
    saver.join();
    EXPECT_EQ(result, 0);
    EXPECT_THAT(read_file(path).value_or(""), StartsWith("brightness = \"60\"\noffset = "));
    EXPECT_TRUE(change_pending()) << "the change meanwhile";
    EXPECT_THAT(saved(), StartsWith("brightness = \"60\"\noffset = \"4\"\n"));
}

TEST_F(JsonSave, ReleasesTheLock)
{
    init();
    saved();
    lock_holder other(data + "/panel.conf");
    EXPECT_EQ(lock_attempts(), 1);
}

TEST_F(JsonSave, TheThreadSavesARequestedChange)
{
    write_home("www2json.json", "{'json_pattern_list':['misc','panel']}");
    write_module("panel");
    start_store();
    Client client;
    client.ask("{'msg_type':'set','panel':{'mode':'auto'}}");
    EXPECT_FALSE(read_data("panel.conf"));
    move_clock(2000);
    EXPECT_TRUE(wait_until([this] {
        return read_data("panel.conf").value_or("").find("mode = \"auto\"\n") != std::string::npos;
    }));
    EXPECT_TRUE(wait_until([] { return !shell_commands().empty(); }));
}

// --- Text dump ---

TEST_F(JsonDump, WritesTheCurrentValues)
{
    init("{'a':[0,9],'b':['x','y z']}", "a = '1'\nb = 'x'\n");
    para_set_json_cur_str("panel", "b", "y z");
    const std::string lines = "a = \"1\"\nb = \"y z\"\n";
    char buffer[64];
    memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(para_save_misc_conf_2_buf("panel", buffer, sizeof buffer),
              static_cast<int>(lines.size()) + 1);
    EXPECT_EQ(buffer, lines);
    for (size_t i = lines.size(); i < sizeof buffer; i++)
        EXPECT_EQ(buffer[i], '\0') << "the whole buffer is cleared";
}

TEST_F(JsonDump, NeedsRoomForTheFinalZero)
{
    init("{'a':[0,9],'b':[0,9]}", "a = '1'\nb = '2'\n");
    const int needed = 17; // two lines of eight
    forget_traces();
    std::vector<char> buffer(needed);
    EXPECT_EQ(para_save_misc_conf_2_buf("panel", buffer.data(), needed), needed);
    EXPECT_THAT(traces(), IsEmpty());

    for (const int size : {needed - 1, 9, 8, 1, 0}) {
        forget_traces();
        std::vector<char> small(static_cast<size_t>(size) + 1, 'x');
        EXPECT_EQ(para_save_misc_conf_2_buf("panel", small.data(), size), 0) << size;
        EXPECT_EQ(small.back(), 'x') << "never overrun";
        EXPECT_THAT(traces_of("para_save_misc_conf_2_buf"),
                    ElementsAre("panel buf is not enough\n"));
        EXPECT_THAT(levels_of("panel buf is not enough", "para_save_misc_conf_2_buf"),
                    ElementsAre(3));
    }
}

TEST_F(JsonModule, MayBeUsedByManyThreadsAtOnce)
{
    para_profile.misc_set_notify_hook = nullptr; // the test's own record one thread's changes
    para_profile.misc_set_request_hook = nullptr;
    set_trace_level(3);
    write_home("www2json.json", "{'json_pattern_list':['panel']}");
    write_module("panel");
    start_store();
    std::vector<std::thread> hosts;
    for (int first = 0; first < 3; first++) {
        hosts.emplace_back([first] {
            char text[400];
            for (int i = 0; i < 200; i++) {
                para_set_json_cur("panel", "brightness", first * 1000 + i);
                para_set_json_cur_str("panel", "mode", i % 2 == 0 ? "off" : "auto");
                EXPECT_GE(para_get_json_cur("panel", "brightness"), 0);
                EXPECT_GT(para_save_misc_conf_2_buf("panel", text, sizeof text), 0);
            }
        });
    }
    hosts.emplace_back([] {
        for (int i = 0; i < 20; i++)
            platformparam_save();
    });
    Client client;
    for (int i = 0; i < 60; i++) {
        client.ask("{'msg_type':'set','panel':{'offset':" + std::to_string(i) + "}}");
        EXPECT_THAT(client.ask("{'msg_type':'get','panel':['all']}"), StartsWith("{'panel':{"));
        move_clock(700);
    }
    for (std::thread &host : hosts)
        host.join();
    EXPECT_EQ(client.ask("{'msg_type':'get','panel':['offset']}"), "{'panel':{'offset':59}}");
    stop_store();
    EXPECT_THAT(read_data("panel.conf").value_or(""), HasSubstr("offset = \"59\"\n"));
}
