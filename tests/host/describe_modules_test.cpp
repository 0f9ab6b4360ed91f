// Descriptions of each kind of module.
#include "host/host_process.h"

namespace {

class DescribeModules : public HostProcess {
protected:
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

    const json reply(cJSON_Parse(
        Client().request("{'msg_type':'api_get','msg_name':'describe'}").value_or("").c_str()));

    std::string names;
    const cJSON *module = nullptr;
    cJSON_ArrayForEach(module, cJSON_GetObjectItem(reply.get(), "modules"))
    {
        names += std::string(module->string) + " ";
    }
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
              "'current':'G711A'},"
              "'audioInput':{'kind':'enum','names':['micin'],'default':'micin',"
              "'current':'micin'},"
              "'audioOut':{'kind':'number','min':0,'max':1,'default':1,'current':1,"
              "'read_only':true},"
              "'mute':{'kind':'number','min':0,'max':1,'default':0,'current':0}}");
}

TEST_F(DescribeModules, RangesBeyondTheNamesEndWithThem)
{
    write_home("audio_range.json", "{'aeFormat':[-2,2147483647],'audioInput':[5,9]}");
    write_home("audio_def.json", "{'aeFormat':'AAC','audioInput':'linein'}");
    write_data("audio_cur.json", "{'audioInput':7}");
    start_host();

    EXPECT_EQ(members_of("audio"),
              "{'aeFormat':{'kind':'enum','names':['AAC','G711A'],'default':'AAC',"
              "'current':'AAC'},"
              "'audioInput':{'kind':'enum','names':[],'default':'linein'}}");
}

TEST_F(DescribeModules, StreamsInUseAreDescribed)
{
    write_home("video_range.json", "{'video0':{'gop':[1,300]},"
                                   "'video1':{'rcMode':['VBR','FIXQP'],'size':[0,4]}}");
    write_home("video_def.json", "{'video0':{'gop':50},'video1':{'rcMode':'ABR','size':'PIC_D1'}}");
    start_host();

    EXPECT_EQ(members_of("video0"),
              "{'gop':{'kind':'number','min':1,'max':300,'default':50,'current':50}}");
    EXPECT_EQ(members_of("video1"),
              "{'size':{'kind':'enum','names':['PIC_QCIF','PIC_CIF','PIC_2CIF','PIC_HD1',"
              "'PIC_D1'],'default':'PIC_D1','current':'PIC_D1'},"
              "'rcMode':{'kind':'enum','names':['VBR','ABR','FIXQP'],'default':'ABR',"
              "'current':'ABR'}}");
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

    EXPECT_EQ(members_of("isp0"),
              "{'style':{'kind':'number','min':0,'max':0,'default':0,'current':0},"
              "'rgain':{'kind':'number','min':0,'max':9,'default':4,'current':5},"
              "'rgain_tuning':{'kind':'number','min':-5,'max':5,'default':-1,'current':-1,"
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

TEST_F(DescribeModules, AreNamedAloneWhenADatagramHoldsNoMore)
{
    write_long_conf_files();
    start_host();

    EXPECT_EQ(Client().ask("{'msg_type':'api_get','msg_name':'describe'}"),
              "{'msg_name':'describe','modules':{'isp0':{},'af':{'set':'lens'},'audio':{},"
              "'misc':{},'netport':{},'overlay':{},'ndi_config':{}}}");
    EXPECT_NE(members_of("overlay").find("'line159':{'kind':'text'"), std::string::npos);
}

TEST_F(DescribeModules, FillADatagramToItsLastByte)
{
    const size_t longest = 65507; // of UDP over IPv4
    write_home("overlay.conf", "");
    const auto description = [this](size_t length) {
        write_data("overlay.conf", "title = '" + std::string(length, 'x') + "'\n");
        start_host();
        const std::string reply = ask("overlay");
        EXPECT_EQ(end_host(SIGKILL), -1);
        return reply;
    };
    const size_t shortest = description(0).size();

    EXPECT_EQ(description(longest - shortest).size(), longest);
    EXPECT_EQ(description(longest - shortest + 1),
              "{\"msg_name\":\"describe\",\"modules\":{\"overlay\":{}}}");
}

TEST_F(DescribeModules, OfTheSampleDeviceFitWithRoomToSpare)
{
    home = SAMPLE_HOME;
    start_host();

    const std::string reply =
        Client().request("{'msg_type':'api_get','msg_name':'describe'}").value_or("");

    EXPECT_GT(reply.size(), 5000u);
    EXPECT_LT(reply.size(), 65507u / 3);
}

} // namespace
