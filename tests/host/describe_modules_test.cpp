// Descriptions of each kind of module.
#include <cstring>
#include <functional>

#include "host/host_process.h"

namespace {

class DescribeModules : public HostProcess {
protected:
    // Calls for each member that the pages tell, in order.
    void for_each_page(const std::function<void(const cJSON *, const cJSON *)> &tell)
    {
        std::string cursor;
        do {
            const std::string page =
                Client()
                    .request("{'msg_type':'api_get','msg_name':'describe','data':{" +
                             (cursor.empty() ? "" : "'cursor':'" + cursor + "'") + "}}")
                    .value_or("");
            EXPECT_LE(page.size(), longest_page);
            pages++;
            const json reply(cJSON_Parse(page.c_str()));
            tell_members(cJSON_GetObjectItem(reply.get(), "modules"), tell);
            const cJSON *const next = cJSON_GetObjectItem(reply.get(), "next");
            cursor = cJSON_IsString(next) ? next->valuestring : "";
        } while (!cursor.empty() && pages < 1000);
    }

    static void tell_members(const cJSON *modules,
                             const std::function<void(const cJSON *, const cJSON *)> &tell)
    {
        const cJSON *module = nullptr;
        cJSON_ArrayForEach(module, modules)
        {
            const cJSON *member = nullptr;
            cJSON_ArrayForEach(member, cJSON_GetObjectItem(module, "members"))
            {
                tell(module, member);
            }
        }
    }

    size_t longest_page = 4000;
    int pages = 0;

    // The members of a module as compact JSON, with apostrophes for quotes.
    static std::string members_of(const std::string &module)
    {
        const json reply(cJSON_Parse(ask(module).c_str()));
        const cJSON *const modules = cJSON_GetObjectItem(reply.get(), "modules");
        const cJSON *const described = cJSON_GetObjectItem(modules, module.c_str());
        return compact(cJSON_GetObjectItem(described, "members"));
    }

    static std::string ask(const std::string &module)
    {
        return Client()
            .request("{'msg_type':'api_get','msg_name':'describe','data':{'modules':['" + module +
                     "']}}")
            .value_or("");
    }
};

TEST_F(DescribeModules, FollowTheOrderOfTheModuleTable)
{
    home = SAMPLE_HOME;
    start_host();

    std::string names;
    for_each_page([&](const cJSON *module, const cJSON *) {
        const std::string name = std::string(module->string) + " ";
        if (names.size() < name.size() || names.substr(names.size() - name.size()) != name)
            names += name;
    });
    EXPECT_EQ(names, "isp0 af video0 video1 audio video2 misc netport overlay ndi_config ");
}

TEST_F(DescribeModules, NamedMembersGoByTheFormOfTheirDefault)
{
    write_home("audio_range.json", "{'aeFormat':['AAC','G711A'],'audioInput':['micin','micin'],"
                                   "'audioOut':[0,1],'mute':[0,1],'denoise':[0,2]}");
    write_home("audio_def.json",
               "{'aeFormat':'AAC','audioInput':'micin','audioOut':1,'mute':0,'agcEnable':'null'}");
    write_data("audio_cur.json", "{'aeFormat':'G711A'}");
    start_host();

    EXPECT_EQ(members_of("audio"),
              "{'aeFormat':{'kind':'enum','names':['AAC','G711A'],'default':'AAC',"
              "'start':'G711A','current':'G711A'},"
              "'audioInput':{'kind':'enum','names':['micin'],'default':'micin',"
              "'start':'micin','current':'micin'},"
              "'audioOut':{'kind':'number','min':0,'max':1,'default':1,'start':1,'current':1,"
              "'read_only':true},"
              "'mute':{'kind':'number','min':0,'max':1,'default':0,'start':0,'current':0}}");
}

TEST_F(DescribeModules, RangesBeyondTheNamesEndWithThem)
{
    write_home("audio_range.json", "{'aeFormat':[-2,2147483647],'audioInput':[5,9]}");
    write_home("audio_def.json", "{'aeFormat':'AAC','audioInput':'linein'}");
    write_data("audio_cur.json", "{'audioInput':7}");
    start_host();

    EXPECT_EQ(members_of("audio"),
              "{'aeFormat':{'kind':'enum','names':['AAC','G711A'],'default':'AAC',"
              "'start':'AAC','current':'AAC'},"
              "'audioInput':{'kind':'enum','names':[],'default':'linein'}}");
}

TEST_F(DescribeModules, StreamsInUseAreDescribed)
{
    write_home("video_range.json", "{'video0':{'gop':[1,300]},"
                                   "'video1':{'rcMode':['VBR','FIXQP'],'size':[0,4]}}");
    write_home("video_def.json", "{'video0':{'gop':50},'video1':{'rcMode':'ABR','size':'PIC_D1'}}");
    start_host();

    EXPECT_EQ(members_of("video0"),
              "{'gop':{'kind':'number','min':1,'max':300,'default':50,'start':50,'current':50}}");
    EXPECT_EQ(members_of("video1"),
              "{'size':{'kind':'enum','names':['PIC_QCIF','PIC_CIF','PIC_2CIF','PIC_HD1',"
              "'PIC_D1'],'default':'PIC_D1','start':'PIC_D1','current':'PIC_D1'},"
              "'rcMode':{'kind':'enum','names':['VBR','ABR','FIXQP'],'default':'ABR',"
              "'start':'ABR','current':'ABR'}}");
    EXPECT_EQ(ask("video2").find("video2"), std::string::npos);
    EXPECT_EQ(ask("video6").find("video6"), std::string::npos);
}

TEST_F(DescribeModules, MembersThatASetWouldMissAreReadOnly)
{
    write_home("isp_range.json", "{'isp0':{'style':[0,0],'rgain':[0,9],'rgain_tuning':[-5,5],"
                                 "'hue':[0,14],'len_type':[0,1]}}");
    write_home("isp_def.json", "{'isp0_style_list':['day'],'day':{'rgain':4,'rgain_tuning':-1,"
                               "'len_type':1,'exposure_mode_priority':1}}");
    write_data("isp_cur.json", "{'isp0':{'rgain':5}}");
    start_host();

    EXPECT_EQ(
        members_of("isp0"),
        "{'style':{'kind':'number','min':0,'max':0,'default':0,'start':0,'current':0},"
        "'rgain':{'kind':'number','min':0,'max':9,'default':4,'start':5,'current':5},"
        "'rgain_tuning':{'kind':'number','min':-5,'max':5,'default':-1,'start':-1,'current':-1,"
        "'read_only':true}}");
}

TEST_F(DescribeModules, MembersOfJsonModulesGoByTheirRange)
{
    write_home("www2json.json", "{'json_pattern_list':['misc','light'],'conf_pattern_list':[]}");
    write_home("misc_range.json", "{'version':1,'ndi_mode':['off','low'],'mirror':[0,1]}");
    write_home("misc.conf", "ndi_mode = 'low'\nmirror = '0'\nstray = '7'\n");
    write_home("light_range.json", "{'lamp':['off','on','auto'],'level':[-4,200]}");
    write_home("light.conf", "lamp = 'auto'\nlevel = '20'\n");
    write_data("light.conf", "lamp = 'on'\n");
    start_host();

    EXPECT_EQ(members_of("misc"),
              "{'ndi_mode':{'kind':'enum','names':['off','low'],'default':'low',"
              "'current':'low'},"
              "'mirror':{'kind':'number','min':0,'max':1,'default':0,'current':0}}");
    EXPECT_EQ(members_of("light"),
              "{'lamp':{'kind':'enum','names':['off','on','auto'],'default':'auto',"
              "'current':'on'},"
              "'level':{'kind':'number','min':-4,'max':200,'default':20,'current':20}}");
}

TEST_F(DescribeModules, ConfValuesAreTexts)
{
    write_home("netport.conf", "http_port = '80'\ntitle = 'a b'\nempty = ''\n");
    write_data("netport.conf", "http_port = '81'\nextra = 'x'\n");
    start_host();

    EXPECT_EQ(members_of("netport"), "{'http_port':{'kind':'text','default':'80','current':'81'},"
                                     "'title':{'kind':'text','default':'a b','current':'a b'},"
                                     "'empty':{'kind':'text','default':'','current':''},"
                                     "'extra':{'kind':'text','current':'x'}}");
    EXPECT_EQ(members_of("overlay"), "{}");
}

// Every member once, in its order, whatever the pages' ends.
TEST_F(DescribeModules, ComeInPagesOfAtMost4000Bytes)
{
    write_long_conf_files(); // 160 keys each
    start_host();

    std::string names;
    for_each_page([&](const cJSON *module, const cJSON *member) {
        names += std::string(module->string) + "." + member->string + " ";
    });

    std::string expected = "af.focus_mode af.zoom_value ";
    for (const std::string module : {"netport", "overlay"}) {
        for (int i = 0; i < 160; i++)
            expected += module + ".line" + std::to_string(i) + " ";
    }
    EXPECT_EQ(names, expected);
    EXPECT_GT(pages, 10);
}

TEST_F(DescribeModules, AMemberThatIsLongerThanAPageHasOneOfItsOwn)
{
    const std::string text(20000, 'x');
    write_home("overlay.conf", "");
    write_data("overlay.conf", "a = '1'\ntitle = '" + text + "'\nz = '2'\n");
    start_host();

    std::string values;
    longest_page = 21000;
    for_each_page([&](const cJSON *module, const cJSON *member) {
        if (strcmp(module->string, "overlay") == 0)
            values += cJSON_GetObjectItem(member, "current")->valuestring;
    });
    EXPECT_EQ(values, "1" + text + "2");
}

// It is told without its values.
TEST_F(DescribeModules, AMemberThatIsLongerThanADatagramHasNoValues)
{
    write_home("overlay.conf", "");
    write_data("overlay.conf", "title = '" + std::string(66000, 'x') + "'\n");
    start_host();

    EXPECT_EQ(members_of("overlay"), "{'title':{'kind':'text'}}");
}

} // namespace
