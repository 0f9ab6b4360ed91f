#include <filesystem>
#include <regex>

#include "cli/run.h"
#include "host/host_process.h"

namespace {

class Completion : public HostProcess {
protected:
    // Whether the completion of the last word is exactly this. Tries again if not: the completion
    // waits 0.3 s for the host, which may be too short on a busy machine.
    static testing::AssertionResult are_offered(const std::string &expected,
                                                const std::string &words)
    {
        std::string offered;
        for (int turn = 0; turn < 30; turn++) {
            offered = offers(words);
            if (offered == expected)
                return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << "offered for " << words << ": " << offered;
    }

    // The completions of the last word, in one line.
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
    EXPECT_EQ(offers("''"), "list get set describe diff reset dump load watch test status log "
                            "confirm call style www share raw wait record replay check\n");
    EXPECT_EQ(offers("li"), "list\n");
    EXPECT_EQ(offers("get --ti"), "--timeout\n");
    EXPECT_EQ(offers("call s"), "save status style\n");
    EXPECT_EQ(offers("www ''"), "get set\n");
    EXPECT_EQ(offers("www get ''"), "\n");
}

TEST_F(Completion, OffersEveryOptionOfTheHelp)
{
    const std::string offered = " " + offers("get --");
    const std::regex option("--[a-z]+(-[a-z]+)*");
    for (const std::vector<std::string> &words :
         std::vector<std::vector<std::string>>{{"--help"},
                                               {"set", "--help"},
                                               {"call", "--help"},
                                               {"style", "--help"},
                                               {"share", "--help"}}) {
        const std::string help = run(words).output;
        const std::string options = help.substr(0, help.find("Examples:"));
        for (std::sregex_iterator found(options.begin(), options.end(), option), end; found != end;
             ++found)
            EXPECT_TRUE(std::regex_search(offered, std::regex(" " + found->str() + "[ \n]")))
                << found->str();
    }
}

TEST_F(Completion, OffersTheSettingsOfTheHost)
{
    start_host();

    EXPECT_TRUE(are_offered("af.focus_mode af.zoom_value\n", "get af."));
    EXPECT_TRUE(are_offered("af.zoom_value=\n", "set af.z"));
}

TEST_F(Completion, OffersWhatTheSampleDeviceHas)
{
    home = SAMPLE_HOME;
    start_host();

    EXPECT_TRUE(are_offered("vivid\n", "style v"));
    EXPECT_TRUE(are_offered("isp.gain_limit= isp.gamma=\n", "share isp.ga"));
    EXPECT_TRUE(are_offered("video.gop=\n", "share video.g"));
    EXPECT_TRUE(are_offered("audio.mute=\n", "share audio.m"));
    EXPECT_TRUE(are_offered("netport.http_port=\n", "set netport.http"));
}

TEST_F(Completion, OffersNothingWithoutAHost)
{
    EXPECT_EQ(offers("get af."), "\n");
}

} // namespace
