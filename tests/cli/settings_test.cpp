// list, get and set with every kind of module of the sample device.
#include <sys/stat.h>

#include "cli/run.h"
#include "host/host_process.h"

namespace {

class EverySetting : public HostProcess {
protected:
    EverySetting() { home = SAMPLE_HOME; }
};

TEST_F(EverySetting, OfTheDeviceIsListed)
{
    start_host();

    const std::string listed = run({"list"}).output;

    for (const char *line :
         {"\nisp0.shutter ", "\naf.zoom_value ", "\nvideo2.sliceSize ", "\naudio.aeFormat ",
          "\nmisc.telnetEn ", "\nnetport.http_port ", "\noverlay.title ", "\nndi_config.ndi_name "})
        EXPECT_NE(listed.find(line), std::string::npos) << line;
    EXPECT_EQ(run({"list", "audio.audioInput"}).output,
              "NAME              KIND  MIN  MAX  DEFAULT  VALUE\n"
              "audio.audioInput  enum  -    -    linein   linein\n"
              "one of linein, micin\n");
}

TEST_F(EverySetting, GoesByNameWhereItsValuesHaveNames)
{
    start_host();

    EXPECT_EQ(run({"set", "video1.bitRate=4096", "video1.rcMode=VBR"}).output,
              "video1.bitRate=4096\nvideo1.rcMode=VBR\n");
    EXPECT_EQ(run({"set", "video0.size=PIC_D1"}).output, "video0.size=PIC_D1\n");
    EXPECT_EQ(run({"set", "audio.aeFormat=G711A"}).output, "audio.aeFormat=G711A\n");
    EXPECT_EQ(run({"get", "video1.size", "video1.bitRate"}).output,
              "video1.size=PIC_HD1080\nvideo1.bitRate=4096\n");

    const run_result number = run({"set", "video0.size=4"});
    EXPECT_EQ(number.status, 4);
    EXPECT_EQ(number.errors.find("camparam: video0.size: no \"4\" here (one of PIC_QCIF, "), 0u)
        << number.errors;
}

TEST_F(EverySetting, SurvivesARestart)
{
    start_host();
    EXPECT_EQ(run({"set", "isp0.shutter=12", "isp0.saturation=60", "misc.hdmivideoformat=1080P50",
                   "misc.mirror=1", "netport.http_port=8080", "audio.aeFormat=G711A",
                   "video1.bitRate=4096"})
                  .status,
              0);
    EXPECT_EQ(end_host(SIGTERM), 0);

    start_host();

    EXPECT_EQ(run({"get", "isp0.shutter", "isp0.saturation", "misc.hdmivideoformat", "misc.mirror",
                   "netport.http_port", "audio.aeFormat", "video1.bitRate"})
                  .output,
              "isp0.shutter=12\nisp0.saturation=60\nmisc.hdmivideoformat=1080P50\nmisc.mirror=1\n"
              "netport.http_port=8080\naudio.aeFormat=G711A\nvideo1.bitRate=4096\n");
}

TEST_F(EverySetting, WithNamesThatADeviceGivesAsNumbersIsReadOnly)
{
    home = data + "/numbers";
    mkdir(home.c_str(), 0755);
    write_home("audio_range.json", "{'aeFormat':[0,1],'mute':[0,1]}");
    write_home("audio_def.json", "{'aeFormat':0,'mute':0}");
    start_host();

    EXPECT_EQ(run({"get", "audio.aeFormat"}).output, "audio.aeFormat=0\n");
    EXPECT_EQ(run({"set", "audio.aeFormat=1"}).errors,
              "camparam: audio.aeFormat: no request can change it\n"
              "camparam: nothing was set\n");
    EXPECT_EQ(run({"set", "audio.mute=1"}).output, "audio.mute=1\n");
}

TEST_F(EverySetting, OfAConfModuleTravelsAsText)
{
    start_host();

    EXPECT_EQ(run({"set", "netport.http_port=0080", "overlay.title=Hall = 2"}).output,
              "netport.http_port=0080\noverlay.title=Hall = 2\n");
    EXPECT_EQ(run({"get", "netport"}).output.find("netport.dhcp=1\nnetport.ip=192.168.1.88\n"), 0u);
}

TEST_F(EverySetting, OfMiscIsAName)
{
    start_host();

    const run_result refused = run({"set", "misc.ViStrategy=70"});
    EXPECT_EQ(refused.status, 4);
    EXPECT_EQ(refused.errors, "camparam: misc.ViStrategy: no \"70\" here (one of 50, 60, dial, "
                              "osd)\ncamparam: nothing was set\n");
    EXPECT_EQ(run({"set", "misc.ViStrategy=50"}).output, "misc.ViStrategy=50\n");
}

TEST_F(EverySetting, ThatIsReadOnlyIsNotSent)
{
    start_host();

    const run_result refused = run({"set", "isp0.rgain_tuning=3"});

    EXPECT_EQ(refused.status, 4);
    EXPECT_EQ(refused.errors, "camparam: isp0.rgain_tuning: no request can change it\n"
                              "camparam: nothing was set\n");
    EXPECT_EQ(run({"get", "isp0.rgain"}).output, "isp0.rgain=128\n");
}

TEST_F(EverySetting, OfADescriptionInPartsIsListed)
{
    home = data + "/many";
    mkdir(home.c_str(), 0755);
    write_long_conf_files();
    start_host();

    const std::string listed = run({"list"}).output;

    EXPECT_NE(listed.find("\nnetport.line159 "), std::string::npos);
    EXPECT_NE(listed.find("\noverlay.line159 "), std::string::npos);
    EXPECT_EQ(run({"set", "netport.line3=a", "overlay.line4=b"}).output,
              "netport.line3=a\noverlay.line4=b\n");
}

} // namespace
