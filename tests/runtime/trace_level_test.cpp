// The level decides which messages are made, whatever happens: level 0 admits none, 3 errors, 6
// progress, too.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "camparam/camparam.h"
#include "support/every_kind.h"
#include "support/refused_call.h"

using testing::Each;
using testing::Field;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;

class TraceLevel : public EveryKind, public testing::WithParamInterface<int> {
protected:
    TraceLevel()
    {
        set_trace_level(GetParam());
        platformparam_set_guard(1);
    }

    // Each case makes at least so many errors happen.
    static void admits_its_messages_alone(int errors)
    {
        const std::vector<trace_line> all = traces();
        EXPECT_THAT(all, Each(Field(&trace_line::level, Le(GetParam()))));
        const auto traced = std::count_if(all.begin(), all.end(),
                                          [](const trace_line &line) { return line.level == 3; });
        EXPECT_THAT(traced, Ge(GetParam() >= 3 ? errors : 0));
    }
};
INSTANTIATE_TEST_SUITE_P(, TraceLevel, testing::Values(0, 3, 6),
                         [](const auto &level) { return "Level" + std::to_string(level.param); });

TEST_P(TraceLevel, HoldsForAStartOnBrokenFiles)
{
    for (const char *name : {"af_range.json", "video_range.json", "isp_def.json",
                             "audio_range.json", "misc_range.json", "panel_range.json"})
        write_home(name, "{");
    write_data("persist/odm.json", "{");
    for (const char *end : {"", ".1", ".2", ".3", ".4", ".5", ".6", ".7", ".8", ".9"})
        std::filesystem::create_directories(data + "/persist/odm.json.bad" + end);
    const int taken = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(PARA_SERVER_PORT);
    ASSERT_EQ(bind(taken, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    start_store();
    close(taken);

    EXPECT_EQ(para_get_af_zoom_value_max(), 0);
    EXPECT_TRUE(std::filesystem::exists(data + "/persist/odm.json"));
    admits_its_messages_alone(8);
}

TEST_P(TraceLevel, HoldsForWhatTheGuardKeeps)
{
    std::string lines;
    for (int i = 0; i < 5000; i++) // more than the platform takes
        lines += "key" + std::to_string(i) + " = '1'\n";
    write_data("netport.conf", lines);
    write_data("netport.conf.bak", "port = '7'\n");
    write_data("af_cur.json", "");
    std::filesystem::create_directory(data + "/af_cur.json.bak");
    write_home("www2json.json", "{'json_pattern_list':5,'conf_pattern_list':['netport']}");
    start_store();

    EXPECT_EQ(kind_named("Conf").get(), 7);
    EXPECT_EQ(para_init_single_conf("netport"), -1);
    EXPECT_EQ(kind_named("Conf").get(), 7);
    fail_shell_commands(EIO);
    platformparam_save();
    EXPECT_EQ(status_of("audio").error, EIO);
    admits_its_messages_alone(5);
}

TEST_P(TraceLevel, HoldsForAFileThatCannotBeRestored)
{
    write_data("video_cur.json", "");
    write_data("video_cur.json.bak", text_with(kind_named("Video"), 7));
    refuse_call(SYS_ftruncate, ENOSPC);
    start_store();
    EXPECT_EQ(kind_named("Video").get(), 7);
    EXPECT_EQ(read_data("video_cur.json"), "");
    admits_its_messages_alone(1);
}

TEST_P(TraceLevel, HoldsForAStartWithoutDefaultsOfItsModules)
{
    use_legacy_misc();
    write_home("misc_def.json", "{");
    write_home("isp_def.json", "{}");
    write_home("panel_range.json", "{'brightness':[0,100],'empty':[],'odd':[null]}");
    start_store();

    EXPECT_EQ(para_get_json_max("panel", "empty"), para_get_json_max("panel", "absent"));
    EXPECT_EQ(peek_json_enum_type("panel", "empty"), 0);
    EXPECT_EQ(peek_json_enum_type("panel", "odd"), 0);
    admits_its_messages_alone(3);
}

TEST_P(TraceLevel, HoldsForRequestsThatAreRefused)
{
    register_share_datagram_handler([](const para_share_datagram *) { return -1; });
    start_store();
    Client client;
    EXPECT_EQ(client.ask("{'msg_type':'api_get'}"), "{'err':'Invalid API command'}");
    EXPECT_EQ(client.ask("{'msg_type':'api_get','msg_name':'none'}"),
              "{'err':'Invalid API command'}");
    EXPECT_EQ(client.ask("{'msg_type':'set','msg_id':1,'panel':{'brightness':'text'}}"),
              "{'msg_id':1}");
    EXPECT_EQ(client.ask("{'msg_type':'get','msg_id':2,'panel':['all'],'isp0':['all']}")
                  .find("'msg_id':2"),
              1U);
    const para_share_datagram refused = {};
    client.send({reinterpret_cast<const char *>(&refused), sizeof refused});
    client.send("no JSON");
    client.send("{}");
    client.send(std::string("{}\0x", 4));
    EXPECT_TRUE(client.stays_silent());
    EXPECT_EQ(get_http_name("panel", "none", nullptr, nullptr), nullptr);

    EXPECT_EQ(para_get_json_cur("panel", "brightness"), default_number);
    admits_its_messages_alone(6);
}

TEST_P(TraceLevel, HoldsForCallsThatAreRefused)
{
    para_module row = {};
    row.name = "mine";
    EXPECT_EQ(register_para_handle_extern(&row), 0);
    EXPECT_EQ(register_para_handle_extern(&row), 0) << "once more";
    start_store();
    EXPECT_EQ(register_para_handle_extern(&row), -1) << "too late";
    EXPECT_EQ(register_param_command(nullptr, nullptr, 0), -1);

    int32_t width = 1, height = 1;
    EXPECT_EQ(para_get_video_size_byname(nullptr, 0, &width, &height), -1);
    EXPECT_EQ(para_get_video_size_byname("PIC_NONE", 0, &width, &height), -1);
    char small[2] = "";
    EXPECT_EQ(para_save_conf_2_buf("netport", small, sizeof small), 0);
    EXPECT_EQ(update_line_conf_int("unused", "key", 1, "no format"), -1);
    EXPECT_EQ(para_share_publish(-1, 1, 1), nullptr);
    EXPECT_EQ(json_object_get_string(nullptr), nullptr);
    cJSON_Print2_safe(parse("{'a':1}").get(), "tag");
    admits_its_messages_alone(5);
}

TEST_P(TraceLevel, HoldsForMoreModulesThanThereIsRoomFor)
{
    std::vector<std::string> names;
    for (int i = 0; i < PARA_MODULES_MAX + 1; i++)
        names.push_back("extra" + std::to_string(i));
    para_module row = {};
    int refused = 0;
    for (const std::string &name : names) {
        row.name = name.c_str();
        refused += register_para_handle_extern(&row) != 0 ? 1 : 0;
    }
    EXPECT_GT(refused, 0);
    std::string list;
    for (const std::string &name : names)
        list += (list.empty() ? "'" : ",'") + name + "'";
    write_home("www2json.json", "{'json_pattern_list':[" + list + "]}");
    start_store();
    stop_store();

    EXPECT_EQ(module_para_handle_num, PARA_MODULES_MAX);
    for (const std::string &name : names) {
        para_init_misc(name.c_str());
        para_init_conf(name.c_str());
    }
    admits_its_messages_alone(4);
}
