// The module table: its static rows, and the rows that pattern lists and the host add.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/module_row.h"
#include "support/store.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

int host_set(const char *, const cJSON *, const char *)
{
    return 0;
}
int host_get(const char *, const cJSON *, cJSON **, const char *)
{
    return 0;
}
int other_set(const char *, const cJSON *, const char *)
{
    return 0;
}
int other_get(const char *, const cJSON *, cJSON **, const char *)
{
    return 0;
}
int never_called(const char *)
{
    return 1;
}

std::string list_of(const std::string &key, const std::string &prefix, int count)
{
    std::string text = "{\"" + key + "\":[";
    for (int i = 0; i < count; i++)
        text += (i > 0 ? ",\"" : "\"") + prefix + std::to_string(i) + "\"";
    return text + "]}";
}

} // namespace

class ModuleTable : public Store {};

TEST_F(ModuleTable, HoldsTheStaticRowsInOrderAndTheDefaultPatterns)
{
    EXPECT_EQ(module_para_handle_num, 0);
    start_store();
    EXPECT_THAT(row_names(),
                ElementsAre("odmInter", "isp0", "af", "video0", "video1", "audio", "json", "conf",
                            "msg_type", "msg_name", "msg_id", "video2", "video3", "video4",
                            "video5", "video6", "end", "misc", "netport", "overlay", "ndi_config"));
    EXPECT_EQ(module_para_handle_num, 21);
    EXPECT_EQ(count_traces("module_para_handle_num:21", "platformparam_init"), 1);
}

TEST_F(ModuleTable, FocusAndZoomCanBeReadAndSavedButNotSet)
{
    const para_module &row = row_named("af");
    EXPECT_STREQ(row.name, "af");
    EXPECT_EQ(row.init, para_init_af);
    EXPECT_EQ(row.init_stage2, nullptr);
    EXPECT_EQ(row.set_opt, nullptr);
    EXPECT_EQ(row.get_opt, para_get_af_opt);
    EXPECT_EQ(row.need_save, para_need_save_af);
    EXPECT_EQ(row.save, para_save_af);
}

TEST_F(ModuleTable, PseudoModulesOnlyAnswer)
{
    EXPECT_EQ(row_named("msg_type").get_opt, nullptr) << "msg_type is never echoed";
    EXPECT_EQ(row_named("msg_name").get_opt, para_get_msg_name_opt);
    EXPECT_EQ(row_named("msg_id").get_opt, para_get_msg_id_opt);
    for (const char *name : {"msg_type", "msg_name", "msg_id"}) {
        EXPECT_EQ(row_named(name).init, nullptr);
        EXPECT_EQ(row_named(name).set_opt, nullptr);
        EXPECT_EQ(row_named(name).save, nullptr);
    }
}

TEST_F(ModuleTable, PatternListsComeFromTheWebNameFile)
{
    write_home("www2json.json",
               "{'json_pattern_list':['one','two'],'conf_pattern_list':['three']}");
    start_store();
    EXPECT_THAT(appended_rows(), ElementsAre("one", "two", "three"));
    EXPECT_THAT(traces_of("register_para_handle_json_pattern"),
                ElementsAre("add json_pattern:one\n", "add json_pattern:two\n"));
    EXPECT_THAT(traces_of("register_para_handle_conf_pattern"),
                ElementsAre("add conf_pattern:three\n"));
}

TEST_F(ModuleTable, AnAbsentListFallsBackToItsDefault)
{
    write_home("www2json.json", "{'conf_pattern_list':['three']}");
    start_store();
    EXPECT_THAT(appended_rows(), ElementsAre("misc", "three"));
}

TEST_F(ModuleTable, AnEmptyListAddsNothing)
{
    write_home("www2json.json", "{'json_pattern_list':[]}");
    start_store();
    EXPECT_THAT(appended_rows(), ElementsAre("netport", "overlay", "ndi_config"));
}

TEST_F(ModuleTable, AListThatIsNoArrayAddsNothing)
{
    write_home("www2json.json", "{'json_pattern_list':null,'conf_pattern_list':5}");
    start_store();
    EXPECT_THAT(appended_rows(), IsEmpty());
}

TEST_F(ModuleTable, AListEntryThatIsNoTextIsPassedOver)
{
    write_home("www2json.json",
               "{'json_pattern_list':[5,null,'one',{}],'conf_pattern_list':'netport'}");
    start_store();
    EXPECT_THAT(appended_rows(), ElementsAre("one"));
}

TEST_F(ModuleTable, AnEmptyNameIsARowLikeAnyOther)
{
    write_home("www2json.json", "{'json_pattern_list':['one',''],'conf_pattern_list':[]}");
    start_store();
    EXPECT_THAT(appended_rows(), ElementsAre("one", ""));
}

TEST_F(ModuleTable, StopsAtSixtyFourRowsWithOneTraceForEachAppenderCutShort)
{
    std::string lists = list_of("json_pattern_list", "j", 60);
    lists.back() = ',';
    lists += list_of("conf_pattern_list", "c", 3).substr(1);
    write_home("www2json.json", lists);
    const para_module host = {"host", nullptr, nullptr, host_set, host_get, nullptr, nullptr};
    register_para_handle_extern(&host);
    start_store();

    EXPECT_EQ(module_para_handle_num, PARA_MODULES_MAX);
    EXPECT_EQ(row_names().back(), "j46");
    const std::string full = "err not enough module_para_handle";
    EXPECT_EQ(count_traces(full, "register_para_handle_json_pattern"), 1);
    EXPECT_THAT(levels_of(full, "register_para_handle_json_pattern"), ElementsAre(3));
    EXPECT_EQ(count_traces(full, "register_para_handle_conf_pattern"), 1);
    EXPECT_EQ(count_traces(full, "register_para_handle_extern_pattern"), 1);
}

TEST_F(ModuleTable, AFullTableRefusesTheHostsModules)
{
    module_para_handle_num = PARA_MODULES_MAX;
    EXPECT_EQ(register_para_handle_json_pattern(), -1);
    EXPECT_EQ(register_para_handle_conf_pattern(), -1);
    EXPECT_EQ(register_para_handle_extern_pattern(), 0) << "nothing is staged";
    module_para_handle_num = 0;
    const para_module host = {"host", nullptr, nullptr, host_set, host_get, nullptr, nullptr};
    register_para_handle_extern(&host);
    module_para_handle_num = PARA_MODULES_MAX;
    EXPECT_EQ(register_para_handle_extern_pattern(), -1);
}

TEST_F(ModuleTable, ABuiltInListThatCannotBeParsedIsTraced)
{
    cJSON_Hooks no_memory = {[](size_t) -> void * { return nullptr; }, free};
    cJSON_InitHooks(&no_memory);
    EXPECT_EQ(register_para_handle_json_pattern(), 0);
    EXPECT_EQ(register_para_handle_conf_pattern(), 0);
    cJSON_InitHooks(nullptr);
    EXPECT_EQ(module_para_handle_num, 0);
    EXPECT_THAT(traces_of("register_para_handle_json_pattern"),
                ElementsAre("json_pattern_list error\n"));
    EXPECT_THAT(traces_of("register_para_handle_conf_pattern"),
                ElementsAre("conf_pattern_list error\n"));
}

TEST_F(ModuleTable, HostModulesStandBehindThePatternModulesInTheOrderOfTheirOffers)
{
    write_home("www2json.json",
               "{'conf_pattern_list':['three'],'json_pattern_list':['one','two']}");
    for (const char *name : {"zoom", "host"}) {
        const para_module host = {name, nullptr, nullptr, host_set, host_get, nullptr, nullptr};
        EXPECT_EQ(register_para_handle_extern(&host), 0);
    }
    start_store();
    EXPECT_THAT(appended_rows(), ElementsAre("one", "two", "three", "zoom", "host"));
}

TEST_F(ModuleTable, AHostModuleBringsItsRequestFunctionsAlone)
{
    const para_module host = {"host",   never_called, never_called, host_set,
                              host_get, never_called, never_called};
    EXPECT_EQ(register_para_handle_extern(&host), 0);
    start_store();

    ASSERT_EQ(module_para_handle_num, 22);
    const para_module &row = row_named("host");
    EXPECT_EQ(row.name, host.name) << "the name text itself, not a copy";
    EXPECT_EQ(row.set_opt, host_set);
    EXPECT_EQ(row.get_opt, host_get);
    EXPECT_EQ(row.init, nullptr);
    EXPECT_EQ(row.init_stage2, nullptr);
    EXPECT_EQ(row.need_save, nullptr);
    EXPECT_EQ(row.save, nullptr);
    EXPECT_THAT(traces_of("register_para_handle_extern_pattern"),
                ElementsAre("add extern_pattern:host\n"));
}

TEST_F(ModuleTable, OfferingANameAgainReplacesItsFunctions)
{
    const para_module first = {"host", nullptr, nullptr, host_set, host_get, nullptr, nullptr};
    const std::string same_text = "host";
    const para_module second = {same_text.c_str(), nullptr, nullptr, other_set,
                                other_get,         nullptr, nullptr};
    EXPECT_EQ(register_para_handle_extern(&first), 0);
    EXPECT_THAT(traces(), IsEmpty());
    EXPECT_EQ(register_para_handle_extern(&second), 0);
    char expected[96];
    snprintf(expected, sizeof expected, "host ok,%p %p", reinterpret_cast<void *>(other_set),
             reinterpret_cast<void *>(other_get));
    EXPECT_EQ(count_traces(expected, "register_para_handle_extern"), 1);

    start_store();
    ASSERT_EQ(module_para_handle_num, 22);
    EXPECT_EQ(row_named("host").name, first.name);
    EXPECT_EQ(row_named("host").set_opt, other_set);
    EXPECT_EQ(row_named("host").get_opt, other_get);
}

TEST_F(ModuleTable, ANameThatBeginsAnotherIsOfferedForItself)
{
    for (const char *name : {"host", "hostess", "hos"}) {
        const para_module row = {name, nullptr, nullptr, host_set, host_get, nullptr, nullptr};
        EXPECT_EQ(register_para_handle_extern(&row), 0);
    }
    EXPECT_THAT(traces(), IsEmpty()) << "none is offered again";
    write_home("www2json.json", "{'json_pattern_list':[],'conf_pattern_list':[]}");
    start_store();
    EXPECT_THAT(appended_rows(), ElementsAre("host", "hostess", "hos"));
}

TEST_F(ModuleTable, OfferingAfterStartUpIsRefused)
{
    start_store();
    const para_module host = {"host", nullptr, nullptr, host_set, host_get, nullptr, nullptr};
    EXPECT_EQ(register_para_handle_extern(&host), -1);
    EXPECT_EQ(module_para_handle_num, 21);
    const para_module nameless = {nullptr, nullptr, nullptr, host_set, host_get, nullptr, nullptr};
    EXPECT_EQ(register_para_handle_extern(&nameless), -1);
    const std::string late = "err:call register_para_handle_extern before platformparam_init";
    EXPECT_EQ(count_traces(late, "register_para_handle_extern"), 2);
    EXPECT_THAT(levels_of(late, "register_para_handle_extern"), ElementsAre(3));
    EXPECT_EQ(register_para_handle_extern(nullptr), -1);
    EXPECT_EQ(count_traces(late), 2) << "no row at all is ignored";
}

TEST_F(ModuleTable, OfferingAfterAStartWithoutPatternModulesIsRefusedToo)
{
    write_home("www2json.json", "{'json_pattern_list':[],'conf_pattern_list':[]}");
    start_store();
    EXPECT_THAT(appended_rows(), IsEmpty());
    const para_module host = {"host", nullptr, nullptr, host_set, host_get, nullptr, nullptr};
    EXPECT_EQ(register_para_handle_extern(&host), -1);
}

TEST_F(ModuleTable, OfferingNothingIsIgnored)
{
    const para_module nameless = {nullptr, nullptr, nullptr, host_set, host_get, nullptr, nullptr};
    EXPECT_EQ(register_para_handle_extern(nullptr), -1);
    EXPECT_EQ(register_para_handle_extern(&nameless), -1);
    start_store();
    EXPECT_EQ(module_para_handle_num, 21);
}

TEST_F(ModuleTable, StagesThirtyTwoHostModules)
{
    std::vector<std::string> names;
    for (int i = 0; i < 33; i++)
        names.push_back("host" + std::to_string(i));
    for (int i = 0; i < 33; i++) {
        const para_module host = {names[static_cast<size_t>(i)].c_str(),
                                  nullptr,
                                  nullptr,
                                  host_set,
                                  host_get,
                                  nullptr,
                                  nullptr};
        EXPECT_EQ(register_para_handle_extern(&host), i < 32 ? 0 : -1) << i;
    }
    EXPECT_EQ(count_traces("err not enough module_para_handle_extern_temp",
                           "register_para_handle_extern"),
              1);
    const para_module again = {"host31", nullptr, nullptr, other_set, other_get, nullptr, nullptr};
    EXPECT_EQ(register_para_handle_extern(&again), 0) << "a known name needs no place";

    start_store();
    EXPECT_EQ(module_para_handle_num, 21 + 32);
    EXPECT_EQ(row_names().back(), "host31");
    EXPECT_EQ(row_named("host31").get_opt, other_get);
}
