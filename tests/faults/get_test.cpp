// Get requests and commands while memory runs out: the whole answer, or none.
#include <gtest/gtest.h>

#include <string>

#include "camparam/commands.h"
#include "faults/faulted_store.h"

namespace {

int answer_with_tree(int, para_message *, cJSON **reply)
{
    cJSON *const tree = cJSON_CreateObject();
    if (cJSON_AddStringToObject(tree, "state", "ready") != nullptr)
        *reply = tree;
    else
        cJSON_Delete(tree);
    return 0;
}

int answer_nothing(const char *, const cJSON *, cJSON **, const char *)
{
    return 0;
}

} // namespace

class StarvedGet : public FaultedStore {
protected:
    void is_answered_whole_or_not(const std::string &request)
    {
        SCOPED_TRACE(request);
        client.ask(request); // the first reply's memory is kept
        const DirectClient::answer right = client.ask(request);
        ASSERT_NE(right.text, "");
        ASSERT_EQ(right.kept, 0);
        int silent = 0;
        for_each_failure(right.tried, [&](long failing, shortage lasting) {
            const DirectClient::answer got = client.ask(request, failing, lasting);
            silent += got.text.empty() ? 1 : 0;
            EXPECT_TRUE(got.text.empty() || got.text == right.text) << got.text;
            EXPECT_EQ(got.kept, 0);
            EXPECT_EQ(client.ask(request).text, right.text) << "memory is back";
        });
        EXPECT_GE(silent, right.tried) << "for ever is too little for an answer";
    }
};

TEST_F(StarvedGet, OfModulesWithFixedMembers)
{
    for (const char *request :
         {"{'msg_type':'get','af':['all']}", "{'msg_type':'get','af':['zoom_value','none']}",
          "{'msg_type':'get','audio':['all']}",
          "{'msg_type':'get','audio':['aeFormat','audioEnable']}",
          "{'msg_type':'get','video0':['all'],'video1':['bitRate']}",
          "{'msg_type':'get','video0':['protocol','none']}", "{'msg_type':'get','isp0':['all']}",
          "{'msg_type':'get','isp0_def':['iris'],'isp0_cur_all':['all']}"})
        is_answered_whole_or_not(request);
}

TEST_F(StarvedGet, OfModulesWithTexts)
{
    for (const char *request :
         {"{'msg_type':'get','misc':['all']}", "{'msg_type':'get','misc_def':['all']}",
          "{'msg_type':'get','misc':['ViStrategy','mirror','none']}",
          "{'msg_type':'get','lens':['steps']}", "{'msg_type':'get','netport':['all']}",
          "{'msg_type':'get','netport_def':['all']}",
          "{'msg_type':'get','netport':['http_port'],'overlay':['title','none']}"})
        is_answered_whole_or_not(request);
}

TEST_F(StarvedGet, OfIdentifiers)
{
    is_answered_whole_or_not("{'msg_type':'get','msg_name':'page','msg_id':7,'af':['focus_mode']}");
    is_answered_whole_or_not("{'msg_type':'get'}");
}

TEST_F(StarvedGet, OfWebPages)
{
    const std::string page = "{'msg_from':'www','msg_type':'get','msg_name':'image'}";
    EXPECT_EQ(client.ask(page).text, "Bright=9&Iris=0.0&AudioOn=1&Coder=AAC&HttpPort=8080");
    is_answered_whole_or_not(page);
    is_answered_whole_or_not("{'msg_from':'www','msg_type':'get','msg_name':'bare'}");
    is_answered_whole_or_not("{'msg_from':'www','msg_type':'get','msg_name':'none'}");
}

TEST_F(StarvedGet, WithItsDump)
{
    set_trace_level(8);
    is_answered_whole_or_not("{'msg_type':'get','misc':['all']}");
    set_trace_level(7);
    is_answered_whole_or_not("{'msg_from':'www','msg_type':'get','msg_name':'image'}");
}

TEST_F(StarvedGet, OfCommands)
{
    static const param_command commands[] = {{"get_state", answer_with_tree, nullptr}};
    ASSERT_EQ(register_param_command("test", commands, 1), 0);
    is_answered_whole_or_not("{'msg_type':'api_get','msg_name':'get_state'}");
}

class StarvedHostModule : public StarvedGet {
protected:
    void SetUp() override
    {
        const para_module row = {.name = "silent",
                                 .init = nullptr,
                                 .init_stage2 = nullptr,
                                 .set_opt = nullptr,
                                 .get_opt = answer_nothing,
                                 .need_save = nullptr,
                                 .save = nullptr};
        ASSERT_EQ(register_para_handle_extern(&row), 0);
        StarvedGet::SetUp();
    }
};

TEST_F(StarvedHostModule, ThatAnswersNothingIsLeftOut)
{
    EXPECT_EQ(client.ask("{'msg_type':'get','silent':1,'msg_id':2}").text,
              "{\n\t\"msg_id\":\t2\n}");
    is_answered_whole_or_not("{'msg_type':'get','silent':1,'msg_id':2}");
}

// A host that calls a module itself is told that memory ran out.
TEST_F(StarvedGet, TellsItsCaller)
{
    struct {
        int (*get_opt)(const char *, const cJSON *, cJSON **, const char *);
        const char *key;
    } const modules[] = {{para_get_af_opt, "af"},        {para_get_audio_opt, "audio"},
                         {para_get_video_opt, "video0"}, {para_get_isp_opt, "isp0"},
                         {para_get_misc_opt, "misc"},    {para_get_conf_opt, "netport"}};
    cJSON *const request = cJSON_Parse(
        R"({"af":["all"],"audio":["all"],"video0":["all"],"isp0":["all"],"misc":["all"],)"
        R"("netport":["all"]})");
    for (const auto &module : modules) {
        cJSON *answer = nullptr;
        const cJSON *const item = cJSON_GetObjectItem(request, module.key);
        int result = 0;
        {
            const Allocations none(1, shortage::for_ever);
            result = module.get_opt(module.key, item, &answer, module.key);
        }
        EXPECT_EQ(result, -ENOMEM) << module.key;
        EXPECT_EQ(answer, nullptr) << module.key;
    }
    cJSON_Delete(request);
}

class StarvedKit : public StarvedGet {
protected:
    StarvedKit() { EXPECT_EQ(para_commands_register(), 0); }
};

TEST_F(StarvedKit, AnswersWholeOrNot)
{
    for (const char *request :
         {"{'msg_type':'api_get','msg_name':'describe'}",
          "{'msg_type':'api_get','msg_name':'describe','data':{'modules':['misc','netport']}}",
          "{'msg_type':'api_get','msg_name':'style','msg_id':4}",
          "{'msg_type':'api_set','msg_name':'style','data':{'style':'none'}}",
          "{'msg_type':'api_set','msg_name':'lens','data':{'zoom_value':-5,'none':1}}",
          "{'msg_type':'api_get','msg_name':'check','data':{'netport':{'http_port':'1'},'x':1}}",
          "{'msg_type':'api_set','msg_name':'reset','data':{'af':['zoom_value'],'x':['all']}}",
          "{'msg_type':'api_get','msg_name':'confirm'}",
          "{'msg_type':'api_set','msg_name':'confirm','data':{'seconds':9,'set':{'x':{'a':1}}}}"})
        is_answered_whole_or_not(request);
}

// The counters go on from answer to answer.
TEST_F(StarvedKit, TellsOfChangesWholeOrNot)
{
    write_home("descriptions.json", "{'netport':{'http_port':{'label':'Port','names':{}}}}");
    para_conf_set_member("netport", "http_port", "81");
    for (const char *request :
         {"{'msg_type':'api_get','msg_name':'log'}", "{'msg_type':'api_get','msg_name':'changes'}",
          "{'msg_type':'api_get','msg_name':'describe',"
          "'data':{'modules':['netport']}}"})
        is_answered_whole_or_not(request);
}
