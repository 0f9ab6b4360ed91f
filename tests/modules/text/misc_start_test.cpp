// The module "misc" at start-up: both of its file sets.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

#include "modules/text/misc_fixture.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

using MiscStart = Misc;

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

TEST_F(MiscStart, ALoadThatFailsLeavesTheRangePlaceAsItWas)
{
    const json kept = parse("{}");
    for (const char *bytes : {"", "{"}) {
        if (*bytes != '\0')
            write_home("misc_range.json", bytes);
        configure *cur = nullptr, *def = nullptr;
        cJSON *range = kept.get();
        EXPECT_EQ(para_init_misc_legacy("misc", &cur, &def, &range), -1) << bytes;
        EXPECT_EQ(range, kept.get()) << bytes;
        EXPECT_NE(cur, nullptr);
        EXPECT_NE(def, nullptr);
        configure_free(cur);
        configure_free(def);
    }
}
