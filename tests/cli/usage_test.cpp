#include "cli/run.h"

namespace {

TEST(ClientUsage, HelpShowsCommandsOptionsAndExamples)
{
    const run_result help = run({"--help"});

    EXPECT_EQ(help.status, 0);
    for (const char *text :
         {"list", "get", "set", "call", "style", "www", "share", "raw", "--host", "--port",
          "--timeout", "--retries", "--json", "camparam set af.zoom_value=1200", "Exit status"})
        EXPECT_NE(help.output.find(text), std::string::npos) << text;
}

TEST(ClientUsage, EachCommandHasHelp)
{
    for (const char *command :
         {"list",  "get",  "set",    "describe", "diff",    "reset", "dump",  "load",
          "watch", "test", "status", "log",      "confirm", "call",  "style", "www",
          "share", "raw",  "wait",   "record",   "replay",  "check"}) {
        const run_result help = run({command, "--help"});
        EXPECT_EQ(help.status, 0) << command;
        EXPECT_NE(help.output.find("Usage: camparam " + std::string(command)), std::string::npos)
            << help.output;
        EXPECT_NE(help.output.find("\"camparam --help\" lists"), std::string::npos) << help.output;
        EXPECT_EQ(help.output.find("camparam COMMAND --help"), std::string::npos)
            << "the examples of the program\n"
            << help.output;
    }
}

TEST(ClientUsage, VersionIsPrinted)
{
    const run_result version = run({"--version"});

    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output, "camparam 1.0.0\n");
}

TEST(ClientUsage, MistakesAreUsageErrors)
{
    for (const std::vector<std::string> &words : std::vector<std::vector<std::string>>{
             {},
             {"nosuch"},
             {"call"},
             {"get", "af", "--nosuch"},
             {"get", ""},
             {"get", "af."},
             {"get", ".zoom_value"},
             {"list", "af."},
             {"set", "af.zoom_value"},
             {"set", "=5"},
             {"set", "af.=5"},
             {"set", "--number", "--text", "af.zoom_value=5"},
             {"call", "save", "--get", "--set"},
             {"check"},
             {"check", "home", "data"},
             {"check", "home", "--data"},
             {"check", "home", "--nosuch"},
             {"call", "save", "=5"},
             {"style", "vivid", "soft"},
             {"style", "--default"},
             {"www"},
             {"www", "list"},
             {"www", "get"},
             {"www", "set", "image"},
             {"www", "set", "image", "hue"},
             {"www", "set", "image", ""},
             {"share"},
             {"share", "video.gop"},
             {"share", "video=5"},
             {"share", "misc.mirror=1"},
             {"share", "video0.gop=5"},
             {"share", "video.gop=5", "--instance", "-1"},
             {"share", "video.gop=5", "--instance", "256"},
             {"share", "video.gop=5", "--instance", "one"},
             {"share", "audio.mute=1", "--instance", "1"},
             {"wait", "now"},
             {"wait", "--for", "0"},
             {"record"},
             {"record", "/dev/null", "--listen", "-1"},
             {"record", "/dev/null", "--listen", "65536"},
             {"record", "/dev/null", "more"},
             {"replay"},
             {"replay", "/dev/null", "--speed", "0"},
             {"replay", "/dev/null", "--speed", "-1"},
             {"replay", "/dev/null", "--speed", "nan"},
             {"replay", "/dev/null", "--speed", "1000001"},
             {"get", "af", "--port", "0"},
             {"get", "af", "--port", "65536"},
             {"get", "af", "--timeout", "0"},
             {"get", "af", "--timeout", "-1"},
             {"get", "af", "--timeout", "3601"},
             {"get", "af", "--timeout", "nan"},
             {"get", "af", "--timeout", "soon"},
             {"get", "af", "--retries", "-1"},
             {"get", "af", "--retries", "1001"},
         }) {
        const run_result got = run(words);
        EXPECT_EQ(got.status, 2) << testing::PrintToString(words);
        EXPECT_EQ(got.output, "") << testing::PrintToString(words);
        EXPECT_NE(got.errors, "") << testing::PrintToString(words);
    }
}

TEST(ClientUsage, AResultThatCannotBeWrittenIsAFailure)
{
    const fake_server camera([](const std::string &request) {
        return std::vector<std::string>{reply_to(request, "'af':{'zoom_value':4}")};
    });

    process client({"sh", "-c", CAMPARAM " --timeout 20 get af >/dev/full"});

    EXPECT_EQ(client.wait_for_end(), 1);
    EXPECT_EQ(client.errors(), "camparam: cannot write the result\n");
}

TEST(ClientUsage, AValueOutOfItsRangeIsTold)
{
    EXPECT_EQ(run({"set", "--wait-saved=soon", "misc.mirror=1"}).errors,
              "camparam: --wait-saved takes seconds, 0 to 3600\n");
    EXPECT_EQ(run({"share", "video1.gop=5"}).errors,
              "camparam: \"video1\" takes no share datagrams; write video and --instance 1\n");
}

TEST(ClientUsage, AMistypedCommandNamesTheNearest)
{
    EXPECT_EQ(run({"lst"}).errors, "camparam: no command \"lst\"; did you mean \"list\"?\n");
    EXPECT_EQ(run({"statu", "--json"}).errors,
              R"({"message":"no command \"statu\"; did you mean \"status\"?","status":2})"
              "\n");
    EXPECT_EQ(run({"photograph"}).errors,
              "camparam: no command \"photograph\"; --help lists them\n");
    EXPECT_EQ(run({"lst"}).status, 2);
}

} // namespace
