#include "log.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

namespace {

// Replaces standard error with a packet pipe, so that each write is read on its own.
class HostLog : public testing::Test {
protected:
    HostLog() : before(dup(STDERR_FILENO))
    {
        EXPECT_EQ(pipe2(ends, O_CLOEXEC | O_DIRECT), 0);
        dup2(ends[1], STDERR_FILENO);
    }

    ~HostLog() override
    {
        dup2(before, STDERR_FILENO);
        for (const int descriptor : {before, ends[0], ends[1]})
            close(descriptor);
    }

    std::string next_write() const
    {
        std::string packet(4096, '\0');
        const ssize_t length = read(ends[0], packet.data(), packet.size());
        packet.resize(static_cast<size_t>(length > 0 ? length : 0));
        return packet;
    }

private:
    int before;
    int ends[2] = {-1, -1};
};

TEST_F(HostLog, WritesAMessageAsOneWrite)
{
    log_line("%s is %d", "zoom", 5);
    log_line("next");

    EXPECT_EQ(next_write(), "camparamd: zoom is 5\n");
    EXPECT_EQ(next_write(), "camparamd: next\n");
}

TEST_F(HostLog, ShowsEveryControlCharacterAsAQuestionMark)
{
    std::string controls = "\x7f";
    for (char control = 1; control < ' '; control++)
        controls += control;
    log_line("%s", (controls + " ~\x80\xff").c_str());

    EXPECT_EQ(next_write(), "camparamd: " + std::string(32, '?') + " ~\x80\xff\n");
}

} // namespace
