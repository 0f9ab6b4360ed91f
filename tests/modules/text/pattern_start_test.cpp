// Modules whose members come from a range file, by the example of a control panel: start-up.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "modules/text/pattern_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

using JsonStart = JsonModule;
using JsonSlots = JsonModule;

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
    EXPECT_EQ(peek_json_enum_type("panel", "brightness"), PARA_KIND_NUMBER);
    EXPECT_EQ(peek_json_enum_type("panel", "mode"), PARA_KIND_ENUM);
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

// Loading "misc" stores no range when it fails, so none may be there before.
TEST_F(JsonSlots, MiscFindsTheSlotOfOneThatFailedEmpty)
{
    para_init_misc("json");
    write_module("failing");
    unlink((home + "/failing.conf").c_str());
    para_init_misc("failing");
    ASSERT_EQ(peek_json_enum_type("failing", "brightness"), PARA_KIND_NUMBER);
    para_init_misc("misc"); // without files
    EXPECT_EQ(peek_json_enum_type("misc", "brightness"), 0);
    EXPECT_EQ(para_get_json_emum_str("misc", "mode", 0), nullptr);
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

TEST_F(JsonSlots, ANameThatDoesNotFitIsNoFileInTheWorkingDirectoryEither)
{
    const std::string name(128 - strlen("_range.json"), 'n');
    write_home(name + "_range.jso", panel_range); // the name cut by one character
    ASSERT_EQ(chdir(home.c_str()), 0);
    para_profile.home_dir = nullptr;
    para_init_misc("json");
    para_init_misc(name.c_str());
    EXPECT_EQ(peek_json_enum_type(name.substr(0, 63).c_str(), "brightness"), 0);
}
