#include "log.h"

#include <gtest/gtest.h>

#include <string>

#include "support/device.h"

namespace {

std::vector<std::string> log_lines()
{
    std::vector<std::string> texts;
    for (const trace_line &line : traces())
        texts.push_back(line.text);
    return texts;
}

TEST(HostLog, GoesTheWayOfTracesWhateverTheLevel)
{
    set_trace_level(0);
    log_line("%s is %d", "zoom", 5);
    log_line("next");

    EXPECT_EQ(log_lines(),
              (std::vector<std::string>{"camparamd: zoom is 5\n", "camparamd: next\n"}));
}

TEST(HostLog, ShowsEveryControlCharacterAsAQuestionMark)
{
    std::string controls = "\x7f";
    for (char control = 1; control < ' '; control++)
        controls += control;
    log_line("%s", (controls + " ~\x80\xff").c_str());

    EXPECT_EQ(log_lines(),
              std::vector<std::string>{"camparamd: " + std::string(32, '?') + " ~\x80\xff\n"});
}

TEST(HostLog, LeavesOutWhatCannotBeFormatted)
{
    const wchar_t no_letter[] = {0x110000, 0};
    log_line("%ls", no_letter);
    log_line("next");

    EXPECT_EQ(log_lines(), std::vector<std::string>{"camparamd: next\n"});
}

} // namespace
