#include <filesystem>

#include "cli/run.h"
#include "host/host_process.h"

namespace {

class Completion : public HostProcess {
protected:
    // What the shell offers for the last of these words, in one line.
    static std::string offers(const std::string &words)
    {
        const std::string folder = std::filesystem::path(CAMPARAM).parent_path();
        process shell({"bash", "-c",
                       "PATH=" + folder + ":$PATH; source " COMPLETION "; COMP_WORDS=(camparam " +
                           words +
                           "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _camparam; "
                           "echo \"${COMPREPLY[*]}\""});
        EXPECT_EQ(shell.wait_for_end(), 0);
        EXPECT_EQ(shell.errors(), "");
        return shell.output();
    }
};

TEST_F(Completion, OffersCommandsAndOptions)
{
    EXPECT_EQ(offers("''"), "list get set call style www share raw\n");
    EXPECT_EQ(offers("l"), "list\n");
    EXPECT_EQ(offers("get --ti"), "--timeout\n");
    EXPECT_EQ(offers("call s"), "save style\n");
    EXPECT_EQ(offers("www ''"), "get set\n");
    EXPECT_EQ(offers("www get ''"), "\n");
}

TEST_F(Completion, OffersTheSettingsOfTheHost)
{
    start_host();

    EXPECT_EQ(offers("get af."), "af.focus_mode af.zoom_value\n");
    EXPECT_EQ(offers("set af.z"), "af.zoom_value=\n");
}

TEST_F(Completion, OffersWhatTheSampleDeviceHas)
{
    home = SAMPLE_HOME;
    start_host();

    EXPECT_EQ(offers("style v"), "vivid\n");
    EXPECT_EQ(offers("share isp.ga"), "isp.gain_limit= isp.gamma=\n");
    EXPECT_EQ(offers("share video.g"), "video.gop=\n");
    EXPECT_EQ(offers("share audio.m"), "audio.mute=\n");
    EXPECT_EQ(offers("set netport.http"), "netport.http_port=\n");
}

TEST_F(Completion, OffersNothingWithoutAHost)
{
    EXPECT_EQ(offers("get af."), "\n");
}

} // namespace
