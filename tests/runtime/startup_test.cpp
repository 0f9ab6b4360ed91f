// The order of start-up, the web-name file, and the client role.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "runtime/module_row.h"
#include "support/store.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::string> stages;

int init_ok(const char *name)
{
    stages.push_back(std::string("init ") + name);
    return 0;
}

int init_fails(const char *name)
{
    stages.push_back(std::string("init ") + name);
    return 7;
}

int second_stage(const char *name)
{
    stages.push_back(std::string("stage2 ") + name);
    return 7;
}

int conflict_old, conflict_new;
std::string conflict_name;

void conflict(const char *name, int old_value, int new_value)
{
    conflict_name = name;
    conflict_old = old_value;
    conflict_new = new_value;
}

// Whether the kernel lists a socket on the server's port.
bool port_is_open()
{
    char address[32];
    snprintf(address, sizeof address, " 00000000:%04X ", PARA_SERVER_PORT);
    return read_file("/proc/net/udp").value_or("").find(address) != std::string::npos;
}

} // namespace

class StartUp : public Store {};

TEST_F(StartUp, TracesTheContractsJsonVersionFirst)
{
    start_store();
    const trace_line first = traces().front();
    EXPECT_EQ(first.text, "cJson version:1 7 14\n");
    EXPECT_EQ(first.function, "platformparam_init");
    EXPECT_EQ(first.level, 6);
}

TEST_F(StartUp, CallsEveryInitInTableOrderAndThenEverySecondStage)
{
    for (const char *name : {"msg_type", "video2", "end"}) {
        row_named(name).init = init_ok;
        row_named(name).init_stage2 = second_stage;
    }
    row_named("video2").init = init_fails;
    start_store();
    EXPECT_THAT(stages, ElementsAre("init msg_type", "init video2", "init end", "stage2 msg_type",
                                    "stage2 video2", "stage2 end"));
}

TEST_F(StartUp, OpensThePortOnceEveryModuleIsReady)
{
    static bool open_in_second_stage;
    open_in_second_stage = true;
    row_named("end").init_stage2 = [](const char *) {
        open_in_second_stage = port_is_open();
        return 0;
    };
    start_store();
    EXPECT_FALSE(open_in_second_stage) << "a request would find modules without values";
    EXPECT_TRUE(port_is_open());
}

TEST_F(StartUp, TracesAFailedModuleAndGoesOn)
{
    row_named("msg_type").init = init_fails;
    row_named("end").init = init_ok;
    start_store();
    EXPECT_EQ(count_traces("msg_type init err", "platformparam_init"), 1);
    EXPECT_EQ(count_traces("end init err", "platformparam_init"), 0);
    EXPECT_THAT(stages, ElementsAre("init msg_type", "init end"));
}

TEST_F(StartUp, ABrokenWebNameFileIsTracedAndIgnored)
{
    write_home("www2json.json", "{'json_pattern_list':['one']");
    start_store();
    EXPECT_EQ(module_para_handle_num, 21);
    EXPECT_EQ(traces_of("platformparam_init")[1], "Error before: []\n") << "at the end of the text";
}

TEST_F(StartUp, ABrokenWebNameFileIsTracedWithThePosition)
{
    write_home("www2json.json", "{'json_pattern_list':rubbish}");
    start_store();
    EXPECT_EQ(traces_of("platformparam_init")[1], "Error before: [rubbish}]\n");
}

TEST_F(StartUp, AMissingWebNameFileIsTracedAndIgnored)
{
    start_store();
    EXPECT_EQ(traces_of("platformparam_init")[1], "Error before: []\n");
    EXPECT_EQ(module_para_handle_num, 21);
}

TEST_F(StartUp, TheWebNameFileMayHaveAnotherName)
{
    write_home("www2json.json", "{'json_pattern_list':['wrong']}");
    write_home("names.json", "{'json_pattern_list':['right'],'conf_pattern_list':[]}");
    para_profile.www2json_name = "names.json";
    start_store();
    EXPECT_THAT(appended_rows(), ElementsAre("right"));
}

TEST_F(StartUp, AnEmptyWebNameFileNameIsNoFile)
{
    write_home("www2json.json", "{'json_pattern_list':['wrong']}");
    para_profile.www2json_name = "";
    start_store();
    EXPECT_THAT(appended_rows(), ElementsAre("misc", "netport", "overlay", "ndi_config"));
}

TEST_F(StartUp, AWebNamePathOverTheLimitIsAFileThatIsNotThere)
{
    const std::string long_name(200, 'n');
    para_profile.www2json_name = long_name.c_str();
    start_store();
    EXPECT_EQ(module_para_handle_num, 21);
}

TEST_F(StartUp, AClientProcessStartsNothing)
{
    para_profile.role = 1;
    EXPECT_EQ(platformparam_init(), 0);
    EXPECT_EQ(module_para_handle_num, 0);
    EXPECT_THAT(traces_of("platformparam_init"), ElementsAre("cJson version:1 7 14\n"));
    EXPECT_EQ(platformparam_stop(1), 0);
    EXPECT_EQ(count_traces("platformparam_stop ok"), 0) << "no thread ran";
    EXPECT_EQ(para_client_init(), 0);
}

TEST_F(StartUp, EveryRoleButZeroIsAClients)
{
    for (const int role : {2, -1}) {
        para_profile.role = role;
        EXPECT_EQ(platformparam_init(), 0);
        EXPECT_EQ(module_para_handle_num, 0) << role;
        EXPECT_EQ(platformparam_stop(1), 0);
    }
}

TEST_F(StartUp, TracesErrorsAtThreeAndProgressAtSix)
{
    row_named("msg_type").init = init_fails;
    start_store();
    const std::string self = "platformparam_init";
    EXPECT_THAT(levels_of("Error before: []", self), ElementsAre(3));
    EXPECT_THAT(levels_of("msg_type init err", self), ElementsAre(3));
    EXPECT_THAT(levels_of("module_para_handle_num:21", self), ElementsAre(6));
    EXPECT_THAT(levels_of("add json_pattern:misc", "register_para_handle_json_pattern"),
                ElementsAre(6));
    para_conflict_callback("odm", 0, 1);
    EXPECT_THAT(levels_of("odm 0->1", "para_conflict_callback"), ElementsAre(6));
    stop_store();
    EXPECT_THAT(levels_of("platformparam_stop ok", "platformparam_stop"), ElementsAre(6));
    EXPECT_THAT(levels_of("af save...", "save_param"), ElementsAre(6));
}

TEST_F(StartUp, IsSilentAtLevelZero)
{
    set_trace_level(0);
    start_store();
    EXPECT_THAT(traces(), IsEmpty());
}

TEST_F(StartUp, LeavesTheProfilesStaticValues)
{
    // The fixture has set the folders; everything else is as the library brings it.
    EXPECT_EQ(para_profile.role, 0);
    EXPECT_EQ(para_profile.www2json_name, nullptr);
    EXPECT_EQ(para_profile.conflict_hook, nullptr);
    EXPECT_EQ(para_profile.conf_save_hook, nullptr);
    EXPECT_EQ(sizeof para_profile, 20 * sizeof(void *));
    EXPECT_EQ(sizeof(para_module), 7 * sizeof(void *));
}

TEST_F(StartUp, AConflictIsTracedAndToldToTheHook)
{
    EXPECT_EQ(para_conflict_callback("odm", 0, 1), 0);
    EXPECT_THAT(traces_of("para_conflict_callback"), ElementsAre("odm 0->1\n"));

    para_profile.conflict_hook = conflict;
    EXPECT_EQ(para_conflict_callback("odm", 2, 1), 0);
    EXPECT_EQ(conflict_name, "odm");
    EXPECT_EQ(conflict_old, 2);
    EXPECT_EQ(conflict_new, 1);
}
